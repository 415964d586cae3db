#include "workbench/restart.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "program/translation.h"
#include "workbench/string_pointers.h"

namespace kestrel {

std::vector<std::string> arguments_with_locale(std::vector<std::string> arguments,
                                               const std::string& locale) {
    CLI::App app;
    app.set_help_flag();
    app.allow_extras();
    std::string earlier;
    app.add_option("-l,--locale", earlier)->take_last();
    app.parse(static_cast<int>(arguments.size()), pointers_to(arguments).data());

    std::vector<std::string> changed = app.remaining();
    changed.insert(changed.begin(), arguments.front());
    if (!locale.empty()) changed.insert(changed.begin() + 1, {"--locale", locale});
    return changed;
}

std::vector<std::string> copy_of_environment() {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        variables.emplace_back(*variable);
    }
    return variables;
}

void restart(std::vector<std::string> arguments, std::vector<std::string> environment) {
    execve("/proc/self/exe", pointers_to(arguments).data(), pointers_to(environment).data());
    throw std::system_error(errno, std::generic_category(), translate("cannot restart"));
}

}  // namespace kestrel
