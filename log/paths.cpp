#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "base/errno_guard.h"
#include "base/password_entry.h"
#include "log/local_socket.h"
#include "log/sigpipe_ignored.h"
#include "log/zynlog_paths.h"

using kestrel::ErrnoGuard;

namespace {

// A per-user path is the home directory, a slash, and the suffix. The resulting double slash is the
// name that the client family's other programs use.
struct FileLocation {
    const char* system_wide;
    const char* per_user_suffix;
};

constexpr FileLocation kConfigFile{"/var/log/veltrane/.zynlogconf", "/.QUOClient/.zynlogconf"};
constexpr FileLocation kLogFile{"/var/log/veltrane/QUOClient.log",
                                "/.QUOClient/logs/QUOClient.log"};
constexpr FileLocation kSocketFile{"/var/log/veltrane/.zynlogsocket", "/.QUOClient/.zynlogsocket"};

bool owns_system_log_directory() {
    struct stat status {};
    return stat("/var/log/veltrane/", &status) == 0 && status.st_uid == getuid();
}

bool system_daemon_answers() {
    const kestrel::logging::SigpipeIgnored sigpipe_ignored;
    return kestrel::logging::connect_to(kSocketFile.system_wide).is_open();
}

// Decided once, for all three files.
bool uses_system_log_directory() {
    static const bool result = owns_system_log_directory() || system_daemon_answers();
    return result;
}

// Null when there is none.
const char* find_home() {
    if (const char* home = std::getenv("HOME")) return strdup(home);
    const std::string home = kestrel::password_entry_of_caller().home;
    return home.empty() ? nullptr : strdup(home.c_str());
}

// Cached once it is found; null until then.
const char* home_directory() {
    static const char* home = nullptr;
    if (home == nullptr) home = find_home();
    return home;
}

bool create_directory(const std::string& path) {
    return mkdir(path.c_str(), 0777) == 0 || errno == EEXIST;
}

// With all missing parents.
bool create_directories(const std::string& path) {
    if (create_directory(path)) return true;
    if (errno != ENOENT) return false;
    const std::size_t slash = path.rfind('/');
    return slash != std::string::npos && create_directories(path.substr(0, slash)) &&
           create_directory(path);
}

// Tried once per process. All per-user paths depend on it, not only the log file's.
bool has_log_directory(const char* home) {
    static const bool result = create_directories(std::string(home) + "/.QUOClient/logs/");
    return result;
}

const char* per_user_path(const char* suffix) {
    const char* const home = home_directory();
    if (home == nullptr || !has_log_directory(home)) return nullptr;
    char* path = nullptr;
    return asprintf(&path, "%s/%s", home, suffix) == -1 ? nullptr : path;
}

// A path is cached once it is known. Until then the result is "", and the next call tries again:
// HOME may have been set.
const char* path_of(const FileLocation& file, const char*& cached) {
    static constinit std::mutex mutex;
    const ErrnoGuard errno_guard;
    const std::lock_guard lock(mutex);
    if (cached == nullptr) {
        cached =
            uses_system_log_directory() ? file.system_wide : per_user_path(file.per_user_suffix);
    }
    return cached == nullptr ? "" : cached;
}

}  // namespace

const char* GetConfigFilePath() {
    static const char* path = nullptr;
    return path_of(kConfigFile, path);
}

const char* GetLogFilePath() {
    static const char* path = nullptr;
    return path_of(kLogFile, path);
}

const char* GetSocketFilePath() {
    static const char* path = nullptr;
    return path_of(kSocketFile, path);
}
