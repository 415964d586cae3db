#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "common/LinuxCommonUtils.h"
#include "common/platform.h"
#include "tests/common/child_process.h"
#include "tests/support/temporary_directory.h"

namespace fs = std::filesystem;
using kestrel::testing::in_child;
using kestrel::testing::TemporaryDirectory;

namespace {

constexpr int kCalls = 300;

std::ptrdiff_t open_descriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

const std::vector<std::pair<const char*, std::function<void()>>> kMembers = {
    {"getHomeDir", [] { LinuxCommonUtils::getHomeDir(); }},
    {"ifFileExists",
     [] {
         std::string path = "/";
         LinuxCommonUtils::ifFileExists(path);
     }},
    {"ifValidQUOROOT", [] { LinuxCommonUtils::ifValidQUOROOT("/"); }},
    {"GetOsName", [] { LinuxCommonUtils::GetOsName(); }},
    {"GetWebkitUserAgentParamters",
     [] {
         std::string name;
         std::string version;
         LinuxCommonUtils::GetWebkitUserAgentParamters("a/1", name, version);
     }},
    {"trimString", [] { LinuxCommonUtils::trimString(L" a ", L" "); }},
    {"WCharToChar", [] { LinuxCommonUtils::WCharToChar(L"a"); }},
    {"SecureZeroMemory",
     [] {
         char byte = 1;
         LinuxCommonUtils::SecureZeroMemory(&byte, sizeof byte);
     }},
    {"getUserName", [] { LinuxCommonUtils::getUserName(); }},
    {"getUserTmpDir", [] { LinuxCommonUtils::getUserTmpDir(); }},
    {"GetModulePath", [] { LinuxCommonUtils::GetModulePath(); }},
    {"getQUOROOT", [] { LinuxCommonUtils::getQUOROOT(); }},
    {"GetOsVersion", [] { LinuxCommonUtils::GetOsVersion(); }},
    {"GetPorticoVersionFromQuoroot", [] { LinuxCommonUtils::GetPorticoVersionFromQuoroot(); }},
    {"GetTarnUserAgent", [] { LinuxCommonUtils::GetTarnUserAgent(); }},
    {"GetTarnLaunchSourceUserAgentString",
     [] { LinuxCommonUtils::GetTarnLaunchSourceUserAgentString("source"); }},
    {"IsAnotherInstanceRunning", [] { LinuxCommonUtils::IsAnotherInstanceRunning("name"); }},
    {"IsAnotherInstanceRunning in a directory",
     [] { LinuxCommonUtils::IsAnotherInstanceRunning("a/../name"); }},
    {"drop_capability", [] { LinuxCommonUtils::drop_capability(); }},
    {"GetTimeStringForLogger", [] { LinuxCommonUtils::GetTimeStringForLogger(); }},
    {"GetCurrentTimeString", [] { LinuxCommonUtils::GetCurrentTimeString("%c"); }},
    {"ConvertStringToTime", [] { LinuxCommonUtils::ConvertStringToTime("2024", "%Y"); }},
    {"CharToWChar", [] { std::free(LinuxCommonUtils::CharToWChar("text")); }},
};

// A client installation and a home in a temporary directory.
struct Installation {
    TemporaryDirectory directory;
    std::string home = directory.path() + "/home";
    std::string root = directory.path() + "/root";
    std::string lock = home + "/.QUOClient/.tmp/.name.lock";

    Installation() {
        fs::create_directories(fs::path(lock).parent_path() / ".a");
        fs::create_directories(root + "/util");
        fs::create_directories(root + "/pkginf");
        for (const char* marker :
             {"KeyWardenDaemon", "ServiceLedger", "PrimaryKeyWarden", "util/catalook"}) {
            std::ofstream(root + "/" + marker) << "";
        }
        std::ofstream(version_file()) << "V=1\n";
    }

    std::string version_file() const {
        return root + "/pkginf/Ver.core." +
               std::string(
                   kestrel::utilities::platform_directory(kestrel::utilities::kPlatformName));
    }
};

// The failures; none in the first case.
const std::vector<std::pair<const char*, std::function<void(const Installation&)>>> kConditions = {
    {"all is well", [](const Installation&) {}},
    {"no home, root or version file",
     [](const Installation& installation) { fs::remove_all(installation.directory.path()); }},
    {"no variables",
     [](const Installation&) {
         for (const char* variable : {"HOME", "USER", "QUOROOT"}) unsetenv(variable);
         // Tests must not write to the real home.
         setenv("HOME", "", 1);
     }},
    {"directories in the place of files",
     [](const Installation& installation) {
         fs::create_directory(installation.lock);
         fs::remove(installation.version_file());
         fs::create_directory(installation.version_file());
     }},
    {"a stale lock",
     [](const Installation& installation) { std::ofstream(installation.lock) << "st"; }},
    {"a lock that cannot be opened",
     [](const Installation& installation) { fs::create_symlink("loop", installation.lock); }},
};

TEST(Descriptors, AreAllClosedOnEveryPath) {
    for (const auto& [condition, arrange] : kConditions) {
        const Installation installation;
        const std::string report = in_child([&, &arrange = arrange] {
                                       setenv("HOME", installation.home.c_str(), 1);
                                       setenv("QUOROOT", installation.root.c_str(), 1);
                                       arrange(installation);
                                       // The pipe of standard error would fill up before it is
                                       // read.
                                       if (std::freopen("/dev/null", "w", stderr) == nullptr)
                                           return;
                                       for (const auto& [name, call] : kMembers) {
                                           call();  // the C library opens its own descriptors now
                                           const std::ptrdiff_t before = open_descriptors();
                                           for (int i = 0; i < kCalls; ++i) call();
                                           if (open_descriptors() != before)
                                               std::cout << name << " leaks\n";
                                       }
                                   }).out;
        EXPECT_EQ(report, "") << condition;
    }
}

}  // namespace
