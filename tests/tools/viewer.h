// A running `kestrel-log follow`, and processes that write lines to it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/file_descriptor.h"
#include "tests/tools/program.h"

namespace kestrel::testing {

// The socket of the viewer, in an existing directory.
std::string socket_path();

// A listening viewer.
class Viewer : public Program {
  public:
    explicit Viewer(const std::vector<std::string>& arguments = {"follow"});

    const std::string greeting;
};

// Writes one line from a new process of this name.
void log_as(const char* process, std::uint32_t log_class, int level, const char* text);

// A connection to the viewer that sends arbitrary bytes.
class RawProcess {
  public:
    RawProcess();

    void send_bytes(const std::string& bytes) const;

    // Whether the viewer has closed the connection.
    bool is_dropped() const;

  private:
    FileDescriptor socket_;
};

// A serialised log record of thread 7 at time 0.
std::string log_record(const std::string& text, char level = 4, char log_class = 41);

}  // namespace kestrel::testing
