#pragma once

#include <sys/stat.h>

#include <stdexcept>
#include <string>

#include "base/file_descriptor.h"

namespace kestrel {

// Another program listens at the address.
class AddressInUse : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Listens at a Unix socket, and removes its file at the end. Only the calling user can connect.
class ListeningSocket {
  public:
    // Replaces a stale socket file. The path must not be empty, which would be an abstract address,
    // where any user may connect. Throws AddressInUse with the text `in_use` if another program
    // listens there, and another std::runtime_error on any other failure.
    ListeningSocket(std::string path, const std::string& in_use);
    ~ListeningSocket();
    ListeningSocket(const ListeningSocket&) = delete;
    ListeningSocket& operator=(const ListeningSocket&) = delete;

    int fd() const { return socket_.get(); }

    // The next connection, non-blocking; not open, with errno set, on failure.
    FileDescriptor accept() const;

  private:
    bool is_ours() const;

    std::string path_;
    FileDescriptor socket_;
    struct stat file_ {};
};

}  // namespace kestrel
