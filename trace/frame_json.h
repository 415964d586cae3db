// Serialises frames to JSON, one object each, complete.
// docs/protocol.md describes the fields.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "ipc/direction.h"
#include "ipc/protocol.h"

namespace kestrel {

// One line without newline. The payload must be as long as the header says. Throws std::bad_alloc.
std::string frame_json(std::chrono::system_clock::time_point time, Direction direction, int pid,
                       const webkit_message& message);

// The line for `count` frames that are missing before the next one.
std::string dropped_json(std::chrono::system_clock::time_point time, int pid, std::size_t count);

}  // namespace kestrel
