#include "workbench/options.h"

#include <gio/gio.h>

#include <array>
#include <filesystem>

#include "ipc/protocol.h"
#include "program/beside_program.h"
#include "program/translation.h"
#include "workbench/check/script_check.h"
#include "workbench/desktop/glib_handles.h"
#include "workbench/private_home.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kExtensionFile = "libkestrel-extension.so";
constexpr const char* kDataDirectory = "kestrel-workbench";
constexpr int kMaxTimeout = 3'600;
constexpr int kNotGiven = G_MININT;

// From the program's directory: in a build tree, and as installed.
constexpr std::array kExtensionDirectories = {"../web-extensions", WORKBENCH_EXTENSIONS_FROM_BIN};
constexpr const char* kSampleStore = WORKBENCH_STORE_FROM_BIN;

// What GOption fills in.
struct Arguments {
    char* page = nullptr;
    char* resources = nullptr;
    char* extension_directory = nullptr;
    char* install_root = nullptr;
    char* home = nullptr;
    char* data = nullptr;
    char* locale = nullptr;
    char* transcript = nullptr;
    gboolean has_no_sandbox = FALSE;
    gboolean is_headless = FALSE;
    char* script = nullptr;
    gboolean call_everything = FALSE;
    gboolean agrees = FALSE;
    char* screenshot = nullptr;
    int timeout = kNotGiven;
    gboolean version = FALSE;

    Arguments() = default;
    ~Arguments() {
        for (char* text : {page, resources, extension_directory, install_root, home, data, locale,
                           transcript, script, screenshot}) {
            g_free(text);
        }
    }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    void parse(int argc, char** argv);
};

void Arguments::parse(int argc, char** argv) {
    // clang-format off
    const std::array entries = {
        GOptionEntry{"page", 'p', 0, G_OPTION_ARG_FILENAME, &page, translate("The store page to show (default: the sample store)"), "FILE|URL"},
        GOptionEntry{"resources", 'r', 0, G_OPTION_ARG_FILENAME, &resources, translate("Localised resources for the page: a script expression"), "FILE"},
        GOptionEntry{"locale", 'l', 0, G_OPTION_ARG_STRING, &locale, translate("The language of the client's catalogue, such as de (default: the user's)"), "NAME"},
        GOptionEntry{"extension-dir", 0, 0, G_OPTION_ARG_FILENAME, &extension_directory, translate("Where the web extension is (default: where it was built or installed)"), "DIR"},
        GOptionEntry{"install-root", 0, 0, G_OPTION_ARG_FILENAME, &install_root, translate("The client's install root, whose nls/ holds the catalogues (default: the home directory)"), "DIR"},
        GOptionEntry{"home", 0, 0, G_OPTION_ARG_FILENAME, &home, translate("The home directory of the web processes (default: a temporary one)"), "DIR"},
        GOptionEntry{"data", 'd', 0, G_OPTION_ARG_FILENAME, &data, translate("Where items and subscriptions are kept (default: the user's data directory; a temporary one with --headless)"), "DIR"},
        GOptionEntry{"transcript", 't', 0, G_OPTION_ARG_FILENAME, &transcript, translate("Write the messages to a file as well, as lines of JSON"), "FILE"},
        GOptionEntry{"no-sandbox", 0, 0, G_OPTION_ARG_NONE, &has_no_sandbox, translate("Let web processes see all files"), nullptr},
        GOptionEntry{"headless", 0, 0, G_OPTION_ARG_NONE, &is_headless, translate("Show no window, and leave when the script has ended: 0 if all its expectations held"), nullptr},
        GOptionEntry{"script", 's', 0, G_OPTION_ARG_FILENAME, &script, translate("With --headless: run this script in the page"), "FILE"},
        GOptionEntry{"auto", 'a', 0, G_OPTION_ARG_NONE, &call_everything, translate("With --headless: have the page call every function once, 0 if all arrived and all callbacks ran"), nullptr},
        GOptionEntry{"yes", 'y', 0, G_OPTION_ARG_NONE, &agrees, translate("With --headless: agree to whatever the page asks (default: decline)"), nullptr},
        GOptionEntry{"screenshot", 0, 0, G_OPTION_ARG_FILENAME, &screenshot, translate("With --headless: a picture of the page at the end, as PNG"), "FILE"},
        GOptionEntry{"timeout", 0, 0, G_OPTION_ARG_INT, &timeout, translate("With --headless: leave after so many seconds at the latest (default: 60)"), "SECONDS"},
        GOptionEntry{"version", 0, 0, G_OPTION_ARG_NONE, &version, translate("Print the version"), nullptr},
        GOptionEntry{},
    };
    // clang-format on
    const GlibOptionContext context(g_option_context_new(
        translate("- shows a store page, answers it, and shows what goes over the wire")));
    g_option_context_add_main_entries(context.get(), entries.data(), nullptr);
    GError* failure = nullptr;
    const bool is_parsed = g_option_context_parse(context.get(), &argc, &argv, &failure) != FALSE;
    const GlibError error(failure);
    if (!is_parsed) throw UsageError(error->message);
    if (argc > 1) throw UsageError(formatted(translate("unexpected argument: %s"), argv[1]));
}

