#include "workbench/wire/message_server.h"

#include <utility>

#include "program/translation.h"

namespace kestrel {
namespace {

// More than a window starts; limits the open descriptors.
constexpr std::size_t kMaxConnections = 64;

}  // namespace

MessageServer::MessageServer(const std::string& path, MessageReceiver& receiver)
    : receiver_(receiver),
      socket_(path, formatted(translate("another host is listening on %s"), path.c_str())),
      acceptable_(EventSource::on_descriptor(socket_.fd(), G_IO_IN, [this] { accept_all(); })) {}

void MessageServer::accept_all() {
    for (;;) {
        FileDescriptor client = socket_.accept();
        if (!client.is_open()) return;
        if (connections_.size() < kMaxConnections) {
            connections_.emplace_back(std::move(client), static_cast<MessageReceiver&>(*this));
        }
    }
}

void MessageServer::on_message(Connection& connection, const webkit_message& message) {
    receiver_.on_message(connection, message);
}

void MessageServer::on_end(Connection& connection, std::string_view why) {
    receiver_.on_end(connection, why);
    connections_.remove_if([&](const Connection& each) { return &each == &connection; });
}

}  // namespace kestrel
