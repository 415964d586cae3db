#include "program/command_line_error.h"

#include <algorithm>
#include <vector>

#include "program/translation.h"

namespace kestrel {
namespace {

// CLI11 names the option only in its English text, before any text from the user.
const CLI::Option* named_option(const std::string& text, const std::vector<const CLI::App*>& apps) {
    constexpr const char* kBetweenWords = " :";
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of(kBetweenWords, begin), text.size());
        for (const CLI::App* app : apps) {
            const CLI::Option* const option =
                app->get_option_no_throw(text.substr(begin, end - begin));
            if (option != nullptr) return option;
        }
        begin = end + 1;
    }
    return nullptr;
}

std::string missing_command(const CLI::App& app) {
    std::string text = translate("a command is required; valid are:");
    for (const CLI::App* command : app.get_subcommands({})) text += " " + command->get_name();
    return text;
}

std::string missing_argument(const CLI::App& command) {
    std::string text = translate("an option is required; valid are:");
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_required() && option->count() == 0) {
            return formatted(translate("%s is required"), option->get_name().c_str());
        }
        if (option != command.get_help_ptr()) text += " " + option->get_name();
    }
    return text;
}

}  // namespace

std::string explanation_of(const CLI::ParseError& error, const CLI::App& app) {
    const bool has_commands = !app.get_subcommands({}).empty();
    if (has_commands && app.get_subcommands().empty()) return missing_command(app);
    const CLI::App& command = has_commands ? *app.get_subcommands().front() : app;
    if (dynamic_cast<const CLI::RequiredError*>(&error)) return missing_argument(command);

    const std::vector<std::string> extras = app.remaining(true);
    if (dynamic_cast<const CLI::ExtrasError*>(&error) && !extras.empty()) {
        return formatted(translate("unexpected argument: %s"), extras.front().c_str());
    }

    const CLI::Option* const option = named_option(error.what(), {&command, &app});
    if (option == nullptr) return error.what();
    const std::string name = option->get_name();
    if (dynamic_cast<const CLI::ConversionError*>(&error)) {
        return formatted(translate("the value of %s is not valid"), name.c_str());
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        const bool is_repeated = option->count() > 1 &&
                                 option->get_multi_option_policy() == CLI::MultiOptionPolicy::Throw;
        return formatted(
            is_repeated ? translate("%s may be given only once") : translate("%s needs a value"),
            name.c_str());
    }
    return error.what();  // from a check, translated there
}

// CLI::Range has English error texts.
void limit(CLI::Option& option, int least, int most) {
    option.type_name(formatted("%d-%d", least, most));
    option.check([least, most, range = CLI::Range(least, most)](const std::string& text) {
        if (range(text).empty()) return std::string();
        return formatted(translate("'%s' is not in range %d to %d"), text.c_str(), least, most);
    });
}

}  // namespace kestrel
