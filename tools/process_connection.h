#pragma once

#include <functional>
#include <string>

#include "base/file_descriptor.h"
#include "tools/log_line.h"

namespace kestrel::tools {

// The connection of a process that writes log lines.
class ProcessConnection {
  public:
    explicit ProcessConnection(FileDescriptor socket) : socket_(std::move(socket)) {}

    int fd() const { return socket_.get(); }

    // Reads without blocking and calls `take_line` for each complete line. False if the process has
    // closed the connection or sent an invalid message.
    bool receive(const std::function<void(const LogLine&)>& take_line);

  private:
    bool take_message(std::string_view message,
                      const std::function<void(const LogLine&)>& take_line);

    FileDescriptor socket_;
    std::string unread_;
    std::string process_ = "?";
};

}  // namespace kestrel::tools
