#pragma once

#include <string>
#include <vector>

#include "ipc/protocol.h"

#pragma GCC visibility push(default)

// Builds and parses frames, for programs that link the library. The extension itself uses
// ipc/frame_builder.h and ipc/items.h.
class webkit_util {
  public:
    // Builds a frame of `type` with the integers, then the strings, in list order; a string is
    // carried up to its first NUL. The caller owns the result and releases it with free(). Null,
    // with a line on standard error, when the frame would be longer than kMaxFrame or memory is
    // out. Any thread.
    static webkit_message* wrapMessage(int type, std::vector<int> ints,
                                       std::vector<std::string> strings);

    // Reads the integer item at `position` and moves `position` behind its NUL. 0 for an item that
    // is not a decimal number. `payload` must hold a NUL at or after `position`; `scratch` is a
    // buffer of BUFSIZE (5,000,000) bytes, which are all overwritten: the item, then zeros. Any
    // thread, with a buffer of its own.
    static int parseNextInt(int& position, char* payload, char*& scratch);

    // The same for a string item. An item longer than the scratch buffer is cut to 4,999,999
    // bytes; `position` still moves behind its NUL.
    static std::string parseNextString(int& position, char* payload, char*& scratch);
};

#pragma GCC visibility pop
