#pragma once

#include <cstddef>

namespace kestrel::logging {

// Keeps the process alive when the file behind a mapping is cut short by someone else, or has no
// room left on its disk: while guarded, an access that raises SIGBUS finds a private copy of the
// substitute in the mapping's place and goes on. A SIGBUS elsewhere goes to whoever handled it
// before. There is one guard in a process, for one page; setting and lifting it is up to one
// thread.

// `page` begins a page; `size` bytes at `substitute`, a page at most, must stay as they are.
void set_sigbus_guard(void* page, const void* substitute, std::size_t size);

// Whether the substitute has replaced the page since the guard was set. Bytes that a thread wrote
// to the page before it gets false have not gone to the substitute. Any thread.
bool has_substitute();

// Gives the signal back, unless somebody else has taken it since.
void lift_sigbus_guard();

}  // namespace kestrel::logging
