// JavaScriptCore's garbage collector.
#pragma once

#include <JavaScriptCore/JavaScript.h>

// Collects garbage synchronously; declared in no public header.
extern "C" void JSSynchronousGarbageCollectForDebugging(JSContextRef context);

namespace kestrel::testing {

// The thread sanitizer delays the signals with which the collector stops threads: it may deadlock.
#ifdef __SANITIZE_THREAD__
inline constexpr bool kCollectorMayRun = false;
#else
inline constexpr bool kCollectorMayRun = true;
#endif

}  // namespace kestrel::testing
