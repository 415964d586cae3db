#pragma once

#include <list>
#include <string>

#include "program/listening_socket.h"
#include "workbench/wire/connection.h"

namespace kestrel {

// Listens for web processes and owns their connections.
class MessageServer final : private MessageReceiver {
  public:
    // Throws what ListeningSocket does. `receiver` must outlive the server.
    MessageServer(const std::string& path, MessageReceiver& receiver);
    MessageServer(const MessageServer&) = delete;
    MessageServer& operator=(const MessageServer&) = delete;

    bool has_connections() const { return !connections_.empty(); }

  private:
    void accept_all();
    void on_message(Connection& connection, const webkit_message& message) override;
    void on_end(Connection& connection, std::string_view why) override;

    MessageReceiver& receiver_;
    const ListeningSocket socket_;
    std::list<Connection> connections_;
    EventSource acceptable_;
};

}  // namespace kestrel
