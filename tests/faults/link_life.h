// A link's whole life, from connecting to the host's end, as scenario of fault tests.
#pragma once

#include <string_view>

namespace kestrel::testing {

// Announcement, two messages out, two in, and the link's end. 0 when all of them have arrived, 1
// when not.
int life_of_a_link();

// Whether the text is made of lines that the link's documents tell of.
bool is_documented(std::string_view text);

}  // namespace kestrel::testing
