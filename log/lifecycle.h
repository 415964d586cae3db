#pragma once

#include <atomic>

namespace kestrel::logging {

// Between an init and the shutdown.
extern constinit std::atomic<bool> initialised;

}  // namespace kestrel::logging
