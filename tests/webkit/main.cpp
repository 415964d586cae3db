#include <gmock/gmock.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "tests/support/temporary_directory.h"

namespace {

#ifdef ASAN_RUNTIME

// The extension is built with the sanitizer, the web process is not: the sanitizer's runtime must
// be preloaded. Web processes exit with their pages in memory, so leaks are not checked.
void prepare_web_processes(const std::string& reports) {
    const char* const others = std::getenv("LD_PRELOAD");
    const std::string preloads =
        ASAN_RUNTIME + (others == nullptr ? "" : ":" + std::string(others));
    setenv("LD_PRELOAD", preloads.c_str(), 1);
    setenv("ASAN_OPTIONS", ("detect_leaks=0:log_path=" + reports).c_str(), 1);
    // At exit, Mesa's threads read memory that Mesa has freed.
    setenv("WEBKIT_DISABLE_COMPOSITING_MODE", "1", 1);
}

// Whether no web process has written a report.
bool web_processes_are_clean(const std::string& reports) {
    bool clean = true;
    const std::filesystem::path start = reports;
    for (const auto& entry : std::filesystem::directory_iterator(start.parent_path())) {
        if (!entry.path().filename().string().starts_with(start.filename().string())) continue;
        std::cout << std::ifstream(entry.path()).rdbuf();
        clean = false;
    }
    return clean;
}

#else

void prepare_web_processes(const std::string& /*reports*/) {}
bool web_processes_are_clean(const std::string& /*reports*/) { return true; }

#endif

}  // namespace

// The environment is set before GTK starts threads; web processes inherit it.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();

    const kestrel::testing::TemporaryDirectory home;
    const std::string reports = home.path() + "/sanitizer-report";
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", home.path().c_str(), 1);
    prepare_web_processes(reports);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    gtk_init(&argc, &argv);
    const int result = RUN_ALL_TESTS();
    return web_processes_are_clean(reports) ? result : EXIT_FAILURE;
}
