#include "tools/process_connection.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "log/daemon_protocol.h"

namespace kestrel::tools {
namespace {

using logging::DaemonMessageType;
using logging::LogDaemonHello;
using logging::LogRecordFields;
using logging::MessagePrefix;

template <typename Fields>
Fields fields_of(std::string_view message) {
    Fields fields;
    std::memcpy(&fields, message.data(), sizeof fields);
    return fields;
}

// The text after the fields, up to its NUL.
template <typename Fields>
std::string text_after(std::string_view message) {
    const std::string_view text = message.substr(sizeof(Fields));
    return std::string(text.substr(0, text.find('\0')));
}

}  // namespace

bool ProcessConnection::take_message(std::string_view message,
                                     const std::function<void(const LogLine&)>& take_line) {
    switch (fields_of<MessagePrefix>(message).type) {
        case DaemonMessageType::kHello:
            if (message.size() < sizeof(LogDaemonHello)) return false;
            process_ = text_after<LogDaemonHello>(message);
            return true;
        case DaemonMessageType::kRecord: {
            if (message.size() < sizeof(LogRecordFields)) return false;
            const auto record = fields_of<LogRecordFields>(message);
            take_line({.process = process_,
                       .thread = record.thread,
                       .level = record.level,
                       .log_class = record.log_class,
                       .seconds = record.seconds,
                       .microseconds = record.microseconds,
                       .text = text_after<LogRecordFields>(message)});
            return true;
        }
    }
    return false;
}

bool ProcessConnection::receive(const std::function<void(const LogLine&)>& take_line) {
    std::array<char, 65'536> bytes;
    const ssize_t got = recv(fd(), bytes.data(), bytes.size(), MSG_DONTWAIT);
    if (got == -1) return errno == EAGAIN || errno == EINTR;
    if (got == 0) return false;
    unread_.append(bytes.data(), static_cast<std::size_t>(got));

    std::string_view rest = unread_;
    while (rest.size() >= sizeof(MessagePrefix)) {
        const std::size_t size = sizeof(MessagePrefix) + fields_of<MessagePrefix>(rest).length;
        if (rest.size() < size) break;
        if (!take_message(rest.substr(0, size), take_line)) return false;
        rest.remove_prefix(size);
    }
    unread_.erase(0, unread_.size() - rest.size());
    return true;
}

}  // namespace kestrel::tools
