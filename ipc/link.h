// Private state of the link; for ipc/ only.
#pragma once

#include <atomic>
#include <mutex>

#include "ipc/protocol.h"
#include "ipc/webkit_client.h"

namespace kestrel {

// Serialises writers: Linux splits a large write on a stream socket, and another thread's frame
// could end up inside it. The connecting thread holds it from connect to the announcement, so that
// the announcement is the first frame that the host receives.
extern std::mutex send_lock;

// server_fd is an exported plain int, written by the reader thread and read by senders.
inline int load_server_fd() { return std::atomic_ref(webkit_client::server_fd).load(); }
inline void store_server_fd(int fd) { std::atomic_ref(webkit_client::server_fd).store(fd); }

// Writes one frame to server_fd; ends the process if the write fails or is short. Call it with
// send_lock held: exit keeps the lock, so that no second thread calls exit as well.
void write_frame(const webkit_message& frame);

}  // namespace kestrel
