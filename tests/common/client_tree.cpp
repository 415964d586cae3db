#include "tests/common/client_tree.h"

#include <filesystem>
#include <fstream>

namespace kestrel::testing {

void create_file(const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream{path};
}

void install_client(const std::string& directory) {
    for (const char* name : kClientFiles) create_file(directory + "/" + name);
}

void break_client(const std::string& directory) {
    std::filesystem::remove(directory + "/" + kClientFiles.back());
}

}  // namespace kestrel::testing
