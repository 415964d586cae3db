// What connecting, sending and reading share; for ipc/ only.
#pragma once

#include <atomic>
#include <mutex>

#include "ipc/protocol.h"
#include "ipc/webkit_client.h"

namespace kestrel {

// Serialises writers: Linux splits a large write on a stream socket, and a second thread's frame
// could land in the middle. The connecting thread holds it from connect to the announcement, so
// that the announcement is the first thing the host receives.
extern std::mutex send_lock;

// server_fd is an exported plain int, written by the reader thread and read by senders.
inline int load_server_fd() { return std::atomic_ref(webkit_client::server_fd).load(); }
inline void store_server_fd(int fd) { std::atomic_ref(webkit_client::server_fd).store(fd); }

// Writes one frame to server_fd; ends the process when the host cannot take it whole. Call it with
// send_lock held: on the way to exit the lock stays held, so that no second thread leaves as well.
void write_frame(const webkit_message& frame);

}  // namespace kestrel
