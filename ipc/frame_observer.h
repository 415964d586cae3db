// The seam for the layer above that watches the link.
#pragma once

#include <atomic>

#include "ipc/direction.h"
#include "ipc/protocol.h"

namespace kestrel {

// Called with each frame before it is sent, and when it has been read, before it is handled. On the
// thread that sends or reads, one frame of a direction at a time.
using FrameObserver = void (*)(Direction direction, const webkit_message& frame) noexcept;

// Null while nobody watches.
inline constinit std::atomic<FrameObserver> frame_observer = nullptr;

inline void show_to_observer(Direction direction, const webkit_message& frame) {
    if (const FrameObserver observer = frame_observer.load(std::memory_order_relaxed)) {
        observer(direction, frame);
    }
}

}  // namespace kestrel
