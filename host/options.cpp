#include "host/options.h"

#include <gio/gio.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>

#include "host/private_home.h"
#include "ipc/protocol.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kExtensionFile = "libkestrel-extension.so";
constexpr int kMaxTimeout = 3'600;

struct Free {
    void operator()(char* text) const { g_free(text); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GOptionContext* context) const { g_option_context_free(context); }
};
using Text = std::unique_ptr<char, Free>;

// What GOption fills in.
struct Arguments {
    char* page = nullptr;
    char* resources = nullptr;
    char* extension_directory = nullptr;
    char* install_root = nullptr;
    char* home = nullptr;
    char* transcript = nullptr;
    char* screenshot = nullptr;
    gboolean call_everything = FALSE;
    int timeout = static_cast<int>(Options().timeout.count());
    gboolean version = FALSE;

    Arguments() = default;
    ~Arguments() {
        for (char* text :
             {page, resources, extension_directory, install_root, home, transcript, screenshot}) {
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
        GOptionEntry{"page", 'p', 0, G_OPTION_ARG_FILENAME, &page, "The store page to show (required)", "FILE|URL"},
        GOptionEntry{"resources", 'r', 0, G_OPTION_ARG_FILENAME, &resources, "Localised resources for the page: a script expression", "FILE"},
        GOptionEntry{"extension-dir", 0, 0, G_OPTION_ARG_FILENAME, &extension_directory, "Where the web extension is (default: beside this program's directory)", "DIR"},
        GOptionEntry{"install-root", 0, 0, G_OPTION_ARG_FILENAME, &install_root, "The client's install root, whose nls/ holds the catalogues (default: the home directory)", "DIR"},
        GOptionEntry{"home", 0, 0, G_OPTION_ARG_FILENAME, &home, "The home directory of the web processes (default: a temporary one)", "DIR"},
        GOptionEntry{"transcript", 't', 0, G_OPTION_ARG_FILENAME, &transcript, "Write the messages to a file as well", "FILE"},
        GOptionEntry{"auto", 'a', 0, G_OPTION_ARG_NONE, &call_everything, "Have the page call every function once, and leave: 0 if all arrived and all callbacks ran", nullptr},
        GOptionEntry{"screenshot", 's', 0, G_OPTION_ARG_FILENAME, &screenshot, "With --auto: a picture of the page at the end, as PNG", "FILE"},
        GOptionEntry{"timeout", 0, 0, G_OPTION_ARG_INT, &timeout, "With --auto: leave after so many seconds at the latest (default: 60)", "SECONDS"},
        GOptionEntry{"version", 0, 0, G_OPTION_ARG_NONE, &version, "Print the version", nullptr},
        GOptionEntry{},
    };
    // clang-format on
    const std::unique_ptr<GOptionContext, Free> context(
        g_option_context_new("- shows a store page and answers it"));
    g_option_context_add_main_entries(context.get(), entries.data(), nullptr);
    GError* failure = nullptr;
    const bool is_parsed = g_option_context_parse(context.get(), &argc, &argv, &failure) != FALSE;
    const std::unique_ptr<GError, Free> error(failure);
    if (!is_parsed) throw UsageError(error->message);
    if (argc > 1) throw UsageError(std::string("unexpected argument: ") + argv[1]);
}

std::string absolute(const char* path) {
    const Text text(g_canonicalize_filename(path, nullptr));
    return text.get();
}

std::string existing_directory(const char* option, const char* path) {
    std::string full = absolute(path);
    std::error_code ignored;
    if (!fs::is_directory(full, ignored)) {
        throw UsageError(std::string(option) + ": no such directory: " + path);
    }
    if (g_utf8_validate(full.c_str(), -1, nullptr) == FALSE) {
        throw UsageError(std::string(option) + ": the path is not UTF-8: " + path);
    }
    return full;
}

// A file that is yet to be written.
std::string future_file(const char* option, const char* path) {
    std::string full = absolute(path);
    std::error_code ignored;
    if (!fs::is_directory(fs::path(full).parent_path(), ignored) ||
        fs::is_directory(full, ignored)) {
        throw UsageError(std::string(option) + ": cannot write " + path);
    }
    return full;
}

std::string page_uri(const char* page) {
    const Text scheme(g_uri_parse_scheme(page));
    if (scheme) {
        if (g_uri_is_valid(page, G_URI_FLAGS_NONE, nullptr) == FALSE) {
            throw UsageError(std::string("--page: not a valid URL: ") + page);
        }
        return page;
    }
    const std::string path = absolute(page);
    std::error_code ignored;
    if (!fs::is_regular_file(path, ignored)) {
        throw UsageError(std::string("--page: no such file: ") + page);
    }
    const Text uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
    return uri.get();
}

// Checked here because the extension would drop, or break off at, anything else without a word.
std::string resources_text(const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(file), {});
    if (!file.is_open() || file.bad()) {
        throw UsageError(std::string("--resources: cannot read ") + path);
    }
    if (g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE) {
        throw UsageError(std::string("--resources: not UTF-8 text: ") + path);
    }
    return text;
}

std::string default_extension_directory() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path() / "web-extensions";
}

std::string extension_directory(const char* given) {
    std::string path = given == nullptr ? default_extension_directory()
                                        : existing_directory("--extension-dir", given);
    std::error_code ignored;
    if (!fs::exists(path + "/" + kExtensionFile, ignored)) {
        throw UsageError(std::string("--extension-dir: there is no ") + kExtensionFile + " in " +
                         path);
    }
    return path;
}

std::string home_directory(const char* path) {
    std::string home = existing_directory("--home", path);
    if (socket_path_in(home).size() > kMaxSocketPath) {
        throw UsageError(std::string("--home: the path is too long for a socket: ") + path);
    }
    return home;
}

}  // namespace

Options parse_options(int argc, char** argv) {
    Arguments given;
    given.parse(argc, argv);
    Options options;
    options.show_version = given.version != FALSE;
    if (options.show_version) return options;

    if (given.page == nullptr) throw UsageError("which page? Give --page FILE or --page URL");
    options.page_uri = page_uri(given.page);
    options.extension_directory = extension_directory(given.extension_directory);
    if (given.resources) options.resources = resources_text(given.resources);
    if (given.install_root) {
        options.install_root = existing_directory("--install-root", given.install_root);
    }
    if (given.home) options.home = home_directory(given.home);
    if (given.transcript) options.transcript = future_file("--transcript", given.transcript);
    if (given.screenshot) options.screenshot = future_file("--screenshot", given.screenshot);

    // One message carries both, each with its NUL.
    if (options.page_uri.size() + options.resources.size() + 2 > kMaxInboundPayload) {
        throw UsageError("--page and --resources together are too long for the extension");
    }
    options.call_everything = given.call_everything != FALSE;
    if (!options.call_everything && !options.screenshot.empty()) {
        throw UsageError("--screenshot is of use with --auto only");
    }
    if (given.timeout < 1 || given.timeout > kMaxTimeout) {
        throw UsageError("--timeout: give 1 to " + std::to_string(kMaxTimeout) + " seconds");
    }
    options.timeout = std::chrono::seconds(given.timeout);
    return options;
}

}  // namespace kestrel
