#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "log/zynlog_paths.h"
#include "tests/log/machine.h"

namespace {

namespace fs = std::filesystem;

class PackageVersion : public testing::Test {
  protected:
    PackageVersion() {
        fs::create_directories(root_ + "/gtk/glade");
        kestrel::testing::write_file(root_ + "/libproxy.so", "");
        kestrel::testing::write_file(root_ + "/gtk/glade/main.glade", "");
        fs::create_directories(root_ + "/pkginf");
        setenv("QUOROOT", root_.c_str(), 1);
    }

    void write_version_file(std::string_view content) {
        kestrel::testing::write_file(root_ + "/pkginf/Ver.core.linuxx64", content);
    }

    std::string root_ = kestrel::testing::home() + "/root";
};

TEST_F(PackageVersion, FollowsItsKey) {
    write_version_file("ID_VERSION=1.2.3\n");
    EXPECT_STREQ(GetTarnPackageversion(), "1.2.3");
}

TEST_F(PackageVersion, MayBeInAnyLine) {
    write_version_file("NAME=core\nOTHER=1\nID_VERSION=1.2.3\nID_VERSION=4\n");
    EXPECT_STREQ(GetTarnPackageversion(), "1.2.3");
}

TEST_F(PackageVersion, MayFollowOtherTextInItsLine) {
    write_version_file("export ID_VERSION=1.2.3");
    EXPECT_STREQ(GetTarnPackageversion(), "1.2.3");
}

TEST_F(PackageVersion, MayBeEmpty) {
    write_version_file("ID_VERSION=\n");
    EXPECT_STREQ(GetTarnPackageversion(), "");
}

TEST_F(PackageVersion, IsTruncatedTo31Characters) {
    write_version_file("ID_VERSION=" + std::string(40, '1') + "\n");
    EXPECT_EQ(GetTarnPackageversion(), std::string(31, '1'));
}

TEST_F(PackageVersion, HasAll31Characters) {
    write_version_file("ID_VERSION=" + std::string(31, '1') + "\n");
    EXPECT_EQ(GetTarnPackageversion(), std::string(31, '1'));
}

TEST_F(PackageVersion, IsSearchedInPiecesOf127Characters) {
    write_version_file(std::string(120, 'x') + "ID_VERSION=1.2.3\nID_VERSION=4\n");
    EXPECT_STREQ(GetTarnPackageversion(), "4");
}

TEST_F(PackageVersion, IsFoundInALaterPieceOfALongLine) {
    write_version_file(std::string(127, 'x') + "ID_VERSION=1.2.3\n");
    EXPECT_STREQ(GetTarnPackageversion(), "1.2.3");
}

TEST_F(PackageVersion, IsUnknownWithoutItsKey) {
    write_version_file("VERSION=1.2.3\n");
    EXPECT_STREQ(GetTarnPackageversion(), "unknown");
}

TEST_F(PackageVersion, IsUnknownWithoutItsFile) {
    kestrel::testing::write_file(root_ + "/pkginf/Ver.other", "ID_VERSION=1.2.3\n");
    EXPECT_STREQ(GetTarnPackageversion(), "unknown");
}

TEST_F(PackageVersion, IsUnknownWithoutItsDirectory) {
    fs::remove(root_ + "/pkginf");
    EXPECT_STREQ(GetTarnPackageversion(), "unknown");
}

TEST_F(PackageVersion, IsUnknownIfItsFileIsADirectory) {
    fs::create_directory(root_ + "/pkginf/Ver.core.linuxx64");
    EXPECT_STREQ(GetTarnPackageversion(), "unknown");
}

TEST_F(PackageVersion, IsUnknownIfItsFileCannotBeOpened) {
    fs::create_symlink("/nowhere", root_ + "/pkginf/Ver.core.linuxx64");
    EXPECT_STREQ(GetTarnPackageversion(), "unknown");
}

TEST_F(PackageVersion, ComesFromAnyFileWhoseNameContainsThePattern) {
    kestrel::testing::write_file(root_ + "/pkginf/old-Ver.core.x", "ID_VERSION=1.2.3\n");
    EXPECT_STREQ(GetTarnPackageversion(), "1.2.3");
}

TEST_F(PackageVersion, IsCached) {
    write_version_file("ID_VERSION=1.2.3\n");
    const char* const version = GetTarnPackageversion();
    write_version_file("ID_VERSION=4\n");
    EXPECT_EQ(GetTarnPackageversion(), version);
    EXPECT_STREQ(version, "1.2.3");
}

TEST_F(PackageVersion, IsCachedEvenIfUnknown) {
    GetTarnPackageversion();
    write_version_file("ID_VERSION=4\n");
    EXPECT_STREQ(GetTarnPackageversion(), "unknown");
}

}  // namespace
