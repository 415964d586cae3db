// Translations of the programs' texts. The catalogues are in po/.
#pragma once

#include <string>

namespace kestrel {

// Sets the user's locale and finds the catalogues. Call it first in main.
void use_translations();

// The translation as UTF-8, or `text` itself. Valid as long as the process.
[[gnu::format_arg(1)]] const char* translate(const char* text);

// Marks a text in a table for xgettext; call translate() where the text is used.
consteval const char* translatable(const char* text) { return text; }

// Formats like printf.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

}  // namespace kestrel
