#pragma once

#include <sys/types.h>

#include <string>

#include "base/file_descriptor.h"

namespace kestrel::logging {

// Opens a file as open does. If it is a symbolic link, it is followed only if the link is the
// caller's or root's: another user's link could lead to any file of the caller's. The same holds
// for each link that such a link leads to. Links among the directories of a path are followed as
// always. Any thread.
FileDescriptor open_through_own_links(std::string path, int flags, mode_t mode);

}  // namespace kestrel::logging
