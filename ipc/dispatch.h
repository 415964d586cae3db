#pragma once

#include "ipc/protocol.h"

namespace kestrel {

// Decodes a message and calls the handler of its type, with the documented number of strings at
// least. A message without a handler, whose items do not fit its header or for which there is no
// memory is dropped with a log line. The payload must be as long as the header says.
void dispatch_message(const webkit_message& message);

}  // namespace kestrel
