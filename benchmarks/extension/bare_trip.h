// The least that a round trip takes of a library whose host is another process, and whose page
// lives in a main loop: bytes to the host, bytes back to a thread that waits for them, from there
// to the main loop, and what JavaScriptCore takes for the texts, the callback and its arguments.
#pragma once

#include <JavaScriptCore/JavaScript.h>

#include <span>

namespace kestrel::bench {

// Has the host send the first text back, and calls the page's function `bareComplete` with it and
// four empty ones in the main loop; then writes 16 bytes to `link`. One at a time, of at most 4 KB;
// main thread.
void bare_trip(JSContextRef context, std::span<const JSValueRef> texts, int link);

}  // namespace kestrel::bench
