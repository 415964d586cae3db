// What goes over the wire, written down for people and programs: docs/protocol.md, "Watching the
// wire". Frames are copied into a queue, and a detached thread writes them, so that neither the
// page nor the reader ever waits for whoever reads the trace.
#pragma once

#include <atomic>

#include "ipc/direction.h"
#include "ipc/protocol.h"

namespace kestrel {

extern std::atomic<bool> wire_is_traced;

// Starts tracing if KESTREL_TRACE asks for it. Before the link makes its socket; later calls do
// nothing. What is queued when the process exits is still written, unless that takes long.
void start_wire_trace();

// Keeps errno. Any thread; never waits for the writer.
void put_into_wire_trace(Direction direction, const webkit_message& frame);

inline void trace_frame(Direction direction, const webkit_message& frame) {
    if (wire_is_traced.load(std::memory_order_relaxed)) put_into_wire_trace(direction, frame);
}

}  // namespace kestrel
