// The least that a round trip takes of a library whose host is another process, and whose page
// lives in a main loop: bytes to the host, bytes back to a thread that waits for them, and from
// there to the main loop.
#pragma once

#include <JavaScriptCore/JavaScript.h>

namespace kestrel::bench {

// Has the host send `text` back, and calls `callback` with it in the main loop. One at a time, of
// at most 4 KB; main thread.
void bare_trip(JSContextRef context, JSStringRef text, JSObjectRef callback);

}  // namespace kestrel::bench
