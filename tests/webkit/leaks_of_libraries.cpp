#include <gtk/gtk.h>

#include <cstddef>

namespace {

constexpr char kLeaks[] =
    "leak:libglib-2.0.so\n"           // see below
    "leak:libfontconfig.so\n"         // patterns of the fonts that are in use
    "leak:libGLX_mesa.so\n"           // extensions of the display, from Mesa 25 on
    "leak:libjavascriptcoregtk-4\n";  // the UI process's own run loops and threads
constexpr std::size_t kGlib = sizeof "leak:libglib-2.0.so\n" - 1;

}  // namespace

// Called by the leak sanitizer. Some libraries of GTK and WebKit lose the pointers to objects that
// they allocate once per process.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    // From 3.24.49 on, GTK leaks lists of the windows of popovers. The sanitizer sees their stacks
    // only up to GLib, so with these versions all leaks of GLib's memory are suppressed.
    return gtk_get_micro_version() < 49 ? kLeaks + kGlib : kLeaks;
}
