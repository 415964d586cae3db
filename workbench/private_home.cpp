#include "workbench/private_home.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr const char* kClientDirectory = "/.QUOClient";
constexpr const char* kSocketFile = "/webkit_socket2";

[[noreturn]] void fail_to_make(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), path);
}

std::string make_temporary_directory() {
    std::string path = fs::temp_directory_path() / "kestrel-workbench-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) fail_to_make(path);
    return path;
}

}  // namespace

std::string socket_path_in(const std::string& home) {
    return home + kClientDirectory + kSocketFile;
}

PrivateHome::PrivateHome(const std::string& given)
    : path_(given.empty() ? make_temporary_directory() : given), is_temporary_(given.empty()) {
    const std::string directory = client_directory();
    if (mkdir(directory.c_str(), S_IRWXU) == -1 && errno != EEXIST) fail_to_make(directory);
}

PrivateHome::~PrivateHome() {
    std::error_code ignored;
    if (is_temporary_) fs::remove_all(path_, ignored);
}

std::string PrivateHome::client_directory() const { return path_ + kClientDirectory; }

}  // namespace kestrel
