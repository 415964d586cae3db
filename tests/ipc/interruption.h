#pragma once

#include <pthread.h>

namespace kestrel::testing {

// Sends the thread a signal whose handler does nothing but be counted, and does not restart system
// calls.
void interrupt(pthread_t thread);

// How often that handler has run.
int interruptions();

}  // namespace kestrel::testing
