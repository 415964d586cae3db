#pragma once

#include <exception>
#include <string_view>

namespace kestrel::tools {

// Whoever read standard output has gone: a reason to stop, not to complain.
class OutputClosed : public std::exception {};

// Writes to standard output at once. Throws OutputClosed, or std::system_error when it cannot.
void print(std::string_view text);

// Whether colours are welcome on standard output.
bool wants_colours();

}  // namespace kestrel::tools
