#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kestrel::testing {

// A running kestrel-workbench with these directories for its temporary files and for the user's
// data. It is killed if it prints nothing for thirty seconds while a test waits for it.
class WorkbenchProcess {
  public:
    WorkbenchProcess(std::vector<std::string> arguments, const std::string& temporary_directory,
                     const std::string& data_directory);
    ~WorkbenchProcess();
    WorkbenchProcess(const WorkbenchProcess&) = delete;
    WorkbenchProcess& operator=(const WorkbenchProcess&) = delete;

    // Waits for a line of output that contains this text; returns it, or "" at the end of output.
    std::string wait_for_line(const std::string& text);

    // Waits for its end. Returns the exit status, or 128 + signal.
    int wait_for_end();

    // The output read so far, from standard output and standard error.
    const std::string& output() const { return output_; }

    void send_signal(int signal) const;

    pid_t pid() const { return pid_; }

  private:
    bool read_more();

    pid_t pid_ = -1;
    int pipe_ = -1;
    std::string output_;
};

}  // namespace kestrel::testing
