#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "common/LinuxCommonUtils.h"
#include "tests/common/separate_root.h"

namespace kestrel::testing {
namespace {

class HomeDirectoryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!SeparateRoot::is_possible()) GTEST_SKIP() << "may not change the root directory";
    }

    std::string home(const std::map<std::string, std::string>& environment) const {
        return system.run(environment, LinuxCommonUtils::getHomeDir).result;
    }

    SeparateRoot system;
};

TEST_F(HomeDirectoryTest, IsTakenFromTheEnvironment) {
    system.set_password_file("root:x:0:0::/home/of/entry:/bin/sh\n");
    EXPECT_EQ(home({{"HOME", "/home/ann"}}), "/home/ann");
    EXPECT_EQ(home({{"HOME", "not even a path"}}), "not even a path");
}

TEST_F(HomeDirectoryTest, IsEmptyIfTheVariableIsEmpty) {
    system.set_password_file("root:x:0:0::/home/of/entry:/bin/sh\n");
    EXPECT_EQ(home({{"HOME", ""}}), "");
}

TEST_F(HomeDirectoryTest, FallsBackToThePasswordEntry) {
    system.set_password_file(
        "ann:x:1000:1000::/home/ann:/bin/sh\n"
        "root:x:0:0::/home/of/entry:/bin/sh\n");
    EXPECT_EQ(home({}), "/home/of/entry");
}

TEST_F(HomeDirectoryTest, IsEmptyWithoutPasswordEntry) {
    EXPECT_EQ(home({}), "");
    system.set_password_file("ann:x:1000:1000::/home/ann:/bin/sh\n");
    EXPECT_EQ(home({}), "");
}

TEST_F(HomeDirectoryTest, IsEmptyIfThePasswordEntryHasNone) {
    system.set_password_file("root:x:0:0:::/bin/sh\n");
    EXPECT_EQ(home({}), "");
}

TEST_F(HomeDirectoryTest, ReadsALongPasswordEntry) {
    const std::string long_home = "/home/" + std::string(900, 'a');
    system.set_password_file("root:x:0:0::" + long_home + ":/bin/sh\n");
    EXPECT_EQ(home({}), long_home);
}

TEST_F(HomeDirectoryTest, BelongsToTheRealUser) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser has other users' rights";
    system.set_password_file(
        "ann:x:1000:1000::/home/ann:/bin/sh\n"
        "root:x:0:0::/home/of/entry:/bin/sh\n");
    std::filesystem::permissions(system.outside("/"), std::filesystem::perms(0755));
    const auto home_with_other_rights = [] {
        return seteuid(1000) == 0 ? LinuxCommonUtils::getHomeDir() : "not permitted";
    };
    EXPECT_EQ(system.run({}, home_with_other_rights).result, "/home/of/entry");
}

TEST(OwnHomeDirectoryTest, IsThatOfTheRealPasswordEntry) {
    const passwd* entry = getpwuid(getuid());
    if (entry == nullptr) GTEST_SKIP() << "this user has no password entry";
    const std::string expected = entry->pw_dir;
    const char* home = std::getenv("HOME");
    const std::string saved = home != nullptr ? home : "";
    unsetenv("HOME");
    EXPECT_EQ(LinuxCommonUtils::getHomeDir(), expected);
    if (home != nullptr) setenv("HOME", saved.c_str(), 1);
}

}  // namespace
}  // namespace kestrel::testing
