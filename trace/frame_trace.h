// The switch KESTREL_TRACE: what goes over the link, as lines for people or programs.
// docs/protocol.md, "Tracing", describes them.
#pragma once

namespace kestrel {

// Starts the trace if KESTREL_TRACE asks for it. Call it before the link is started; later calls do
// nothing. The trace never waits for whoever reads it: frames that find no room are counted, and
// the next line tells how many.
void start_frame_trace();

}  // namespace kestrel
