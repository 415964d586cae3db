// The wire format, implemented independently of the code under test.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "ipc/frame.h"

namespace kestrel::testing {

// A header with these four fields, which may be invalid.
std::string header_bytes(int type, int num_of_ints, int num_of_strings, int total_len_of_string);

// The bytes of a frame. Integers are given as text; each item's NUL is added.
std::string frame_bytes(int type, std::initializer_list<std::string_view> ints,
                        std::initializer_list<std::string_view> strings);

// The bytes of a frame that the code under test has built.
std::string bytes_text(const webkit_message& frame);

struct ReceivedFrame {
    int type;
    std::string payload;  // items, each with its NUL
};

// Removes the complete frames from the beginning of `bytes`.
std::vector<ReceivedFrame> take_frames(std::string& bytes);

}  // namespace kestrel::testing
