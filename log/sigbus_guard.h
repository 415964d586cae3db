#pragma once

#include <cstddef>

namespace kestrel::logging {

// Keeps the process alive if another process truncates the mapped file, or if its disk is full: an
// access to the guarded page that raises SIGBUS replaces the page with a private copy of the
// substitute and continues. Every other SIGBUS is passed to the previous handler. There is one
// guard in a process, for one page, set and removed by one thread.

// `page` is page-aligned. The `size` bytes at `substitute`, a page at most, must stay unchanged.
void set_sigbus_guard(void* page, const void* substitute, std::size_t size);

// Whether the page has been replaced since the guard was set. If a thread writes to the page and
// then gets false, the write was not to the substitute. Any thread.
bool has_substitute();

// Restores the previous handler, unless another one has been installed since.
void lift_sigbus_guard();

}  // namespace kestrel::logging
