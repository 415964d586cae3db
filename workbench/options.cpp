#include "workbench/options.h"

#include <CLI/CLI.hpp>
#include <glib.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "ipc/protocol.h"
#include "program/beside_program.h"
#include "program/command_line_error.h"
#include "program/help.h"
#include "program/translation.h"
#include "workbench/check/script_check.h"
#include "workbench/private_home.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kExtensionFile = "libkestrel-extension.so";
constexpr const char* kDataDirectory = "kestrel-workbench";
constexpr int kMaxTimeout = 3'600;

// Relative to the program: in the build tree, and installed.
constexpr std::array kExtensionDirectories = {"../web-extensions", WORKBENCH_EXTENSIONS_FROM_BIN};
constexpr const char* kSampleStore = WORKBENCH_STORE_FROM_BIN;

struct Arguments {
    std::optional<std::string> page;
    std::optional<std::string> resources;
    std::optional<std::string> extension_directory;
    std::optional<std::string> install_root;
    std::optional<std::string> home;
    std::optional<std::string> data;
    std::optional<std::string> locale;
    std::optional<std::string> transcript;
    std::optional<std::string> script;
    std::optional<std::string> screenshot;
    std::optional<int> timeout;
    bool has_no_sandbox = false;
    bool is_headless = false;
    bool call_everything = false;
    bool agrees = false;
    bool version = false;
};

void add_options(CLI::App& app, Arguments& given) {
    // The last one counts: scripts add to the options that they are given.
    app.option_defaults()->take_last();
    const auto add = [&app](const char* names, std::optional<std::string>& value, const char* type,
                            const char* description) {
        app.add_option(names, value, description)->type_name(type);
    };
    // clang-format off
    add("-p,--page", given.page, "FILE|URL", translate("The store page to show (default: the sample store)"));
    add("-r,--resources", given.resources, "FILE", translate("Localised resources for the page: a script expression"));
    add("-l,--locale", given.locale, "NAME", translate("The language of the client's catalogue, such as de (default: the user's)"));
    add("--extension-dir", given.extension_directory, "DIR", translate("The directory of the web extension (default: where it was built or installed)"));
    add("--install-root", given.install_root, "DIR", translate("The client's install root, whose nls/ holds the catalogues (default: the home directory)"));
    add("--home", given.home, "DIR", translate("The home directory of the web processes (default: a temporary one)"));
    add("-d,--data", given.data, "DIR", translate("The directory of the database with items and subscriptions (default: the user's data directory; a temporary one with --headless)"));
    add("-t,--transcript", given.transcript, "FILE", translate("Also write the messages to a file, as lines of JSON"));
    app.add_flag("--no-sandbox", given.has_no_sandbox, translate("Let web processes read all files"));
    app.add_flag("--headless", given.is_headless, translate("Show no window and exit after the script: with status 0 if all its expectations held"));
    add("-s,--script", given.script, "FILE", translate("With --headless: run this script in the page"));
    app.add_flag("-a,--auto", given.call_everything, translate("With --headless: let the page call every function once; status 0 if all calls arrived and all callbacks ran"));
    app.add_flag("-y,--yes", given.agrees, translate("With --headless: agree to everything the page asks (default: decline)"));
    add("--screenshot", given.screenshot, "FILE", translate("With --headless: save a picture of the page at the end, as PNG"));
    limit(*app.add_option("--timeout", given.timeout, translate("With --headless: exit after this many seconds at the latest (default: 60)")), 1, kMaxTimeout);
    app.add_flag("--version", given.version, translate("Print the version"));
    // clang-format on
}

// Prints the help and ends the process if asked to.
Arguments parse(int argc, const char* const* argv) {
    CLI::App app(translate("Shows a store page, answers its messages, and lists them."),
                 "kestrel-workbench");
    describe_help(app);
    Arguments given;
    add_options(app, given);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        std::exit(app.exit(help));
    } catch (const CLI::ParseError& error) {
        throw UsageError(explanation_of(error, app));
    }
    return given;
}

