// The version file readers of the logging client and of the user agent.
#include "log/version_file.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "common/LinuxCommonUtils.h"
#include "common/platform.h"
#include "tests/fuzz/check.h"
#include "tests/fuzz/input.h"
#include "tests/fuzz/quiet.h"
#include "tests/support/temporary_directory.h"

namespace {

// Creates an install root without a version file. Returns the path of that file.
std::string make_install_root(const std::string& root) {
    std::filesystem::create_directories(root + "/util");
    std::filesystem::create_directories(root + "/pkginf");
    for (const char* marker :
         {"KeyWardenDaemon", "ServiceLedger", "PrimaryKeyWarden", "util/catalook"}) {
        std::ofstream(root + "/" + marker) << "x";
    }
    setenv("QUOROOT", root.c_str(), 1);
    return root + "/pkginf/Ver.core." +
           std::string(kestrel::utilities::platform_directory(kestrel::utilities::kPlatformName));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kestrel::fuzz::silence_error_lines();
    static const kestrel::testing::TemporaryDirectory root;
    static const std::string path = make_install_root(root.path());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    kestrel::fuzz::check(LinuxCommonUtils::GetPorticoVersionFromQuoroot().size() < 256);
    std::FILE* const file = std::fopen(path.c_str(), "re");
    kestrel::fuzz::check(kestrel::logging::version_in(file).size() < 128);
    std::fclose(file);
    return 0;
}
