// kestrel-log: shows and changes the shared log settings of the client family, and shows log lines
// live.

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "log/zynlog_config.h"
#include "program/command_line_error.h"
#include "program/help.h"
#include "program/translation.h"
#include "program/usage_error.h"
#include "tools/console.h"
#include "tools/follow.h"
#include "tools/settings.h"

namespace {

using namespace kestrel::tools;
using kestrel::describe_help;
using kestrel::describe_help_flag;
using kestrel::explanation_of;
using kestrel::limit;
using kestrel::translate;
using kestrel::UsageError;
using kestrel::use_translations;

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

struct Arguments {
    bool json = false;
    std::string class_name;
    std::string level_name;
    std::string enable = "0";
    std::string disable = "0";
    std::string path;
    std::optional<int> size;
    std::optional<std::uint32_t> count;
    std::uint32_t sessions = 0;
    FollowOptions follow;
};

using Command = std::function<void()>;

void add_commands(CLI::App& app, Arguments& arguments, Command& command) {
    const auto add = [&](const char* name, const char* description, const Command& run) {
        CLI::App* const subcommand = app.add_subcommand(name, description);
        subcommand->group(translate("Subcommands"));
        describe_help_flag(*subcommand);
        subcommand->callback([&command, run] { command = run; });
        return subcommand;
    };

    add("show",
        translate("Show all settings: the own and the working level of each class, flags, output, "
                  "rollover and sessions"),
        [&] { show_settings(arguments.json); });

    CLI::App* const level = add("level", translate("Set the level of a class"),
                                [&] { set_level(arguments.class_name, arguments.level_name); });
    level->add_option("CLASS", arguments.class_name, translate("Name of the class, such as WEBKIT"))
        ->required();
    level
        ->add_option("LEVEL", arguments.level_name, translate("Name of the level, such as VERBOSE"))
        ->required();

    CLI::App* const flags = add(
        "flags", translate("Set or clear flags: numbers such as 0x1000, or the name thread-name"),
        [&] { change_flags(arguments.enable, arguments.disable); });
    flags->add_option("--enable", arguments.enable, translate("Flags to set"));
    flags->add_option("--disable", arguments.disable, translate("Flags to clear"));
    flags->require_option(1, 2);

    add("output", translate("Set the file that the log daemon writes to"),
        [&] { set_output_path(arguments.path); })
        ->add_option("PATH", arguments.path, translate("Absolute path of at most 255 bytes"))
        ->required();

    CLI::App* const rollover = add("rollover", translate("Set how log files are rolled over"),
                                   [&] { set_rollover(arguments.size, arguments.count); });
    limit(*rollover->add_option("--size", arguments.size,
                                translate("Size of a log file, in the daemon's unit")),
          kestrel::kLogMinRolloverSize, kestrel::kLogMaxRolloverSize);
    limit(*rollover->add_option("--count", arguments.count,
                                translate("Number of full log files to keep")),
          0, kestrel::kLogMaxRolloverCount);
    rollover->require_option(1, 2);

    CLI::App* const session = add("session", translate("Set the session maximum"),
                                  [&] { set_session_max(arguments.sessions); });
    limit(*session
               ->add_option("MAXIMUM", arguments.sessions,
                            translate("Session maximum, in the daemon's unit"))
               ->required(),
          0, kestrel::kLogMaxSessions);

    add("reset", translate("Reset all settings to their defaults"), [] { reset_settings(); });

    CLI::App* const following =
        add("follow", translate("Show log lines live, listening in place of the log daemon"), [&] {
            arguments.follow.json = arguments.json;
            follow(arguments.follow);
        });
    following->add_option("--level", arguments.follow.lowest_level,
                          translate("Show only lines of this level or a higher one"));
    following->add_option(
        "--class", arguments.follow.classes,
        translate("Show only lines of this class and its subclasses; may be repeated"));
}

int run(const Command& command) {
    try {
        command();
        return 0;
    } catch (const OutputClosed&) {
        return 0;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "kestrel-log: %s\n", error.what());
        return kExitUsage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kestrel-log: %s\n", error.what());
        return kExitFailure;
    }
}

}  // namespace

// Adding the options throws only on programming errors.
int main(int argc, char** argv) {  // NOLINT(bugprone-exception-escape)
    std::signal(SIGPIPE, SIG_IGN);

    use_translations();

    CLI::App app(translate("Shows and changes the log settings that all programs of the client "
                           "family share, and shows their log lines."),
                 "kestrel-log");
    describe_help(app);
    app.set_version_flag("--version", "kestrel-log " KESTREL_VERSION,
                         translate("Print the version"));
    app.require_subcommand(1);
    app.fallthrough();
    Arguments arguments;
    app.add_flag("--json", arguments.json, translate("Output as JSON (show, follow)"));
    Command command;
    add_commands(app, arguments, command);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app.exit(error);  // --help and --version
        std::fprintf(stderr, "kestrel-log: %s\n%s\n", explanation_of(error, app).c_str(),
                     translate("Run with --help for more information."));
        return kExitUsage;
    }
    return run(command);
}
