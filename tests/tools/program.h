#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kestrel::testing {

// A running program with pipes for its output. Reading times out after ten seconds.
class Program {
  public:
    explicit Program(const std::vector<std::string>& arguments);
    ~Program();  // kills it if wait() has not been called
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The next line of standard output or standard error, including its newline.
    std::string read_line() { return read_line(output_); }
    std::string read_error_line() { return read_line(error_); }

    // Closes the read end of its standard output.
    void close_output();

    void send_signal(int number) const;

    // Waits until it exits. The exit status, or the negated number of the signal that killed it.
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

// Runs the built kestrel-log and waits until it exits.
Outcome kestrel_log(const std::vector<std::string>& arguments);

// The command line of the built kestrel-log.
std::vector<std::string> kestrel_log_command(const std::vector<std::string>& arguments);

// Runs any program and waits until it exits.
Outcome run(const std::vector<std::string>& arguments);

}  // namespace kestrel::testing
