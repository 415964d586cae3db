#pragma once

namespace kestrel {

// Reads and dispatches messages from server_fd until the host goes or breaks the protocol, which is
// reported. Makes the calling thread the link's reader.
void receive_until_end();

// Whether the calling thread is the link's reader.
bool on_reader_thread();

}  // namespace kestrel
