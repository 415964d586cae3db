#include <sys/stat.h>

#include <ctime>

#include "base/errno_guard.h"
#include "log/zynlog_paths.h"

namespace {

constexpr std::time_t kFreshSeconds = 86'399;

}  // namespace

bool check_heartbeat_file_age(const char* path) {
    const kestrel::ErrnoGuard errno_guard;
    struct stat status {};
    if (path == nullptr || stat(path, &status) == -1) return false;
    return std::time(nullptr) - status.st_mtime <= kFreshSeconds;
}
