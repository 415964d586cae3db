#pragma once

#include <sys/types.h>

#include <string>

#include "base/file_descriptor.h"

namespace kestrel::utilities {

// Opens the file `path` relative to the directory `top`, like open() and including "..", but
// follows no symbolic link below `top`. `top` itself may be a link that belongs to the caller or to
// root. On failure errno is set. Any thread.
FileDescriptor open_below(const std::string& top, const std::string& path, int flags,
                          mode_t mode = 0);

}  // namespace kestrel::utilities
