#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "base/file_descriptor.h"

namespace kestrel::testing {

struct ProcessOptions {
    std::vector<std::string> environment = {};  // NAME=value, besides the test's own variables
    bool merge_errors = false;                  // captures standard error in output()
};

struct ProcessResult {
    int status = 0;  // the exit status, or the negative number of the signal that ended it
    std::string output;
    std::string error;
};

// A child process whose standard input, output and error are pipes to the test. A process that
// neither writes nor ends within kPatience while a test waits for it has failed.
class Process {
  public:
    // Starts a program, which is searched for in PATH unless its name has a slash.
    explicit Process(std::vector<std::string> command, const ProcessOptions& options = {});

    // Forks, and exits with the result of `body` without running exit handlers.
    explicit Process(const std::function<int()>& body);

    // Ends it with SIGTERM, or with SIGKILL if it ignores that, and waits for its end.
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    // -1 after its end.
    pid_t pid() const { return pid_; }

    void send_signal(int number) const;

    // Each returns when the process has stopped or continues.
    void stop() const;
    void resume() const;

    void close_input() { input_ = FileDescriptor(); }
    void close_output() { output_.pipe = FileDescriptor(); }

    // The next line with its newline; without one if the stream ends or the wait fails.
    std::string read_line() { return read_line(output_); }
    std::string read_error_line() { return read_line(errors_); }

    // Waits for a line of output that contains `text`, from the beginning; "" if there is none.
    std::string wait_for_line(const std::string& text);

    // All that has been read so far.
    const std::string& output() const { return output_.text; }
    const std::string& errors() const { return errors_.text; }

    // Waits for the end, after which output() and errors() are complete. Kills a process that
    // fails to end. Returns the status as in ProcessResult.
    int wait();

  private:
    struct Stream {
        FileDescriptor pipe;
        std::string text;
        std::size_t consumed = 0;
    };

    void start(const std::function<pid_t(int input, int output, int errors)>& create);
    std::string read_line(Stream& stream);
    bool read_more();

    pid_t pid_ = -1;
    bool merge_errors_ = false;
    FileDescriptor end_;  // readable when the process has ended
    FileDescriptor input_;
    Stream output_;
    Stream errors_;
};

// Runs a program, or a function in a forked child, to its end. Its standard input is empty.
ProcessResult run(std::vector<std::string> command, const ProcessOptions& options = {});
ProcessResult run_in_child(const std::function<int()>& body);

}  // namespace kestrel::testing
