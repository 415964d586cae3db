#include "workbench/restart.h"

#include <glib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "program/translation.h"
#include "workbench/desktop/glib_handles.h"
#include "workbench/string_pointers.h"

namespace kestrel {

std::vector<std::string> arguments_with_locale(std::vector<std::string> arguments,
                                               const std::string& locale) {
    // GOption removes the option in all its spellings and keeps the others.
    char* earlier = nullptr;
    const std::array entries = {
        GOptionEntry{"locale", 'l', 0, G_OPTION_ARG_FILENAME, &earlier, nullptr, nullptr},
        GOptionEntry{},
    };
    const GlibOptionContext context(g_option_context_new(nullptr));
    g_option_context_add_main_entries(context.get(), entries.data(), nullptr);
    g_option_context_set_help_enabled(context.get(), FALSE);
    g_option_context_set_ignore_unknown_options(context.get(), TRUE);
    std::vector<char*> rest = pointers_to(arguments);
    int count = static_cast<int>(arguments.size());
    char** first = rest.data();
    g_option_context_parse(context.get(), &count, &first, nullptr);
    g_free(earlier);

    std::vector<std::string> changed(first, first + count);
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
