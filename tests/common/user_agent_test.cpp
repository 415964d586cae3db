#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>

#include "common/LinuxCommonUtils.h"
#include "common/platform.h"
#include "tests/common/child_process.h"
#include "tests/common/scoped_variable.h"
#include "tests/support/temporary_directory.h"

namespace fs = std::filesystem;
using namespace std::string_literals;
using kestrel::testing::in_child;
using kestrel::testing::Output;
using kestrel::testing::ScopedVariable;
using kestrel::testing::TemporaryDirectory;

namespace {

bool is_uname_failing = false;

}  // namespace

extern "C" int __real_uname(utsname*);
extern "C" int __wrap_uname(utsname* system) {
    return is_uname_failing ? -1 : __real_uname(system);
}

namespace {

constexpr const char* kNoRoot = "No valid QUOROOT directory found\n";

// The texts of these tests' kernel releases and versions are ASCII.
std::wstring wide(const std::string& text) { return {text.begin(), text.end()}; }

std::string kernel_release() {
    utsname system{};
    uname(&system);
    return system.release;
}

class UserAgent : public ::testing::Test {
  protected:
    TemporaryDirectory root_;
    ScopedVariable root_variable_{"QUOROOT", root_.path()};
    ScopedVariable home_variable_{"HOME", root_.path() + "/home"};
    std::string version_file_ =
        root_.path() + "/pkginf/Ver.core." +
        std::string(kestrel::utilities::platform_directory(kestrel::utilities::kPlatformName));

    void SetUp() override {
        fs::create_directories(root_.path() + "/util");
        fs::create_directories(root_.path() + "/pkginf");
        for (const char* marker :
             {"KeyWardenDaemon", "ServiceLedger", "PrimaryKeyWarden", "util/catalook"}) {
            std::ofstream(root_.path() + "/" + marker) << "";
        }
    }
    void TearDown() override { is_uname_failing = false; }

