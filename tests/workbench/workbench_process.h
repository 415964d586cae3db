#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kestrel::testing {

// A running kestrel-workbench, whose temporary files are in the directory that it is given, and
// whose user's data are in `data_directory`. Whoever waits for one that says nothing for thirty
// seconds waits no longer, and ends it.
class WorkbenchProcess {
  public:
    WorkbenchProcess(std::vector<std::string> arguments, const std::string& temporary_directory,
                     const std::string& data_directory);
    ~WorkbenchProcess();
    WorkbenchProcess(const WorkbenchProcess&) = delete;
    WorkbenchProcess& operator=(const WorkbenchProcess&) = delete;

    // Waits for a line of output that holds this text; "" if none comes.
    std::string wait_for_line(const std::string& text);

    // Waits for the end. The exit status; 128 and the signal if one ended it.
    int wait_for_end();

    // What it has written on standard output and standard error, up to what was waited for.
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
