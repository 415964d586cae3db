// Asked for by the leak sanitizer. The test program is a GTK program with a web view; its libraries
// keep what they make once per process, and some forget where.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n"            // patterns of the fonts that are in use
           "leak:libGLX_mesa.so\n"              // extensions of the display, from Mesa 25 on
           "leak:gtk_widget_register_window\n"  // windows of popovers, from GTK 3.24.49 on
           "leak:libjavascriptcoregtk-4\n";     // the UI process's own run loops and threads
}