std::string default_extension_directory() {
    for (const char* directory : kExtensionDirectories) {
        std::string found = beside_program(directory);
        if (!found.empty()) return found;
    }
    return "";
}

std::string extension_directory(const char* given) {
    std::string path = given == nullptr ? default_extension_directory()
                                        : existing_directory("--extension-dir", given);
    std::error_code ignored;
    if (!fs::exists(path + "/" + kExtensionFile, ignored)) {
        throw UsageError(formatted(translate("%s: there is no %s in %s"), "--extension-dir",
                                   kExtensionFile, path.c_str()));
    }
    return path;
}

std::string page_uri(const char* given) {
    if (given != nullptr) return page_address("--page", given);
    const std::string sample = beside_program(kSampleStore);
    if (sample.empty()) throw UsageError(translate("which page? Give --page FILE or --page URL"));
    return page_address("--page", sample);
}

std::string home_directory(const char* path) {
    std::string home = existing_directory("--home", path);
    if (socket_path_in(home).size() > kMaxSocketPath) {
        throw UsageError(
            formatted(translate("%s: the path is too long for a socket: %s"), "--home", path));
    }
    return home;
}

// GLib keeps what it is told here, when HOME is still the user's.
std::string default_data_directory(bool is_headless) {
    const std::string directory = std::string(g_get_user_data_dir()) + "/" + kDataDirectory;
    return is_headless ? "" : directory;
}

void check_headless(const Arguments& given) {
    if (given.script != nullptr && given.call_everything != FALSE) {
        throw UsageError(
            formatted(translate("%s and %s exclude each other"), "--script", "--auto"));
    }
    const std::array needing = {
        std::pair{"--script", given.script != nullptr},
        std::pair{"--auto", given.call_everything != FALSE},
        std::pair{"--yes", given.agrees != FALSE},
        std::pair{"--screenshot", given.screenshot != nullptr},
        std::pair{"--timeout", given.timeout != kNotGiven},
    };
    for (const auto& [name, is_given] : needing) {
        if (is_given && given.is_headless == FALSE) {
            throw UsageError(formatted(translate("%s is of use with --headless only"), name));
        }
    }
    if (given.timeout != kNotGiven && (given.timeout < 1 || given.timeout > kMaxTimeout)) {
        throw UsageError(
            formatted(translate("%s: give 1 to %d seconds"), "--timeout", kMaxTimeout));
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

Options parse_options(int argc, char** argv) {
    Arguments given;
    given.parse(argc, argv);
    Options options;
    options.show_version = given.version != FALSE;
    if (options.show_version) return options;

    check_headless(given);
    options.is_headless = given.is_headless != FALSE;
    options.call_everything = given.call_everything != FALSE;
    options.agrees = given.agrees != FALSE;
    options.has_sandbox = given.has_no_sandbox == FALSE;
    options.page_uri = page_uri(given.page);
    options.extension_directory = extension_directory(given.extension_directory);
    if (given.resources) options.resources = text_of_file("--resources", given.resources);
    if (given.install_root) {
        options.install_root = existing_directory("--install-root", given.install_root);
    }
    if (given.home) options.home = home_directory(given.home);
    options.user_home = g_get_home_dir();
    options.data = default_data_directory(options.is_headless);
    if (given.data) options.data = existing_directory("--data", given.data);
    if (given.locale) options.locale = given.locale;
    if (given.transcript) options.transcript = future_file("--transcript", given.transcript);
    if (given.script) options.script = text_of_file("--script", given.script);
    if (given.screenshot) options.screenshot = future_file("--screenshot", given.screenshot);
    if (given.timeout != kNotGiven) options.timeout = std::chrono::seconds(given.timeout);
    check_lengths(options);
    return options;
}

}  // namespace kestrel
