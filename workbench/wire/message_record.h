// What is kept of one message that went over the wire, or of something worth a line between them.
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

// A whole frame that nobody changes any more.
using SharedFrame = std::shared_ptr<const webkit_message>;

struct MessageRecord {
    std::chrono::system_clock::time_point time;
    Direction direction = Direction::from_page;
    int pid = 0;                  // 0 if it is not known
    SharedFrame frame;            // null: `note` stands here instead of a message
    std::size_t size = 0;         // bytes on the wire, header included
    bool is_exact = true;         // false: the frame has the items that were told, not the bytes
    std::uint64_t answer_to = 0;  // the serial of the request, if whoever records it knows
    std::string note;
};

// A record of a message that is seen now. Copies the message, whose payload must be as long as the
// header says. Throws std::bad_alloc.
MessageRecord record_of(Direction direction, int pid, const webkit_message& message);

// A record of something that is no message. What is not UTF-8 becomes U+FFFD, NULs included.
MessageRecord record_of(std::string_view note);

// The name of a message's type, or kUnknownType; "" for a note.
std::string_view type_name(const MessageRecord& record);

}  // namespace kestrel
