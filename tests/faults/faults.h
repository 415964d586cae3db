// System calls that fail on demand. Each function that CMakeLists.txt names is
// replaced, in all code that is linked into the test program, by one that counts its calls and
// lets the n-th fail.
#pragma once

#include <string>
#include <string_view>

namespace kestrel::testing {

// From now on the `nth` call of `function`, counted from 1, fails with `error` and does nothing.
void fail(std::string_view function, int nth, int error);

// The first call of `function` fails with `error`, too: for code that runs only after a failure.
void fail_before(std::string_view function, int error);

// Whether the call that `fail` names has been made.
bool has_failed();

// The one entry of the password database from now on. The strings are copied.
void set_password_entry(std::string name, std::string home);

// Threads that the code under test has started and that have not ended. What they did before they
// ended happened before this call.
int running_threads();

// For its lifetime the calling thread's calls neither count nor fail: they are the test's own.
class NoFaults {
  public:
    NoFaults();
    ~NoFaults();
    NoFaults(const NoFaults&) = delete;
    NoFaults& operator=(const NoFaults&) = delete;
};

}  // namespace kestrel::testing
