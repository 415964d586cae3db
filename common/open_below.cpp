#include "common/open_below.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace kestrel::utilities {
namespace {

constexpr int kDirectory = O_PATH | O_DIRECTORY | O_CLOEXEC;

bool is_trusted_link(const struct stat& status) {
    return S_ISLNK(status.st_mode) && (status.st_uid == 0 || status.st_uid == geteuid());
}

// Opened before it is checked: in a shared directory such as /tmp another user may replace it, but
// only the owner can replace a link.
FileDescriptor open_top(const std::string& path) {
    FileDescriptor top(open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!top.is_open() || fstat(top.get(), &status) == -1) return FileDescriptor(-1);
    if (is_trusted_link(status)) return FileDescriptor(open(path.c_str(), kDirectory));
    return top;  // any other link is not a directory: nothing can be opened below it
}

}  // namespace

FileDescriptor open_below(const std::string& top, const std::string& path, int flags, mode_t mode) {
    FileDescriptor directory = open_top(top);
    std::size_t begin = 0;
    for (std::size_t slash = path.find('/'); directory.is_open() && slash != std::string::npos;
         slash = path.find('/', begin)) {
        const std::string name = path.substr(begin, slash - begin);
        begin = slash + 1;
        if (name.empty()) continue;
        directory = FileDescriptor(openat(directory.get(), name.c_str(), kDirectory | O_NOFOLLOW));
    }
    if (!directory.is_open()) return directory;
    return FileDescriptor(openat(directory.get(), path.c_str() + begin, flags | O_NOFOLLOW, mode));
}

}  // namespace kestrel::utilities
