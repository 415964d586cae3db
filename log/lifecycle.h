#pragma once

#include <atomic>

namespace kestrel::logging {

// True from ZynLogInit or ZynLogInitConfigOnly to ZynLogShutdown.
extern constinit std::atomic<bool> initialised;

}  // namespace kestrel::logging
