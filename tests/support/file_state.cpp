#include "tests/support/file_state.h"

#include <sys/stat.h>

#include <fstream>
#include <sstream>

namespace kestrel::testing {

std::string state_of(const std::filesystem::path& path) {
    struct stat status {};
    if (lstat(path.c_str(), &status) == -1) return "nothing";
    std::ostringstream text;
    text << path << ' ' << status.st_mode << ' ' << status.st_uid << ' ' << status.st_ino << ' '
         << status.st_size << ' ' << status.st_mtim.tv_sec << '.' << status.st_mtim.tv_nsec << ' '
         << status.st_ctim.tv_sec << '.' << status.st_ctim.tv_nsec;
    if (S_ISREG(status.st_mode)) text << ' ' << std::ifstream(path).rdbuf();
    if (S_ISLNK(status.st_mode)) text << ' ' << std::filesystem::read_symlink(path);
    return text.str();
}

}  // namespace kestrel::testing
