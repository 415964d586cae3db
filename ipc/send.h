#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "ipc/protocol.h"

namespace kestrel {

// As webkit_client::sendMessage. The payload must be as long as the header says. Any thread.
void send(const webkit_message& frame);

// Builds one message and sends it. The strings must hold no NUL. Any thread.
void send(std::int32_t type, std::span<const int> ints, std::span<const std::string_view> strings);

}  // namespace kestrel
