#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace kestrel::tools {

// What is wrong with the command line that `app` has not taken, in the user's language.
std::string explanation_of(const CLI::ParseError& error, const CLI::App& app);

// Has the option take whole numbers from `least` to `most` only, and its help say so.
void limit(CLI::Option& option, int least, int most);

}  // namespace kestrel::tools
