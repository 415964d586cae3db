// The resources text for the next page, in the exported g_resources. The reader thread or the main
// thread sets it, the main thread takes it.
#pragma once

#include <string>
#include <string_view>

namespace kestrel {

// Sets the resources of the next page. Any thread.
void set_resources(std::string_view text);

// Returns the resources and clears them. Any thread.
std::string take_resources();

}  // namespace kestrel
