// The scenario of fault tests of the link, from connecting to the end of the host.
#pragma once

#include <string_view>

namespace kestrel::testing {

// Announcement, two messages out, two in, and the end. Returns 0 if all of them have arrived,
// else 1.
int life_of_a_link();

// Whether the text consists of documented error lines.
bool is_documented(std::string_view text);

}  // namespace kestrel::testing
