#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/executable_path.h"
#include "base/password_entry.h"
#include "common/LinuxCommonUtils.h"
#include "common/platform.h"

namespace {

// Programs that every complete installation contains, in the order tested.
constexpr std::array kRootMarkers = {"KeyWardenDaemon", "ServiceLedger", "PrimaryKeyWarden",
                                     "util/catalook"};

// The executable's directory and, if that is called "util", its parent.
std::vector<std::string> roots_by_executable(const std::string& executable) {
    const std::size_t slash = executable.rfind('/');
    if (slash == std::string::npos) return {};
    const std::string directory = executable.substr(0, slash);
    const std::size_t parent = directory.rfind('/');
    if (parent == std::string::npos || directory.substr(parent + 1) != "util") return {directory};
    return {directory, directory.substr(0, parent)};
}

std::vector<std::string> root_candidates() {
    std::vector<std::string> candidates;
    if (const char* root = std::getenv("QUOROOT")) candidates.emplace_back(root);
    for (std::string& root : roots_by_executable(LinuxCommonUtils::GetModulePath())) {
        candidates.push_back(std::move(root));
    }
    candidates.emplace_back("/opt/Veltrane/QUOClient");
    candidates.push_back(
        LinuxCommonUtils::getHomeDir() + "/QUOClient/" +
        std::string(kestrel::utilities::platform_directory(kestrel::utilities::kPlatformName)));
    candidates.emplace_back("/usr/lib/QUOClient");
    return candidates;
}

}  // namespace

std::string LinuxCommonUtils::getHomeDir() {
    if (const char* home = std::getenv("HOME")) return home;
    return kestrel::password_entry_of_caller().home;
}

std::string LinuxCommonUtils::GetModulePath() {
    const std::string path = kestrel::executable_path();
    return path.empty() ? "<unknown>" : path;
}

bool LinuxCommonUtils::ifFileExists(std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

// By value: the exported signature requires it.
bool LinuxCommonUtils::ifValidQUOROOT(std::string root) {  // NOLINT
    if (root.empty()) return false;
    for (const char* marker : kRootMarkers) {
        std::string path = root + "/" + marker;
        if (!ifFileExists(path)) return false;
    }
    return true;
}

std::string LinuxCommonUtils::getQUOROOT() {
    for (const std::string& candidate : root_candidates()) {
        if (ifValidQUOROOT(candidate)) return candidate;
    }
    std::fputs("No valid QUOROOT directory found\n", stderr);
    std::fflush(stderr);
    return "";
}
