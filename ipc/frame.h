// A whole frame in memory, and the parts of it.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>

#include "ipc/protocol.h"

namespace kestrel {

struct FreeDeleter {
    void operator()(void* block) const { std::free(block); }
};

// Header and payload in one malloc block.
using Frame = std::unique_ptr<webkit_message, FreeDeleter>;

inline char* payload_begin(webkit_message& frame) { return reinterpret_cast<char*>(&frame + 1); }

inline std::span<const char> payload_of(const webkit_message& frame) {
    return {reinterpret_cast<const char*>(&frame + 1),
            static_cast<std::size_t>(frame.total_len_of_string)};
}

// Header and payload as they go over the wire.
inline std::span<const char> bytes_of(const webkit_message& frame) {
    return {reinterpret_cast<const char*>(&frame),
            sizeof frame + static_cast<std::size_t>(frame.total_len_of_string)};
}

}  // namespace kestrel
