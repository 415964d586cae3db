// Asked for by the leak sanitizer. The test program is a GTK program with a web view; its libraries
// keep what they make once per process, and some forget where.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n"         // patterns of the fonts that are in use
           "leak:libjavascriptcoregtk-4\n";  // the UI process's own run loops and threads
}
