// The search for the install root, in temporary directory trees.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>

#include "common/LinuxCommonUtils.h"
#include "common/platform.h"
#include "tests/common/client_tree.h"
#include "tests/common/separate_root.h"

namespace kestrel::testing {
namespace {

const std::string kInHome =
    "/QUOClient/" + std::string(utilities::platform_directory(utilities::kPlatformName));
constexpr auto kNoneFound = "No valid QUOROOT directory found\n";

class InstallRootTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!SeparateRoot::is_possible()) GTEST_SKIP() << "may not change the root directory";
    }

    void install(const std::string& path) const { install_client(system.outside(path)); }

    // The result. There must be no output unless nothing is found.
    std::string search(const std::map<std::string, std::string>& environment) const {
        const SeparateRoot::Outcome outcome = system.run(environment, LinuxCommonUtils::getQUOROOT);
        EXPECT_EQ(outcome.errors, outcome.result.empty() ? kNoneFound : "");
        return outcome.result;
    }

    SeparateRoot system;
};

TEST_F(InstallRootTest, IsTheFirstValidCandidate) {
    system.set_executable("/client/util/tool");
    const std::array<std::string, 6> candidates = {"/custom",
                                                   "/client/util",
                                                   "/client",
                                                   "/opt/Veltrane/QUOClient",
                                                   "/home/ann" + kInHome,
                                                   "/usr/lib/QUOClient"};
    for (const std::string& candidate : candidates) install(candidate);
    for (const std::string& candidate : candidates) {
        EXPECT_EQ(search({{"QUOROOT", "/custom"}, {"HOME", "/home/ann"}}), candidate);
        break_client(system.outside(candidate));
    }
    EXPECT_EQ(search({{"QUOROOT", "/custom"}, {"HOME", "/home/ann"}}), "");
}

TEST_F(InstallRootTest, ReportsOnceIfThereIsNone) {
    const SeparateRoot::Outcome outcome = system.run({}, LinuxCommonUtils::getQUOROOT);
    EXPECT_EQ(outcome.result, "");
    EXPECT_EQ(outcome.errors, kNoneFound);
}

TEST_F(InstallRootTest, KeepsTheSpellingOfTheEnvironment) {
    install("/custom");
    EXPECT_EQ(search({{"QUOROOT", "/custom/../custom/"}}), "/custom/../custom/");
}

TEST_F(InstallRootTest, IgnoresAnIncompleteDirectoryInTheEnvironment) {
    install("/custom");
    break_client(system.outside("/custom"));
    install("/usr/lib/QUOClient");
    EXPECT_EQ(search({{"QUOROOT", "/custom"}}), "/usr/lib/QUOClient");
    EXPECT_EQ(search({{"QUOROOT", ""}}), "/usr/lib/QUOClient");
}

TEST_F(InstallRootTest, IsTheExecutablesDirectory) {
    install("/client/bin");
    system.set_executable("/client/bin/tool");
    EXPECT_EQ(search({}), "/client/bin");
}

TEST_F(InstallRootTest, IsTheParentOfADirectoryCalledExactlyUtil) {
    install("/client");
    for (const char* directory : {"bin", "myutil", "utility", "Util", "util/deeper"}) {
        system.set_executable("/client/" + std::string(directory) + "/tool");
        EXPECT_EQ(search({}), "") << directory;
    }
    system.set_executable("/client/util/tool");
    EXPECT_EQ(search({}), "/client");
}

TEST_F(InstallRootTest, IsNeverTheRootDirectoryItself) {
    install("");
    for (const char* executable : {"/tool", "/util/tool", "util/tool"}) {
        system.set_executable(executable);
        EXPECT_EQ(search({}), "") << executable;
    }
}

TEST_F(InstallRootTest, IsFoundIfTheExecutableIsUnknown) {
    install("/<unknown>");
    install("/usr/lib/QUOClient");
    EXPECT_EQ(search({}), "/usr/lib/QUOClient");
}

TEST_F(InstallRootTest, IgnoresAnExecutableWithoutDirectory) {
    install("/tool");
    system.set_executable("tool");
    EXPECT_EQ(search({}), "");
}

TEST_F(InstallRootTest, UsesThePasswordEntryWithoutHome) {
    system.set_password_file("root:x:0:0::/home/of/entry:/bin/sh\n");
    install("/home/of/entry" + kInHome);
    EXPECT_EQ(search({}), "/home/of/entry" + kInHome);
    EXPECT_EQ(search({{"HOME", "/elsewhere"}}), "");
}

TEST_F(InstallRootTest, IsBelowTheRootDirectoryWithoutAnyHome) {
    install(kInHome);
    EXPECT_EQ(search({}), kInHome);
    EXPECT_EQ(search({{"HOME", ""}}), kInHome);
}

TEST_F(InstallRootTest, IsNotCached) {
    install("/custom");
    install("/usr/lib/QUOClient");
    const auto search_twice = [] {
        const std::string first = LinuxCommonUtils::getQUOROOT();
        break_client("/custom");
        return first + " " + LinuxCommonUtils::getQUOROOT();
    };
    EXPECT_EQ(system.run({{"QUOROOT", "/custom"}}, search_twice).result,
              "/custom /usr/lib/QUOClient");
}

std::string output_of(const std::string& command) {
    std::string output;
    FILE* pipe = popen(command.c_str(), "r");
    for (int c = 0; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
    pclose(pipe);
    return output;
}

// The install root that a program started from `directory` finds.
std::string root_found_from(const std::string& directory) {
    std::filesystem::create_directories(directory);
    std::filesystem::copy_file(PRINT_INSTALL_ROOT, directory + "/tool");
    return output_of("env -i '" + directory + "/tool' 2>&1");
}

TEST(InstalledProgramTest, FindsTheParentOfItsUtilDirectory) {
    const TemporaryDirectory directory;
    install_client(directory.path() + "/client");
    EXPECT_EQ(root_found_from(directory.path() + "/client/util"), directory.path() + "/client\n");
}

TEST(InstalledProgramTest, FindsItsOwnDirectory) {
    const TemporaryDirectory directory;
    install_client(directory.path() + "/client");
    EXPECT_EQ(root_found_from(directory.path() + "/client"), directory.path() + "/client\n");
}

}  // namespace
}  // namespace kestrel::testing
