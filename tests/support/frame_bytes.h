// The wire format, spelled out independently of the code under test.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "ipc/frame.h"

namespace kestrel::testing {

// The sixteen bytes of a header with these four fields, whether or not they make sense.
std::string header_bytes(int type, int num_of_ints, int num_of_strings, int total_len_of_string);

// The bytes of a frame. Integers are given as their texts; each item's NUL is added.
std::string frame_bytes(int type, std::initializer_list<std::string_view> ints,
                        std::initializer_list<std::string_view> strings);

// The bytes of a frame that the code under test has built.
std::string bytes_text(const webkit_message& frame);

}  // namespace kestrel::testing
