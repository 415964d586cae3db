#pragma once

namespace kestrel {

// Whether the calling thread is the link's reader.
bool on_reader_thread();

}  // namespace kestrel
