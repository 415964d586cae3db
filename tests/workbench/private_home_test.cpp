#include "workbench/private_home.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

namespace fs = std::filesystem;

TEST(PrivateHome, IsATemporaryDirectoryOfMode0700AndIsRemoved) {
    std::string path;
    {
        const PrivateHome home("");
        path = home.path();
        EXPECT_TRUE(fs::is_directory(path + "/.QUOClient"));
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
        EXPECT_EQ(fs::status(path + "/.QUOClient").permissions(), fs::perms::owner_all);
        std::ofstream(path + "/.QUOClient/left") << "over";
    }
    EXPECT_FALSE(fs::exists(path));
}

TEST(PrivateHome, KeepsAGivenDirectory) {
    const TemporaryDirectory directory;
    { const PrivateHome home(directory.path()); }
    EXPECT_TRUE(fs::is_directory(directory.path() + "/.QUOClient"));
    EXPECT_NO_THROW(PrivateHome(directory.path()));
}

TEST(PrivateHome, CannotBeAFile) {
    const TemporaryDirectory directory;
    std::ofstream(directory.path() + "/file") << "text";
    EXPECT_THROW(PrivateHome(directory.path() + "/file"), std::system_error);
}

}  // namespace
}  // namespace kestrel::testing
