#include "benchmarks/page/page_session.h"

#include <gtk/gtk.h>

#include <cstdlib>
#include <filesystem>

namespace kestrel::bench {

PageEnvironment::PageEnvironment() : client_directory_(home_.path() + "/.QUOClient") {
    std::filesystem::create_directory(client_directory_);
    setenv("HOME", home_.path().c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    gtk_init(nullptr, nullptr);
}

}  // namespace kestrel::bench
