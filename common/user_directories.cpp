#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/password_entry.h"
#include "common/LinuxCommonUtils.h"

namespace {

constexpr mode_t kPrivate = 0700;

// False, with a message on standard error, if `path` does not exist and cannot be created.
bool make_directory(const std::string& path, const std::string& what) {
    if (mkdir(path.c_str(), kPrivate) == 0 || errno == EEXIST) return true;
    const std::string line = "Failed to create " + what + " directory inside user home directory." +
                             std::strerror(errno) + ".Using /tmp directory.\n";
    std::fputs(line.c_str(), stderr);
    return false;
}

}  // namespace

std::string LinuxCommonUtils::getUserName() {
    if (const char* user = std::getenv("USER")) return user;
    return kestrel::password_entry_of_caller().name;
}

std::string LinuxCommonUtils::getUserTmpDir() {
    const std::string home = getHomeDir();
    if (home.empty()) return "/tmp";

    const std::string client = home + "/.QUOClient";
    std::string scratch = client + "/.tmp";
    if (make_directory(client, "quoHome") && make_directory(scratch, "quoHome/.tmp")) {
        return scratch;
    }
    const std::string user = getUserName();
    if (user.empty()) return "/tmp";
    std::string fallback = "/tmp/" + user;
    mkdir(fallback.c_str(), kPrivate);
    return fallback;
}
