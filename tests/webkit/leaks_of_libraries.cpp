// Called by the leak sanitizer. Some libraries of GTK and WebKit lose the pointers to objects that
// they allocate once per process.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n"            // patterns of the fonts that are in use
           "leak:libGLX_mesa.so\n"              // extensions of the display, from Mesa 25 on
           "leak:gtk_widget_register_window\n"  // windows of popovers, from GTK 3.24.49 on
           "leak:libjavascriptcoregtk-4\n";     // the UI process's own run loops and threads
}
