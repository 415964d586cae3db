// Formats frames for humans.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ipc/direction.h"
#include "ipc/protocol.h"

namespace kestrel {

// The name of a type that its direction's table does not have.
inline constexpr std::string_view kUnknownType = "(unknown)";

// One line without time and newline: "<-" for a message from the page, "->" for one to it, process
// id ("?" while it is 0), type, name of the type, items. 16 items are shown, 80 characters of each.
// The payload must be as long as the header says. Throws std::bad_alloc.
std::string frame_text(Direction direction, int pid, const webkit_message& message);

// The items of a message as frame_text shows them, separated by blanks; "" for none.
std::string items_text(const webkit_message& message);

// A line about something else than a frame, with "--" as direction.
std::string note_text(int pid, std::string_view note);

inline constexpr std::size_t kMaxShownCharacters = 80;

}  // namespace kestrel
