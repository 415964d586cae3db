// The connection to the log daemon. Any thread may write to it; there is no lock.
#pragma once

#include <atomic>
#include <span>

namespace kestrel::logging {

extern constinit std::atomic<bool> daemon_connected;

// Connects and sends `ident` as the process's name; leaves daemon_connected false on failure.
// Called by one thread, as ZynLogInit is.
void connect_daemon(const char* ident);

// Sends a message with one write(), so that messages of several threads do not interleave. After an
// incomplete write the message is lost and the connection closed. Raises SIGPIPE if the daemon has
// closed its end.
void send_to_daemon(std::span<const char> message);

void disconnect_daemon();

}  // namespace kestrel::logging
