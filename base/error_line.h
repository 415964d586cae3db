#pragma once

#include <string_view>

namespace kestrel {

// Writes `text` to standard error in one piece, so that lines of two threads never mix. The text
// carries its own newline. errno is kept. Any thread.
void error_line(std::string_view text);

}  // namespace kestrel
