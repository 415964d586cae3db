#pragma once

#include "base/file_descriptor.h"

namespace kestrel::logging {

// A stream connected to the Unix socket at `path`, close-on-exec; none when nobody listens there.
FileDescriptor connect_to(const char* path);

}  // namespace kestrel::logging
