#pragma once

#include <string_view>

namespace kestrel {

// Writes `text`, which includes its newline, to standard error as one unit: lines of two threads do
// not interleave. Keeps errno. Any thread.
void error_line(std::string_view text);

}  // namespace kestrel
