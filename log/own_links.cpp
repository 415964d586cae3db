#include "log/own_links.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

namespace kestrel::logging {
namespace {

constexpr int kMaxLinks = 40;  // the limit of the kernel

// The target of a symbolic link that belongs to the caller or to root; "" for anything else. The
// link is opened before its owner is checked: replacing it afterwards does not change the target.
std::string target_of_own_link(int directory, const char* name) {
    const FileDescriptor link(openat(directory, name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!link.is_open() || fstat(link.get(), &status) == -1 || !S_ISLNK(status.st_mode)) return "";
    if (status.st_uid != 0 && status.st_uid != geteuid()) return "";
    std::array<char, PATH_MAX> target;
    const ssize_t size = readlinkat(link.get(), "", target.data(), target.size());
    return size <= 0 ? "" : std::string(target.data(), static_cast<std::size_t>(size));
}

}  // namespace

FileDescriptor open_through_own_links(std::string path, int flags, mode_t mode) {
    FileDescriptor directory;  // of the last link: relative targets start there
    for (int links = 0; links <= kMaxLinks && !path.empty(); ++links) {
        int base = directory.is_open() ? directory.get() : AT_FDCWD;
        const std::size_t name = path.rfind('/') + 1;
        if (name != 0) {
            directory = FileDescriptor(
                openat(base, path.substr(0, name).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
            if (!directory.is_open()) return {};
            base = directory.get();
        }
        FileDescriptor file(openat(base, path.c_str() + name, flags | O_NOFOLLOW, mode));
        if (file.is_open() || errno != ELOOP) return file;
        path = target_of_own_link(base, path.c_str() + name);
    }
    return {};
}

}  // namespace kestrel::logging
