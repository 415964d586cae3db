// Asked for by the sanitizers' runtimes when a test program starts. Tests take over standard error,
// where a report would not be seen; an error that cannot be shown elsewhere at least ends the test.
extern "C" {

[[gnu::visibility("default")]] const char* __asan_default_options() { return "log_path=stdout"; }

[[gnu::visibility("default")]] const char* __ubsan_default_options() { return "halt_on_error=1"; }
}
