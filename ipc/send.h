#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kestrel {

// Builds one message and sends it to the host, as webkit_client::sendMessage does. The strings must
// hold no NUL. Any thread.
void send(std::int32_t type, std::span<const int> ints, std::span<const std::string_view> strings);

}  // namespace kestrel
