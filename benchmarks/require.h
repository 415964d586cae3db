#pragma once

#include <string>

namespace kestrel::bench {

// Unless `ok`, prints `subject` with the text of errno and ends the program.
void require(bool ok, const std::string& subject);

}  // namespace kestrel::bench
