#pragma once

#include <functional>
#include <string>

#include "base/file_descriptor.h"
#include "tools/log_line.h"

namespace kestrel::tools {

// The connection of one process that logs.
class ProcessConnection {
  public:
    explicit ProcessConnection(FileDescriptor socket) : socket_(std::move(socket)) {}

    int fd() const { return socket_.get(); }

    // Takes what has come, without waiting, and hands on the lines that are complete. False when
    // the process has gone, or has sent what no process of the family sends.
    bool receive(const std::function<void(const LogLine&)>& take_line);

  private:
    bool take_message(std::string_view message,
                      const std::function<void(const LogLine&)>& take_line);

    FileDescriptor socket_;
    std::string unread_;
    std::string process_ = "?";
};

}  // namespace kestrel::tools
