// The cell texts of a message list.
#pragma once

#include <chrono>
#include <string>

#include "workbench/wire/message_log.h"

namespace kestrel {

// "14:03:59.123", local time.
std::string time_text(std::chrono::system_clock::time_point time);

// "17 goOnline"; "" for a note.
std::string type_text(const MessageRecord& record);

// "87 µs", "4.2 ms", "1.250 s".
std::string duration_text(std::chrono::microseconds duration);

// "⇄ #123, 4.2 ms"; "" without a partner.
std::string partner_text(const LoggedMessage& message);

}  // namespace kestrel
