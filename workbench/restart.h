// Restarts the program in the same process.
//
// Web processes inherit the language from the environment, which must not change while other
// threads run, so a change of language needs a restart.
#pragma once

#include <string>
#include <vector>

namespace kestrel {

// Replaces --locale in the arguments, which begin with the program's name; "" removes it.
std::vector<std::string> arguments_with_locale(std::vector<std::string> arguments,
                                               const std::string& locale);

// The environment of this process as NAME=VALUE. Call before it is changed.
std::vector<std::string> copy_of_environment();

// Replaces this process by a new run of the program. `arguments` begin with the program's name.
// Throws std::system_error.
[[noreturn]] void restart(std::vector<std::string> arguments, std::vector<std::string> environment);

}  // namespace kestrel
