// A recorded message, or a note between messages.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ipc/direction.h"
#include "ipc/protocol.h"

namespace kestrel {

// A complete, immutable frame.
using SharedFrame = std::shared_ptr<const webkit_message>;

struct MessageRecord {
    std::chrono::system_clock::time_point time;
    Direction direction = Direction::from_page;
    int pid = 0;                  // 0 if unknown
    SharedFrame frame;            // null for a note
    std::size_t size = 0;         // bytes of the frame, header included
    bool is_exact = true;         // false: the frame was rebuilt from its items
    std::uint64_t answer_to = 0;  // the serial of the request, 0 if unknown
    std::string note;
};

// A record of this message with the current time. Copies the message, whose payload must be as long
// as the header says. Throws std::bad_alloc.
MessageRecord record_of(Direction direction, int pid, const webkit_message& message);

// A note with the current time. Invalid UTF-8 and NULs become U+FFFD.
MessageRecord record_of(std::string_view note);

// The name of a message's type, or kUnknownType; "" for a note.
std::string_view type_name(const MessageRecord& record);

}  // namespace kestrel
