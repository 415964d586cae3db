// Prints what the library's utilities know of this client, and runs once per user. Needs only the
// installed library:
//
//   c++ -std=c++20 utilities.cpp $(pkg-config --cflags --libs kestrel-extension) -o utilities
//
// Ends when Enter is pressed; started a second time meanwhile, it says so and ends at once.
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <string>

#include "common/LinuxCommonUtils.h"
#include "log/zynlog_paths.h"

namespace {

void print(const std::string& what, const std::string& value) {
    std::cout << what << ": " << (value.empty() ? "(none)" : value) << std::endl;
}

}  // namespace

int main() {
    std::setlocale(LC_ALL, "");

    print("user agent",
          LinuxCommonUtils::WCharToChar(LinuxCommonUtils::GetTarnUserAgent().c_str()));
    print("install root", LinuxCommonUtils::getQUOROOT());
    print("install root of the logging client", GetQUORoot());
    print("home directory", LinuxCommonUtils::getHomeDir());
    print("scratch directory", LinuxCommonUtils::getUserTmpDir());

    if (LinuxCommonUtils::IsAnotherInstanceRunning("kestrel-utilities-example")) {
        print("lock", "another instance is running, or see standard error");
        return EXIT_FAILURE;
    }
    print("lock", "taken");
    std::cin.get();
}
