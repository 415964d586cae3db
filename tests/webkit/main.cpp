#include <gmock/gmock.h>
#include <gtk/gtk.h>

#include <cstdlib>

#include "tests/support/temporary_directory.h"

// The environment is set before GTK starts a thread; web processes inherit it.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();

    const kestrel::testing::TemporaryDirectory home;
    setenv("HOME", home.path().c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    gtk_init(&argc, &argv);
    return RUN_ALL_TESTS();
}
