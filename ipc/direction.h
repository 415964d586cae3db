#pragma once

#include <cstdint>

#include "ipc/protocol.h"

namespace kestrel {

enum class Direction : std::uint8_t { from_page, to_page };

// The row of a code in its direction's table; null if it has none.
constexpr const MessageType* find_type(Direction direction, std::int32_t code) {
    return direction == Direction::from_page ? find_type(kToHost, code) : find_type(kToPage, code);
}

}  // namespace kestrel
