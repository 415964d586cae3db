// Starting the program anew, in the place of the running one.
//
// Web processes inherit the language from the environment, which must not change while other
// threads run: another language takes another start.
#pragma once

#include <string>
#include <vector>

namespace kestrel {

// The arguments, which begin with the program's name, with this locale in place of an earlier one;
// "" for the user's own.
std::vector<std::string> arguments_with_locale(std::vector<std::string> arguments,
                                               const std::string& locale);

// This process's environment, as lines NAME=VALUE. To be taken before anybody changes it.
std::vector<std::string> copy_of_environment();

// Runs this program instead of this process. `arguments` begin with the program's name. Throws
// std::system_error.
[[noreturn]] void restart(std::vector<std::string> arguments, std::vector<std::string> environment);

}  // namespace kestrel
