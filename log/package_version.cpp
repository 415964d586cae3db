#include <dirent.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "base/errno_guard.h"
#include "log/version_file.h"
#include "log/zynlog_paths.h"

namespace {

using VersionBuffer = std::array<char, 32>;

struct DirectoryCloser {
    void operator()(DIR* directory) const { closedir(directory); }
};
struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;
using File = std::unique_ptr<std::FILE, FileCloser>;

// The first version file in directory order; null if there is none or it cannot be read.
File open_version_file() {
    const std::string path = std::string(GetQUORoot()) + "/pkginf/";
    const Directory directory(opendir(path.c_str()));
    if (directory == nullptr) return nullptr;
    while (const dirent* entry = readdir(directory.get())) {
        if (std::strstr(entry->d_name, "Ver.core.") != nullptr) {
            return File(std::fopen((path + entry->d_name).c_str(), "re"));
        }
    }
    return nullptr;
}

VersionBuffer read_version() {
    const kestrel::ErrnoGuard errno_guard;
    const File file = open_version_file();
    const std::string version =
        file == nullptr ? "unknown" : kestrel::logging::version_in(file.get());
    VersionBuffer buffer{};
    version.copy(buffer.data(), buffer.size() - 1);
    return buffer;
}

}  // namespace

const char* GetTarnPackageversion() {
    static const VersionBuffer version = read_version();
    return version.data();
}
