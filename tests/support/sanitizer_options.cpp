// Called by the runtimes of the sanitizers at the start of a test program.
extern "C" {

#pragma GCC visibility push(default)

// Tests capture standard error and would hide reports. UBSan cannot report elsewhere, but it ends
// the test.
const char* __asan_default_options() { return "log_path=stdout:detect_stack_use_after_return=1"; }
const char* __tsan_default_options() { return "log_path=stdout:atexit_sleep_ms=50"; }
const char* __ubsan_default_options() { return "halt_on_error=1"; }

// None are for our own code.
const char* __tsan_default_suppressions() {
    return
        // They lock with futexes and bits, which the thread sanitizer does not know.
        "called_from_lib:libgdk_pixbuf-2.0.so\n"
        "called_from_lib:libgio-2.0.so\n"
        "called_from_lib:libglib-2.0.so\n"
        "called_from_lib:libgobject-2.0.so\n"
        "called_from_lib:libsoup-2.4.so\n"
        // Threads of the collector and the compiler read script data without locks by design.
        "called_from_lib:libjavascriptcoregtk-4\n"
        // Sources are passed to the main loop under a lock of GLib, see above.
        "race:g_main_context_dispatch\n";
}

#pragma GCC visibility pop
}
