#pragma once

#include <CLI/CLI.hpp>

namespace kestrel {

// Translates CLI11's own words in the help. Subcommands that are added later inherit this, except
// for their help flag.
void describe_help(CLI::App& app);

// Adds the translated help flag.
void describe_help_flag(CLI::App& app);

}  // namespace kestrel
