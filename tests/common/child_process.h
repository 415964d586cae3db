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

// What `body` writes, run in a forked child: it may change user, environment and locale. A child
// that ends otherwise than by returning from `body` is a test failure.
Output in_child(const std::function<void()>& body);

// The same as a user without privileges and without a password entry: for a test run by root,
// that user; otherwise the tester, who may have an entry.
Output as_ordinary_user(const std::function<void()>& body);

// Whether this process may become another user.
bool is_root();

// A running program, whose standard output is read line by line. It is told to end by the end of
// its standard input, and waited for.
class RunningProgram {
  public:
    explicit RunningProgram(std::vector<std::string> arguments);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    // The next line, without its newline. What comes before the end if there is none.
    std::string read_line() const;

    pid_t pid() const { return pid_; }

  private:
    pid_t pid_;
    int input_;
    int output_;
};

}  // namespace kestrel::testing
