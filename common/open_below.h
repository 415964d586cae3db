#pragma once

#include <sys/types.h>

#include <string>

#include "base/file_descriptor.h"

namespace kestrel::utilities {

// Opens the file `path`, relative to the directory `top`, as open does, ".." included, but follows
// no symbolic link below `top`. `top` itself may be a link of the caller's or of root's. When
// nothing was opened, errno says why. Any thread.
FileDescriptor open_below(const std::string& top, const std::string& path, int flags,
                          mode_t mode = 0);

}  // namespace kestrel::utilities
