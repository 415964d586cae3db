#pragma once

#include <exception>
#include <string_view>

namespace kestrel::tools {

// The reader of standard output has closed it. Not an error: the program ends.
class OutputClosed : public std::exception {};

// Writes to standard output and flushes it. Throws OutputClosed or std::system_error.
void print(std::string_view text);

// Whether standard output is a terminal and NO_COLOR is not set.
bool wants_colours();

}  // namespace kestrel::tools
