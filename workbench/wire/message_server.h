#pragma once

#include <sys/types.h>

#include <list>
#include <stdexcept>
#include <string>

#include "program/translation.h"
#include "workbench/wire/connection.h"

namespace kestrel {

// Another program listens there.
class AddressInUse : public std::runtime_error {
  public:
    explicit AddressInUse(const std::string& path)
        : std::runtime_error(formatted(translate("another host listens on %s"), path.c_str())) {}
};

// Listens for web processes and owns their connections.
class MessageServer final : private MessageReceiver {
  public:
    // Replaces a socket that nobody listens on any more. Throws AddressInUse or std::system_error.
    // The path has kMaxSocketPath bytes at most. `receiver` must outlive the server.
    MessageServer(std::string path, MessageReceiver& receiver);
    ~MessageServer();
    MessageServer(const MessageServer&) = delete;
    MessageServer& operator=(const MessageServer&) = delete;

    bool has_connections() const { return !connections_.empty(); }

  private:
    void accept_all();
    void on_message(Connection& connection, const webkit_message& message) override;
    void on_end(Connection& connection, std::string_view why) override;

    std::string path_;
    MessageReceiver& receiver_;
    FileDescriptor socket_;
    ino_t inode_;  // of the socket's file
    std::list<Connection> connections_;
    EventSource acceptable_;
};

}  // namespace kestrel
