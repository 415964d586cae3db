// The built kestrel-log as a viewer of the lines that other processes write, and such processes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/file_descriptor.h"
#include "tests/tools/program.h"

namespace kestrel::testing {

// Where a viewer listens, in a directory that exists.
std::string socket_path();

// A viewer that listens.
class Viewer : public Program {
  public:
    explicit Viewer(const std::vector<std::string>& arguments = {"follow"});

    const std::string greeting;
};

// Has a process of this name write one line.
void log_as(const char* process, std::uint32_t log_class, int level, const char* text);

// A connection to the viewer that sends any bytes.
class RawProcess {
  public:
    RawProcess();

    void send_bytes(const std::string& bytes) const;

    // Whether the viewer has hung up.
    bool is_dropped() const;

  private:
    FileDescriptor socket_;
};

// A line as it goes to the daemon, written by thread 7 when time began.
std::string log_record(const std::string& text, char level = 4, char log_class = 41);

}  // namespace kestrel::testing
