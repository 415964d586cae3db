#pragma once

#include <string>
#include <string_view>

#include "ipc/protocol.h"

namespace kestrel {

enum class Direction : std::uint8_t { from_page, to_page };

// A whole message as one readable line, without newline: direction, process id ("?" while it is
// 0), type, name of the type, items. Strings stand between quotes, long ones are shortened,
// and whatever does not print is escaped.
std::string message_line(Direction direction, int pid, const webkit_message& message);

// A process id as message_line shows it.
std::string shown_pid(int pid);

// A text between quotes, as message_line shows it.
std::string shown_text(std::string_view text);

}  // namespace kestrel
