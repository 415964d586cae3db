#pragma once

#include <CLI/CLI.hpp>

namespace kestrel::tools {

// The words of the help that are not ours. Commands that are added later take them over, but for
// those of their help flag.
void describe_help(CLI::App& app);

// The flag that shows the help, among the other options.
void describe_help_flag(CLI::App& app);

}  // namespace kestrel::tools
