#pragma once

#include <sys/types.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace kestrel::testing {

struct Output {
    std::string out;
    std::string err;

    friend bool operator==(const Output&, const Output&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Output& output) {
        return stream << '"' << output.out << "\" and, as errors, \"" << output.err << '"';
    }
};

// The output of `body`, run in a forked child: it may change user, environment and locale. The test
// fails if the child exits without returning from `body`.
Output in_child(const std::function<void()>& body);

// The same as an unprivileged user. If root runs the test, the user has no password entry.
Output as_ordinary_user(const std::function<void()>& body);

// Whether this process may become another user.
bool is_root();

// A running program whose standard output is read line by line. The destructor closes its standard
// input and waits until it exits.
class RunningProgram {
  public:
    explicit RunningProgram(std::vector<std::string> arguments);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    // The next line without its newline, or the rest of the output.
    std::string read_line() const;

    pid_t pid() const { return pid_; }

  private:
    pid_t pid_;
    int input_;
    int output_;
};

}  // namespace kestrel::testing
