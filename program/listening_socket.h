#pragma once

#include <sys/stat.h>

#include <stdexcept>
#include <string>

#include "base/file_descriptor.h"

namespace kestrel {

// Another program listens there.
class AddressInUse : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Listens at a Unix socket's path, which it removes at its end. The socket is the calling user's
// alone.
class ListeningSocket {
  public:
    // Replaces the socket file of a listener that has gone. The path is not empty, which would be
    // an abstract name, where any user may connect. Throws AddressInUse, with `in_use` as what to
    // tell the user, when somebody listens there; another std::runtime_error when something else is
    // in the way.
    ListeningSocket(std::string path, const std::string& in_use);
    ~ListeningSocket();
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    int fd() const { return socket_.get(); }

    // The next connection, which never makes its owner wait; none, with errno, when it cannot be
    // had.
    FileDescriptor accept() const;

  private:
    bool is_ours() const;

    std::string path_;
    FileDescriptor socket_;
    struct stat file_ {};
};

}  // namespace kestrel
