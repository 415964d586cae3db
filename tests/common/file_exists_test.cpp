#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <filesystem>

#include "common/LinuxCommonUtils.h"
#include "tests/common/client_tree.h"
#include "tests/support/listening_host.h"
#include "tests/support/temporary_directory.h"

namespace kestrel::testing {
namespace {

class FileExistsTest : public ::testing::Test {
  protected:
    bool exists(const std::string& name) const {
        std::string path = directory.path() + "/" + name;
        return LinuxCommonUtils::ifFileExists(path);
    }

    TemporaryDirectory directory;
};

TEST_F(FileExistsTest, FindsFilesOfEveryType) {
    const std::string base = directory.path() + "/";
    create_file(base + "file");
    std::filesystem::create_directory(base + "directory");
    ASSERT_EQ(mkfifo((base + "pipe").c_str(), 0600), 0);
    const ListeningHost socket(base + "socket");
    std::filesystem::create_symlink("file", base + "link");
    for (const char* name : {"file", "directory", "directory/", "pipe", "socket", "link", "."}) {
        EXPECT_TRUE(exists(name)) << name;
    }
}

TEST_F(FileExistsTest, IsFalseForMissingFiles) {
    const std::string base = directory.path() + "/";
    create_file(base + "file");
    std::filesystem::create_symlink("nowhere", base + "dangling");
    for (const char* name : {"missing", "dangling", "file/", "file/below", "missing/below"}) {
        EXPECT_FALSE(exists(name)) << name;
    }
    std::string empty;
    EXPECT_FALSE(LinuxCommonUtils::ifFileExists(empty));
}

TEST_F(FileExistsTest, KeepsThePathUnchanged) {
    std::string path = directory.path();
    EXPECT_TRUE(LinuxCommonUtils::ifFileExists(path));
    EXPECT_EQ(path, directory.path());
}

}  // namespace
}  // namespace kestrel::testing