std::string default_extension_directory() {
    for (const char* directory : kExtensionDirectories) {
        std::string found = beside_program(directory);
        if (!found.empty()) return found;
    }
    return "";
}

std::string extension_directory(const std::optional<std::string>& given) {
    std::string path =
        given ? existing_directory("--extension-dir", *given) : default_extension_directory();
    std::error_code ignored;
    if (!fs::exists(path + "/" + kExtensionFile, ignored)) {
        throw UsageError(formatted(translate("%s: there is no %s in %s"), "--extension-dir",
                                   kExtensionFile, path.c_str()));
    }
    return path;
}

std::string page_uri(const std::optional<std::string>& given) {
    if (given) return page_address("--page", *given);
    const std::string sample = beside_program(kSampleStore);
    if (sample.empty()) throw UsageError(formatted(translate("%s is required"), "--page"));
    return page_address("--page", sample);
}

std::string home_directory(const std::string& path) {
    std::string home = existing_directory("--home", path);
    if (socket_path_in(home).size() > kMaxSocketPath) {
        throw UsageError(formatted(translate("%s: the path is too long for a socket: %s"), "--home",
                                   path.c_str()));
    }
    return home;
}

// GLib caches the directory, while HOME is still the user's: called in headless runs, too.
std::string default_data_directory(bool is_headless) {
    const std::string directory = std::string(g_get_user_data_dir()) + "/" + kDataDirectory;
    return is_headless ? "" : directory;
}

void check_headless(const Arguments& given) {
    if (given.script && given.call_everything) {
        throw UsageError(
            formatted(translate("%s and %s exclude each other"), "--script", "--auto"));
    }
    const std::array needing = {
        std::pair{"--script", given.script.has_value()},
        std::pair{"--auto", given.call_everything},
        std::pair{"--yes", given.agrees},
        std::pair{"--screenshot", given.screenshot.has_value()},
        std::pair{"--timeout", given.timeout.has_value()},
    };
    for (const auto& [name, is_given] : needing) {
        if (is_given && !given.is_headless) {
            throw UsageError(formatted(translate("%s requires --headless"), name));
        }
    }
}

void check_lengths(const Options& options) {
    check_page_fits(options.page_uri, options.resources);
    if (ScriptCheck(options.script).on_page_shown().size() + 1 > kMaxInboundPayload) {
        throw UsageError(translate("--script: too long for the extension"));
    }
}

}  // namespace

void check_page_fits(const std::string& page_uri, const std::string& resources) {
    if (page_uri.size() + resources.size() + 2 > kMaxInboundPayload) {
        throw UsageError(
            translate("the page's address and resources together are too long for the extension"));
    }
}

Options parse_options(int argc, const char* const* argv) {
    const Arguments given = parse(argc, argv);
    Options options;
    options.show_version = given.version;
    if (options.show_version) return options;

    check_headless(given);
    options.is_headless = given.is_headless;
    options.call_everything = given.call_everything;
    options.agrees = given.agrees;
    options.has_sandbox = !given.has_no_sandbox;
    options.page_uri = page_uri(given.page);
    options.extension_directory = extension_directory(given.extension_directory);
    if (given.resources) options.resources = text_of_file("--resources", *given.resources);
    if (given.install_root) {
        options.install_root = existing_directory("--install-root", *given.install_root);
    }
    if (given.home) options.home = home_directory(*given.home);
    options.user_home = g_get_home_dir();
    options.data = default_data_directory(options.is_headless);
    if (given.data) options.data = existing_directory("--data", *given.data);
    options.locale = given.locale.value_or("");
    if (given.transcript) options.transcript = future_file("--transcript", *given.transcript);
    if (given.script) options.script = text_of_file("--script", *given.script);
    if (given.screenshot) options.screenshot = future_file("--screenshot", *given.screenshot);
    if (given.timeout) options.timeout = std::chrono::seconds(*given.timeout);
    check_lengths(options);
    return options;
}

}  // namespace kestrel
