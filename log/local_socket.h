#pragma once

#include "base/file_descriptor.h"

namespace kestrel::logging {

// Connects a stream socket, close-on-exec, to `path`; not open if that fails. Any thread.
FileDescriptor connect_to(const char* path);

}  // namespace kestrel::logging
