// JavaScriptCore's garbage collector.
#pragma once

#include <JavaScriptCore/JavaScript.h>

// The one way to collect garbage before going on; declared in no public header.
extern "C" void JSSynchronousGarbageCollectForDebugging(JSContextRef context);

namespace kestrel::testing {

// The thread sanitizer keeps back the signals with which the collector stops threads: it may wait
// for ever.
#ifdef __SANITIZE_THREAD__
inline constexpr bool kCollectorMayRun = false;
#else
inline constexpr bool kCollectorMayRun = true;
#endif

}  // namespace kestrel::testing
