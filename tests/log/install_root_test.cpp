#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "log/zynlog_paths.h"
#include "tests/log/machine.h"
#include "tests/support/process.h"

namespace {

namespace fs = std::filesystem;
using kestrel::testing::home;

std::string make_root(const std::string& directory) {
    fs::create_directories(directory + "/gtk/glade");
    kestrel::testing::write_file(directory + "/libproxy.so", "");
    kestrel::testing::write_file(directory + "/gtk/glade/main.glade", "");
    return directory;
}

// The result of GetQUORoot in a program in `directory`.
std::string root_of_program_in(const std::string& directory) {
    fs::create_directories(directory);
    const std::string program = directory + "/install-root-probe";
    fs::copy_file(KESTREL_INSTALL_ROOT_PROBE, program);
    return kestrel::testing::run({program}).output;
}

TEST(InstallRoot, IsEmptyIfNoCandidateIsUsable) { EXPECT_STREQ(GetQUORoot(), ""); }

TEST(InstallRoot, IsTakenFromTheEnvironment) {
    setenv("QUOROOT", make_root(home() + "/root").c_str(), 1);
    EXPECT_EQ(GetQUORoot(), home() + "/root");
}

TEST(InstallRoot, IsCached) {
    setenv("QUOROOT", make_root(home() + "/root").c_str(), 1);
    const char* const root = GetQUORoot();
    setenv("QUOROOT", make_root(home() + "/other").c_str(), 1);
    EXPECT_EQ(GetQUORoot(), root);
    EXPECT_EQ(root, home() + "/root");
}

TEST(InstallRoot, IsCachedEvenIfThereIsNone) {
    GetQUORoot();
    setenv("QUOROOT", make_root(home() + "/root").c_str(), 1);
    EXPECT_STREQ(GetQUORoot(), "");
}

TEST(InstallRoot, NeedsBothFiles) {
    for (const char* file : {"/libproxy.so", "/gtk/glade/main.glade"}) {
        const std::string broken = make_root(home() + "/broken");
        fs::remove(broken + file);
        setenv("QUOROOT", broken.c_str(), 1);
        const std::string directory = home() + "/program" + fs::path(file).stem().string();
        EXPECT_EQ(root_of_program_in(make_root(directory)), directory);
    }
}

TEST(InstallRoot, IsTheDirectoryOfTheProgram) {
    const std::string root = make_root(home() + "/root");
    EXPECT_EQ(root_of_program_in(root), root);
}

TEST(InstallRoot, IsTheParentOfAProgramsUtilDirectory) {
    const std::string root = make_root(home() + "/root");
    EXPECT_EQ(root_of_program_in(root + "/util"), root);
}

TEST(InstallRoot, IsAUtilDirectoryThatIsARootItself) {
    make_root(home() + "/root");
    const std::string util = make_root(home() + "/root/util");
    EXPECT_EQ(root_of_program_in(util), util);
}

TEST(InstallRoot, IsNotTheParentOfOtherDirectories) {
    const std::string root = make_root(home() + "/root");
    EXPECT_EQ(root_of_program_in(root + "/myutil"), "");
    EXPECT_EQ(root_of_program_in(root + "/utils"), "");
}

TEST(InstallRoot, PrefersTheEnvironmentToTheProgramsDirectory) {
    setenv("QUOROOT", make_root(home() + "/named").c_str(), 1);
    EXPECT_EQ(root_of_program_in(make_root(home() + "/own")), home() + "/named");
}

TEST(InstallRoot, IsTruncatedToItsBuffer) {
    std::string name = make_root(home() + "/root");
    while (name.size() < 4'000) name += "/.";
    setenv("QUOROOT", name.c_str(), 1);
    EXPECT_EQ(GetQUORoot(), name);
}

class InstalledRoot : public testing::Test {
  protected:
    void SetUp() override {
        if (!kestrel::testing::has_private_machine() || !kestrel::testing::cover("/opt")) {
            GTEST_SKIP() << "needs a mount namespace of its own";
        }
    }

    // Adds a directory to /usr/lib without hiding its content.
    static bool add_to_usr_lib() {
        if (!kestrel::testing::cover("/srv")) return false;
        fs::create_directories("/srv/upper");
        fs::create_directories("/srv/work");
        return mount("none", "/usr/lib", "overlay", 0,
                     "lowerdir=/usr/lib,upperdir=/srv/upper,workdir=/srv/work") == 0;
    }
};

TEST_F(InstalledRoot, IsFoundInOpt) {
    make_root("/opt/Veltrane/QUOClient");
    EXPECT_STREQ(GetQUORoot(), "/opt/Veltrane/QUOClient");
}

TEST_F(InstalledRoot, ComesAfterTheProgramsDirectory) {
    make_root("/opt/Veltrane/QUOClient");
    EXPECT_EQ(root_of_program_in(make_root(home() + "/own")), home() + "/own");
}

TEST_F(InstalledRoot, IsFoundInUsrLibLast) {
    if (!add_to_usr_lib()) GTEST_SKIP() << "needs an overlay of /usr/lib";
    make_root("/usr/lib/QUOClient");
    EXPECT_STREQ(GetQUORoot(), "/usr/lib/QUOClient");
}

TEST_F(InstalledRoot, PrefersOptToUsrLib) {
    if (!add_to_usr_lib()) GTEST_SKIP() << "needs an overlay of /usr/lib";
    make_root("/usr/lib/QUOClient");
    make_root("/opt/Veltrane/QUOClient");
    EXPECT_STREQ(GetQUORoot(), "/opt/Veltrane/QUOClient");
}

}  // namespace
