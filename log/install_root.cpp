#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/errno_guard.h"
#include "base/executable_path.h"
#include "log/zynlog_paths.h"

namespace {

using RootBuffer = std::array<char, 4'096>;

// Files that every install root of the client contains.
constexpr std::array kRootFiles = {"/libproxy.so", "/gtk/glade/main.glade"};

constexpr std::string_view kUtilitiesDirectory = "/util";

bool is_usable(const std::string& directory) {
    return std::ranges::all_of(kRootFiles, [&](const char* file) {
        return access((directory + file).c_str(), F_OK) == 0;
    });
}

std::string executable_directory() {
    const std::string path = kestrel::executable_path();
    return path.substr(0, path.rfind('/'));
}

std::string find_root() {
    if (const char* root = std::getenv("QUOROOT"); root != nullptr && is_usable(root)) return root;

    std::string directory = executable_directory();
    if (!directory.empty()) {
        if (is_usable(directory)) return directory;
        if (directory.ends_with(kUtilitiesDirectory)) {
            directory.resize(directory.size() - kUtilitiesDirectory.size());
            if (is_usable(directory)) return directory;
        }
    }
    for (const char* root : {"/opt/Veltrane/QUOClient", "/usr/lib/QUOClient"}) {
        if (is_usable(root)) return root;
    }
    return "";
}

RootBuffer search() {
    const kestrel::ErrnoGuard errno_guard;
    RootBuffer buffer{};
    const std::string root = find_root();
    root.copy(buffer.data(), buffer.size() - 1);
    return buffer;
}

}  // namespace

const char* GetQUORoot() {
    static const RootBuffer root = search();
    return root.data();
}
