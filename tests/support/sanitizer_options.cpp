// Asked for by the sanitizers' runtimes when a test program starts.
extern "C" {

#pragma GCC visibility push(default)

// Tests take over standard error, where a report would not be seen; an error that cannot be shown
// elsewhere at least ends the test.
const char* __asan_default_options() { return "log_path=stdout:detect_stack_use_after_return=1"; }
const char* __tsan_default_options() { return "log_path=stdout:atexit_sleep_ms=50"; }
const char* __ubsan_default_options() { return "halt_on_error=1"; }

// None for our own code.
const char* __tsan_default_suppressions() {
    return
        // Locks of futexes and bits, which the thread sanitizer does not see.
        "called_from_lib:libgdk_pixbuf-2.0.so\n"
        "called_from_lib:libgio-2.0.so\n"
        "called_from_lib:libglib-2.0.so\n"
        "called_from_lib:libgobject-2.0.so\n"
        "called_from_lib:libsoup-2.4.so\n"
        // The collector's and the compiler's threads read what script writes, by design.
        "called_from_lib:libjavascriptcoregtk-4\n"
        // What a thread gives to the main loop is the main loop's from then on: handed over under
        // one of GLib's locks, see above.
        "race:g_main_context_dispatch\n";
}

#pragma GCC visibility pop
}
