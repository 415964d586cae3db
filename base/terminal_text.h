// Escapes untrusted text for a terminal: characters that do not print, end a line, or change the
// direction of writing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kestrel {

// \n and \t, \x1b for a control character or a byte that is not UTF-8, \u{202e} for other
// characters.
std::string printable(std::string_view text);

// The same between quotes, with \r, \" and \\ too, and \u{1b} for a control character. After
// `max_characters` the number of bytes left out follows.
std::string quoted(std::string_view text, std::size_t max_characters);

}  // namespace kestrel
