#pragma once

namespace kestrel::bench {

// Gives the calling process a /dev of its own, empty but for what it makes there: a place for a
// /dev/log that no system logger sees. Before any thread is started. False when the kernel refuses.
bool enter_own_dev();

}  // namespace kestrel::bench
