// The resources text on its way from the host to the next page. It is handed over through the
// exported g_resources; the reader thread sets it and the main thread takes it.
#pragma once

#include <string>
#include <string_view>

namespace kestrel {

// Makes `text` the resources of the next page. Any thread.
void set_resources(std::string_view text);

// The resources, which are consumed by this: g_resources is empty afterwards. Any thread.
std::string take_resources();

}  // namespace kestrel
