#pragma once

namespace kestrel::bench {

// Gives the calling process an empty /dev of its own, in which it can create a private /dev/log.
// Call it before any thread starts. False when the kernel refuses.
bool enter_own_dev();

}  // namespace kestrel::bench
