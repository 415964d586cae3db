#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace kestrel {

// Why `app` refused the command line, in the user's language.
std::string explanation_of(const CLI::ParseError& error, const CLI::App& app);

// Restricts the option to whole numbers from `least` to `most`, with an error text that is
// translated.
void limit(CLI::Option& option, int least, int most);

}  // namespace kestrel
