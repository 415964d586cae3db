// Existing files at the path of the scratch directory. They are used or avoided, never changed.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/lock_fixture.h"
#include "tests/common/scoped_variable.h"
#include "tests/support/file_state.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

struct Obstacle {
    const char* name;
    // Creates it at `path`; a link points to `beside`, which does not exist yet.
    std::function<void(const fs::path& path, const fs::path& beside)> put;
    // Why no directory can be created in it; null if one can.
    const char* trouble_below;
    // Created by another user, if the test may change users.
    bool is_of_another_user = false;

    friend std::ostream& operator<<(std::ostream& stream, const Obstacle& obstacle) {
        return stream << obstacle.name;
    }
};

void write_beside(const fs::path& path) { std::ofstream(path) << "precious"; }

const Obstacle kObstacles[] = {
    {"File", [](const auto& path, const auto&) { write_beside(path); }, "Not a directory"},
    {"Fifo", [](const auto& path, const auto&) { mkfifo(path.c_str(), 0600); }, "Not a directory"},
    {"LinkToAFile",
     [](const auto& path, const auto& beside) {
         write_beside(beside);
         fs::create_symlink(beside, path);
     },
     "Not a directory"},
    {"DanglingLink", [](const auto& path, const auto& beside) { fs::create_symlink(beside, path); },
     "No such file or directory"},
    {"LinkToItself", [](const auto& path, const auto&) { fs::create_symlink(path, path); },
     "Too many levels of symbolic links"},
    {"LinkToADirectory",
     [](const auto& path, const auto& beside) {
         fs::create_directory(beside);
         fs::create_symlink(beside, path);
     },
     nullptr},
    {"DirectoryForAll",
     [](const auto& path, const auto&) {
         fs::create_directory(path);
         fs::permissions(path, fs::perms{0777});
     },
     nullptr},
    {"DirectoryForNobody",
     [](const auto& path, const auto&) {
         fs::create_directory(path);
         fs::permissions(path, fs::perms{0});
     },
     "Permission denied"},
    {"DirectoryOfAnotherUser",
     [](const auto& path, const auto&) {
         fs::create_directory(path);
         fs::permissions(path, fs::perms{0555});
     },
     "Permission denied", true},
};

class ScratchObstacle : public ::testing::TestWithParam<Obstacle> {
  protected:
    // A unique name, so that its directory below /tmp belongs to the test.
    std::string user_ = "kestrel-test-user-" + std::to_string(getpid());
    std::string fallback_ = "/tmp/" + user_;
    TemporaryDirectory home_;
    std::string client_ = home_.path() + "/.QUOClient";
    std::string beside_ = home_.path() + "/beside";
    ScopedVariable home_variable_{"HOME", home_.path()};
    ScopedVariable user_variable_{"USER", user_};

    void SetUp() override { fs::permissions(home_.path(), fs::perms{0777}); }
    void TearDown() override { fs::remove_all(fallback_); }

    void put(const std::string& path) const {
        const auto as_somebody = GetParam().is_of_another_user ? in_child : as_ordinary_user;
        as_somebody([&] { GetParam().put(path, beside_); });
    }

    // The result and the output. Nothing at `path` or `beside` may change.
    Output ask_beside(const std::string& path) {
        put(path);
        const std::string before = state_of(path) + state_of(beside_);
        Output output = as_ordinary_user([] { std::cout << LinuxCommonUtils::getUserTmpDir(); });
        EXPECT_EQ(state_of(path) + state_of(beside_), before);
        chmod(path.c_str(), 0700);  // otherwise it could not be removed
        return output;
    }
};

TEST_P(ScratchObstacle, InHomeIsUsedUnchanged) {
    fs::create_directory(client_);
    fs::permissions(client_, fs::perms{0777});
    EXPECT_EQ(ask_beside(client_ + "/.tmp"), (Output{client_ + "/.tmp", ""}));
}

TEST_P(ScratchObstacle, BelowTmpIsUsedUnchanged) {
    const ScopedVariable home("HOME", home_.path() + "/missing");
    EXPECT_EQ(ask_beside(fallback_).out, fallback_);
}

// A directory can be created in it, or cannot.
TEST_P(ScratchObstacle, AsClientDirectoryCausesAFallbackUnlessItIsADirectory) {
    if (GetParam().trouble_below == nullptr) {
        put(client_);
        fs::permissions(client_, fs::perms{0777});  // follows a link
        EXPECT_EQ(as_ordinary_user([] { std::cout << LinuxCommonUtils::getUserTmpDir(); }),
                  (Output{client_ + "/.tmp", ""}));
        EXPECT_EQ(fs::status(client_).permissions(), fs::perms{0777});
        return;
    }
    EXPECT_EQ(ask_beside(client_),
              (Output{fallback_,
                      "Failed to create quoHome/.tmp directory inside user home directory." +
                          std::string(GetParam().trouble_below) + ".Using /tmp directory.\n"}));
}

INSTANTIATE_TEST_SUITE_P(Every, ScratchObstacle, ::testing::ValuesIn(kObstacles),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace kestrel::testing
