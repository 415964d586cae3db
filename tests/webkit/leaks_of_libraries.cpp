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

// Asked for by the leak sanitizer. The test program is a GTK program with a web view; its libraries
// keep what they make once per process, and some forget where.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    // GTK forgets lists of the windows of popovers from 3.24.49 on. The sanitizer sees their stacks
    // up to GLib only: with that version, leaks of GLib's memory are not told from them.
    return gtk_get_micro_version() < 49 ? kLeaks + kGlib : kLeaks;
}
