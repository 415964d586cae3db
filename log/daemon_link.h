// The connection to the log daemon, which any thread writes to without a lock.
#pragma once

#include <atomic>
#include <span>

namespace kestrel::logging {

extern constinit std::atomic<bool> daemon_connected;

// Connects and introduces the process by `ident`; leaves daemon_connected false on failure. One
// thread, as ZynLogInit.
void connect_daemon(const char* ident);

// Writes one message with one write, so that messages of several threads do not mix. A message that
// is not taken whole is lost, and the connection with it. Raises SIGPIPE when the daemon has gone.
void send_to_daemon(std::span<const char> message);

void disconnect_daemon();

}  // namespace kestrel::logging
