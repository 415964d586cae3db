// A host for developing store pages: shows a page, answers its calls and lists the messages.
#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "log/zynlog.h"
#include "program/translation.h"
#include "workbench/restart.h"
#include "workbench/workbench.h"

namespace {

constexpr int kUsageStatus = 2;

// Inherited by web processes and read by GTK, the log and the catalogues. Call before any thread is
// started.
void set_up_environment(const kestrel::Options& options, const kestrel::PrivateHome& home) {
    setenv("HOME", home.path().c_str(), 1);
    if (options.locale.empty()) return;
    setenv("LANGUAGE", options.locale.c_str(), 1);
    // The C locale ignores LANGUAGE.
    if (std::string_view(std::setlocale(LC_MESSAGES, nullptr)) == "C") {
        setenv("LC_ALL", "C.UTF-8", 1);
    }
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
    std::cerr << "kestrel-workbench: " << error.what() << '\n' << advice;
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    kestrel::use_translations();
    std::signal(SIGPIPE, SIG_IGN);  // the reader of the transcript may exit first
    const std::vector<std::string> arguments(argv, argv + argc);
    const std::vector<std::string> environment = kestrel::copy_of_environment();
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
        return fail(error, kestrel::translate("Try 'kestrel-workbench --help'.\n"), kUsageStatus);
    } catch (const std::exception& error) {
        return fail(error, "", EXIT_FAILURE);
    }
}
