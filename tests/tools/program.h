#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kestrel::testing {

// A program that has been started, with pipes for its output. Reading waits ten seconds at most.
class Program {
  public:
    explicit Program(const std::vector<std::string>& arguments);
    ~Program();  // kills it, unless it has been waited for
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The next line, with its newline, of standard output or of standard error.
    std::string read_line() { return read_line(output_); }
    std::string read_error_line() { return read_line(error_); }

    // Closes the reading end of its standard output.
    void close_output();

    void send_signal(int number) const;

    // Waits for its end. The exit status, or the negative number of the signal that killed it.
    int wait();

  private:
    std::string read_line(int fd);

    int output_ = -1;
    int error_ = -1;
    pid_t pid_ = -1;
};

struct Outcome {
    int status;
    std::string output;
    std::string error;
};

// Runs the built kestrel-log to its end.
Outcome kestrel_log(const std::vector<std::string>& arguments);

// The same program, started.
std::vector<std::string> kestrel_log_command(const std::vector<std::string>& arguments);

// Runs any program to its end.
Outcome run(const std::vector<std::string>& arguments);

}  // namespace kestrel::testing
