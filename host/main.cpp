// A host for store pages: shows one, answers it, and prints what goes over the wire.
#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <iostream>

#include "host/host_application.h"

namespace {

constexpr int kUsageStatus = 2;

int run(const kestrel::Options& options) {
    kestrel::Transcript transcript(std::cout);
    if (!options.transcript.empty() && !transcript.copy_to(options.transcript)) {
        throw kestrel::UsageError("--transcript: cannot write " + options.transcript);
    }
    const kestrel::PrivateHome home(options.home);
    // Web processes inherit it; nothing has started a thread yet.
    setenv("HOME", home.path().c_str(), 1);
    if (gtk_init_check(nullptr, nullptr) == FALSE) {
        throw std::runtime_error("there is no display");
    }
    kestrel::HostApplication application(options, home, transcript);
    return application.run();
}

int fail(const std::exception& error, const char* advice, int status) {
    std::cerr << "kestrel-host: " << error.what() << '\n' << advice;
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    std::signal(SIGPIPE, SIG_IGN);  // whoever reads the transcript may leave before us
    try {
        const kestrel::Options options = kestrel::parse_options(argc, argv);
        if (!options.show_version) return run(options);
        std::cout << "kestrel-host " HOST_VERSION "\n";
        return EXIT_SUCCESS;
    } catch (const kestrel::UsageError& error) {
        return fail(error, "Try 'kestrel-host --help'.\n", kUsageStatus);
    } catch (const std::exception& error) {
        return fail(error, "", EXIT_FAILURE);
    }
}
