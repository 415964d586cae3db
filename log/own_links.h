#pragma once

#include <sys/types.h>

#include <string>

#include "base/file_descriptor.h"

namespace kestrel::logging {

// Opens a file like open(). If `path` is a symbolic link, it is followed only if it belongs to the
// caller or to root: another user's link could point to any file of the caller. The same applies to
// each link in the chain. Links in the directories of a path are followed as usual. Any thread.
FileDescriptor open_through_own_links(std::string path, int flags, mode_t mode);

}  // namespace kestrel::logging
