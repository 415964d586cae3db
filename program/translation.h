// What the programs say, in the language of whoever reads it. The catalogues are in po/.
#pragma once

#include <string>

namespace kestrel {

// Takes the user's locale, and the catalogues that lie beside the program. Call it first in main.
void use_translations();

// The text in the user's language, or itself. As UTF-8; it lives as long as the process.
[[gnu::format_arg(1)]] const char* translate(const char* text);

// Marks a text of a table, which is translated where the table is used.
consteval const char* translatable(const char* text) { return text; }

// What printf would print.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

}  // namespace kestrel
