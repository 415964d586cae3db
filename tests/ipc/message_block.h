#pragma once

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "ipc/frame.h"

namespace kestrel::testing {

// A message from its bytes, in a block not a byte longer, so that a sanitizer sees every read
// behind its end.
inline Frame message_block(std::string_view bytes) {
    Frame message(static_cast<webkit_message*>(std::malloc(bytes.size())));
    std::memcpy(message.get(), bytes.data(), bytes.size());
    return message;
}

}  // namespace kestrel::testing
