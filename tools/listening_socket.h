#pragma once

#include <sys/stat.h>

#include <string>

#include "log/file_descriptor.h"

namespace kestrel::tools {

// Listens at a Unix socket's path, which it removes at its end. The socket is the calling user's
// alone.
class ListeningSocket {
  public:
    // Replaces the socket file of a listener that has gone. Throws std::runtime_error when somebody
    // listens there, or something else is in the way.
    explicit ListeningSocket(std::string path);
    ~ListeningSocket();
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    int fd() const { return socket_.get(); }

    // The next connection; none, with errno, when it cannot be had.
    FileDescriptor accept() const;

  private:
    bool is_ours() const;

    std::string path_;
    FileDescriptor socket_;
    struct stat file_ {};
};

}  // namespace kestrel::tools
