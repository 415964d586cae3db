// A host for developing store pages: shows a page, answers its calls and lists the messages.
#include <gtk/gtk.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "base/password_entry.h"
#include "log/zynlog.h"
#include "program/language.h"
#include "program/translation.h"
#include "workbench/restart.h"
#include "workbench/workbench.h"

namespace {

constexpr int kUsageStatus = 2;

// Inherited by web processes and read by GTK, the log and the catalogues. Call before any thread is
// started.
void set_up_environment(const kestrel::Options& options, const kestrel::PrivateHome& home) {
    setenv("HOME", home.path().c_str(), 1);
    // Mesa's threads would write into the home directory while it is being removed.
    setenv("MESA_SHADER_CACHE_DISABLE", "true", 0);
    // Sandboxed web processes can read the client's directory.
    if (!options.locale.empty()) kestrel::use_language(options.locale, home.client_directory());
}

// GLib caches the home directory on first use, and WebKit crashes if it does not exist.
void ensure_home_directory() {
    const auto is_usable = [](const std::string& path) {
        std::error_code error;
        return path.starts_with('/') && std::filesystem::is_directory(path, error);
    };
    const char* const home = std::getenv("HOME");
    if (home != nullptr && is_usable(home)) return;
    const std::string user_home = kestrel::password_entry_of_caller().home;
    setenv("HOME", is_usable(user_home) ? user_home.c_str() : "/", 1);
}

struct Outcome {
    int status = EXIT_SUCCESS;
    std::optional<std::string> wanted_locale;  // to restart with
};

Outcome run(const kestrel::Options& options) {
    kestrel::Transcript transcript(std::cout);
    if (!options.transcript.empty() && !transcript.copy_to(options.transcript)) {
        throw kestrel::UsageError(kestrel::formatted(kestrel::translate("%s: cannot write %s"),
                                                     "--transcript", options.transcript.c_str()));
    }
    const kestrel::PrivateHome home(options.home);
    set_up_environment(options, home);
    ZynLogInit();
    if (gtk_init_check(nullptr, nullptr) == FALSE) {
        throw std::runtime_error(kestrel::translate("there is no display"));
    }
    kestrel::Workbench workbench(options, home, transcript);
    const int status = workbench.run();
    return {status, workbench.wanted_locale()};
}

int fail(const std::exception& error, const char* advice, int status) {
    std::cerr << "kestrel-workbench: " << error.what() << '\n';
    if (*advice != '\0') std::cerr << advice << '\n';
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    kestrel::use_translations();
    std::signal(SIGPIPE, SIG_IGN);  // the reader of the transcript may exit first
    const std::vector<std::string> arguments(argv, argv + argc);
    const std::vector<std::string> environment = kestrel::copy_of_environment();
    ensure_home_directory();
    try {
        const kestrel::Options options = kestrel::parse_options(argc, argv);
        if (options.show_version) {
            std::cout << "kestrel-workbench " WORKBENCH_VERSION "\n";
            return EXIT_SUCCESS;
        }
        const Outcome outcome = run(options);
        if (!outcome.wanted_locale) return outcome.status;
        kestrel::restart(kestrel::arguments_with_locale(arguments, *outcome.wanted_locale),
                         environment);
    } catch (const kestrel::UsageError& error) {
        return fail(error, kestrel::translate("Run with --help for more information."),
                    kUsageStatus);
    } catch (const std::exception& error) {
        return fail(error, "", EXIT_FAILURE);
    }
}