    std::wstring version_of(const std::string& file) const {
        std::ofstream(version_file_, std::ios::binary) << file;
        return LinuxCommonUtils::GetPorticoVersionFromQuoroot();
    }
};

TEST_F(UserAgent, OperatingSystem) {
    EXPECT_EQ(LinuxCommonUtils::GetOsName(), L"Linux");
    EXPECT_EQ(LinuxCommonUtils::GetOsVersion(), wide(kernel_release()));
    is_uname_failing = true;
    EXPECT_EQ(LinuxCommonUtils::GetOsVersion(), L"");
}

TEST_F(UserAgent, VersionFollowsTheFirstEqualsSignOfTheFirstLine) {
    EXPECT_EQ(version_of("ID_VERSION=1.0\nX=2\n"), L"1.0");
    EXPECT_EQ(version_of("ID_VERSION=1.0"), L"1.0");
    EXPECT_EQ(version_of("any key=1=2\n"), L"1=2");
    EXPECT_EQ(version_of("=1\n"), L"1");
    EXPECT_EQ(version_of("ID_VERSION=\n"), L"");
    EXPECT_EQ(version_of("no sign\nID_VERSION=1.0\n"), L"");
    EXPECT_EQ(version_of("\nID_VERSION=1.0\n"), L"");
}

TEST_F(UserAgent, VersionIsNotCached) {
    EXPECT_EQ(version_of("V=1"), L"1");
    EXPECT_EQ(version_of("V=2"), L"2");
}

TEST_F(UserAgent, IgnoresVersionFilesOfOtherPlatforms) {
    std::ofstream(root_.path() + "/pkginf/Ver.core.another") << "ID_VERSION=1.0\n";
    EXPECT_EQ(LinuxCommonUtils::GetPorticoVersionFromQuoroot(), L"");
}

TEST_F(UserAgent, VersionLineIsReadUpTo255Bytes) {
    EXPECT_EQ(version_of("V=" + std::string(253, '1')), std::wstring(253, L'1'));
    EXPECT_EQ(version_of("V=" + std::string(253, '1') + "\n"), std::wstring(253, L'1'));
    EXPECT_EQ(version_of("V=" + std::string(254, '1')), std::wstring(253, L'1'));
    EXPECT_EQ(version_of("V=" + std::string(10'000'000, '1')), std::wstring(253, L'1'));
    EXPECT_EQ(version_of(std::string(254, 'k') + "=1"), L"");
    EXPECT_EQ(version_of(std::string(255, 'k') + "=1"), L"");
}

TEST_F(UserAgent, TruncatesAnEndlessVersionFile) {
    fs::create_symlink("/dev/zero", version_file_);
    EXPECT_EQ(LinuxCommonUtils::GetPorticoVersionFromQuoroot(), L"");
}

TEST_F(UserAgent, UnusableVersionFilesGiveNoVersion) {
    EXPECT_EQ(version_of(""), L"");
    EXPECT_EQ(version_of("\0\0\0=1\n"s), L"");
    EXPECT_EQ(version_of("V=1\0002\n"s), L"1");
    EXPECT_EQ(version_of("\x7f"
                         "ELF\x02\x01\x01\0\0=\n"s),
              L"");
    fs::remove(version_file_);
    fs::create_directory(version_file_);
    EXPECT_EQ(LinuxCommonUtils::GetPorticoVersionFromQuoroot(), L"");
}

TEST_F(UserAgent, VersionIsEmptyIfTheLocaleCannotDecodeIt) {
    std::ofstream(version_file_) << "V=1\xff\n";
    const Output output = in_child([] {
        std::setlocale(LC_ALL, "C.UTF-8");
        const std::wstring version = LinuxCommonUtils::GetPorticoVersionFromQuoroot();
        std::cout << '[' << version.size() << ']';
    });
    EXPECT_EQ(output, (Output{"error[0]", ""}));
}

TEST_F(UserAgent, FullText) {
    version_of("ID_VERSION=23.5.0.58\n");
    EXPECT_EQ(
        LinuxCommonUtils::GetTarnUserAgent(),
        L"VeltranePortico/23.5.0.58 Linux/" + wide(kernel_release()) + L" M4Class TarnCapable");
}

TEST_F(UserAgent, OmitsTheSlashOfMissingParts) {
    EXPECT_EQ(LinuxCommonUtils::GetTarnUserAgent(),
              L"VeltranePortico Linux/" + wide(kernel_release()) + L" M4Class TarnCapable");
    is_uname_failing = true;
    EXPECT_EQ(LinuxCommonUtils::GetTarnUserAgent(), L"VeltranePortico Linux M4Class TarnCapable");
}

TEST_F(UserAgent, HasNoVersionWithoutInstallRoot) {
    const ScopedVariable unset("QUOROOT", std::nullopt);
    EXPECT_EQ(in_child([] {
                  std::wcout << LinuxCommonUtils::GetPorticoVersionFromQuoroot();
                  std::cout << LinuxCommonUtils::GetTarnLaunchSourceUserAgentString("");
              }),
              (Output{"Tarn", kNoRoot + std::string(kNoRoot)}));
}

TEST_F(UserAgent, LaunchSource) {
    EXPECT_EQ(LinuxCommonUtils::GetTarnLaunchSourceUserAgentString(""), "Tarn");
    EXPECT_EQ(LinuxCommonUtils::GetTarnLaunchSourceUserAgentString("Desktop"), "Desktop");
    version_of("ID_VERSION=23.5\n");
    EXPECT_EQ(LinuxCommonUtils::GetTarnLaunchSourceUserAgentString(""), "Tarn/23.5");
    EXPECT_EQ(LinuxCommonUtils::GetTarnLaunchSourceUserAgentString("Desktop"), "Desktop/23.5");
}

struct Split {
    const char* text;
    const char* name;
    const char* version;

    friend std::ostream& operator<<(std::ostream& stream, const Split& split) {
        return stream << '"' << split.text << '"';
    }
};

class UserAgentParameters : public ::testing::TestWithParam<Split> {};

TEST_P(UserAgentParameters, AreSplitAtTheLastSlash) {
    std::string name = "before";
    std::string version = "before";
    LinuxCommonUtils::GetWebkitUserAgentParamters(GetParam().text, name, version);
    EXPECT_EQ(name, GetParam().name);
    EXPECT_EQ(version, GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(Texts, UserAgentParameters,
                         ::testing::Values(Split{"VeltranePortico/23.5", "VeltranePortico", "23.5"},
                                           Split{"a/b/c", "a/b", "c"}, Split{"a/", "a", ""},
                                           Split{"/b", "", "b"}, Split{"/", "", ""},
                                           Split{"whole", "whole", "whole"}, Split{"", "", ""}));

TEST_F(UserAgent, InputMayAliasAResult) {
    std::string text = "a/b";
    std::string version;
    LinuxCommonUtils::GetWebkitUserAgentParamters(text, text, version);
    EXPECT_EQ(text, "a");
    EXPECT_EQ(version, "b");
}

}  // namespace
