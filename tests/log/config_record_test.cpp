// The bytes of the settings file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/bytes.h"
#include "tests/log/machine.h"
#include "tests/support/file_content.h"

namespace {

using kestrel::testing::client_directory;
using kestrel::testing::file_content;
using kestrel::testing::home;
using kestrel::testing::put_u32;
using kestrel::testing::record_bytes;
using kestrel::testing::record_path;
using kestrel::testing::u32_at;
using kestrel::testing::write_file;

constexpr std::size_t kRecordSize = 516;

std::string default_record() {
    std::string bytes(kRecordSize, '\0');
    put_u32(bytes, 0, 0x62f);
    put_u32(bytes, 4, 4);
    const std::string output = home() + "//.QUOClient/logs/QUOClient.log";
    bytes.replace(244, output.size(), output);
    put_u32(bytes, 500, 200);
    put_u32(bytes, 504, 2);
    put_u32(bytes, 508, 200);
    put_u32(bytes, 512, 0x12345678);
    return bytes;
}

std::string garbage(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = static_cast<std::uint32_t>(size) + 1;
    for (char& byte : bytes) {
        state = state * 1'664'525U + 1'013'904'223U;
        byte = static_cast<char>(state >> 24U);
    }
    return bytes;
}

void plant(std::string_view bytes) {
    client_directory();
    write_file(record_path(), bytes);
}

TEST(ConfigFile, IsCreatedWithDefaults) {
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(record_bytes(), default_record());
}

TEST(ConfigFile, IsCreatedByZynLogInitToo) {
    EXPECT_EQ(ZynLogInit(), 1);
    EXPECT_EQ(record_bytes(), default_record());
}

TEST(ConfigFile, EndsWithTheMagicNumberInLittleEndian) {
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(record_bytes().substr(512), "\x78\x56\x34\x12");
}

TEST(ConfigFile, IsAccessibleToAllUsersWithAnyUmask) {
    umask(0077);
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    struct stat status {};
    ASSERT_EQ(stat(record_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0666U);
}

TEST(ConfigFile, DirectoryPermissionsFollowTheUmask) {
    umask(0077);
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(std::filesystem::status(home() + "/.QUOClient").permissions(),
              std::filesystem::perms::owner_all);
}

TEST(ConfigFile, SetsTheUmaskTo022) {
    umask(0077);
    ZynLogInitConfigOnly();
    EXPECT_EQ(umask(0), 0022U);
}

TEST(ConfigFile, SetsTheUmaskTo022EvenIfItCannotBeOpened) {
    std::filesystem::create_directory(client_directory() + "/.zynlogconf");
    umask(0077);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    EXPECT_EQ(umask(0), 0022U);
}

TEST(ConfigFile, KeepsTheUmaskOfASecondInit) {
    ZynLogInitConfigOnly();
    umask(0027);
    ZynLogInitConfigOnly();
    EXPECT_EQ(umask(0), 0027U);
}

TEST(ConfigFile, HasEachSettingAtItsOffset) {
    ZynLogInitConfigOnly();
    std::string expected = default_record();

    ZynLogEnableFlags(0x8000'1000);
    put_u32(expected, 0, 0x8000'162f);
    EXPECT_EQ(record_bytes(), expected);

    for (std::uint32_t log_class = 0; log_class < 60; ++log_class) {
        EXPECT_EQ(ZynLogSetCurrentLevel(log_class, 1 + log_class % 7), 1);
        put_u32(expected, 4 + 4 * log_class, 1 + log_class % 7);
        EXPECT_EQ(record_bytes(), expected);
    }

    ZynLogSetOutputPath("/a/b");
    expected.replace(244, 256, "/a/b" + std::string(252, '\0'));
    EXPECT_EQ(record_bytes(), expected);

    ZynLogSetRolloverSize(2000);
    put_u32(expected, 500, 2000);
    ZynLogSetRolloverCount(100);
    put_u32(expected, 504, 100);
    ZynLogSetSessionMax(1999);
    put_u32(expected, 508, 1999);
    EXPECT_EQ(record_bytes(), expected);
}

TEST(ConfigFile, IsReadFromItsOffsets) {
    std::string bytes = default_record();
    put_u32(bytes, 0, 0xdeadbeef);
    for (std::uint32_t log_class = 0; log_class < 60; ++log_class) {
        put_u32(bytes, 4 + 4 * log_class, 1 + log_class % 7);
    }
    bytes.replace(244, 256, "/x" + std::string(254, '\0'));
    put_u32(bytes, 500, 3);
    put_u32(bytes, 504, 5);
    put_u32(bytes, 508, 7);
    plant(bytes);

    ZynLogInitConfigOnly();
    std::uint32_t flags = 0;
    ZynLogGetCurrentFlags(&flags);
    EXPECT_EQ(flags, 0xdeadbeefU);
    for (std::uint32_t log_class = 0; log_class < 60; ++log_class) {
        EXPECT_EQ(ZynLogGetCurrentLevel(log_class), 1 + log_class % 7);
    }
    EXPECT_STREQ(ZynLogGetOutputPath(), "/x");
    EXPECT_EQ(ZynLogGetRolloverSize(), 3U);
    EXPECT_EQ(ZynLogGetRolloverCount(), 5U);
    EXPECT_EQ(ZynLogGetSessionMax(), 7U);
    EXPECT_EQ(record_bytes(), bytes);
}

TEST(ConfigFile, StoresAPathOf255Characters) {
    ZynLogInitConfigOnly();
    const std::string path(255, 'p');
    EXPECT_EQ(ZynLogSetOutputPath(path.c_str()), 1);
    EXPECT_EQ(record_bytes().substr(244, 256), path + std::string(1, '\0'));
}

TEST(ConfigFile, StoresAPathOf256CharactersWithoutTerminator) {
    ZynLogInitConfigOnly();
    const std::string path(256, 'p');
    EXPECT_EQ(ZynLogSetOutputPath(path.c_str()), 1);
    EXPECT_EQ(record_bytes().substr(244, 256), path);
    EXPECT_EQ(u32_at(record_bytes(), 500), 200U);
}

TEST(ConfigFile, TruncatesAPathOf1000Characters) {
    ZynLogInitConfigOnly();
    EXPECT_EQ(ZynLogSetOutputPath(std::string(1'000, 'p').c_str()), 1);
    EXPECT_EQ(record_bytes().substr(244, 256), std::string(256, 'p'));
    EXPECT_EQ(u32_at(record_bytes(), 500), 200U);
}

TEST(ConfigFile, TruncatesALongDefaultPath) {
    std::string deep = home();
    while (deep.size() < 300) deep += "/directory";
    setenv("HOME", deep.c_str(), 1);
    ASSERT_EQ(ZynLogInitConfigOnly(), 1);
    const std::string bytes = file_content(deep + "/.QUOClient/.zynlogconf");
    EXPECT_EQ(bytes.substr(244, 256), deep.substr(0, 256));
    EXPECT_EQ(u32_at(bytes, 500), 200U);
}

// A file that another program wrote, of any size up to a page.
TEST(ForeignConfigFile, IsResetWithoutTheMagicNumber) {
    for (std::size_t size = 0; size <= 4'096; ++size) {
        std::string bytes = garbage(size);
        if (size >= kRecordSize) put_u32(bytes, 512, 0x12345679);
        plant(bytes);
        ASSERT_EQ(ZynLogInitConfigOnly(), 1) << size;
        ASSERT_EQ(record_bytes(), default_record()) << size;
        ZynLogShutdown();
    }
}

TEST(ForeignConfigFile, KeepsItsFirst516BytesWithTheMagicNumber) {
    for (std::size_t size = kRecordSize; size <= 4'096; ++size) {
        std::string bytes = garbage(size);
        put_u32(bytes, 512, 0x12345678);
        plant(bytes);
        ASSERT_EQ(ZynLogInitConfigOnly(), 1) << size;
        ASSERT_EQ(record_bytes(), bytes.substr(0, kRecordSize)) << size;
        ASSERT_EQ(ZynLogGetCurrentLevel(59), u32_at(bytes, 240)) << size;
        ZynLogShutdown();
    }
}

TEST(ForeignConfigFile, MayLackTheTerminatorOfItsPath) {
    std::string bytes(kRecordSize, 'x');
    put_u32(bytes, 512, 0x12345678);
    plant(bytes);
    ASSERT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(std::string(ZynLogGetOutputPath(), 256), std::string(256, 'x'));
}

TEST(ForeignConfigFile, ReturnsInvalidLevelsUnchanged) {
    std::string bytes = default_record();
    put_u32(bytes, 4 + 4 * 41, 8);
    put_u32(bytes, 4 + 4 * 29, 0x8000'0000);
    plant(bytes);
    ZynLogInitConfigOnly();
    EXPECT_EQ(ZynLogGetCurrentLevel(41), 8U);
    EXPECT_EQ(ZynLogGetWorkingLevel(41), 8U);
    EXPECT_EQ(ZynLogGetWorkingLevel(29), 0x8000'0000U);
}

TEST(ForeignConfigFile, MayBeReplacedWhileMapped) {
    ZynLogInitConfigOnly();
    std::string bytes = default_record();
    put_u32(bytes, 508, 9);
    write_file(record_path() + ".new", bytes);
    std::filesystem::rename(record_path() + ".new", record_path());

    EXPECT_EQ(ZynLogGetSessionMax(), 200U);
    EXPECT_EQ(ZynLogSetSessionMax(10), 1);
    EXPECT_EQ(u32_at(record_bytes(), 508), 9U);
    ZynLogShutdown();
    ZynLogInitConfigOnly();
    EXPECT_EQ(ZynLogGetSessionMax(), 9U);
}

TEST(ForeignConfigFile, MayBeDeletedWhileMapped) {
    ZynLogInitConfigOnly();
    std::filesystem::remove(record_path());
    EXPECT_EQ(ZynLogSetSessionMax(10), 1);
    EXPECT_EQ(ZynLogGetSessionMax(), 10U);
}

TEST(ConfigFile, IsUnmappedByShutdown) {
    ZynLogInitConfigOnly();
    EXPECT_THAT(file_content("/proc/self/maps"), testing::HasSubstr(".zynlogconf"));
    ZynLogShutdown();
    EXPECT_THAT(file_content("/proc/self/maps"), testing::Not(testing::HasSubstr(".zynlogconf")));
}

TEST(ConfigFile, ReusesItsAddressSpaceAtEachInit) {
    ZynLogInitConfigOnly();
    const char* const place = ZynLogGetOutputPath();
    ZynLogShutdown();
    ZynLogInitConfigOnly();
    EXPECT_EQ(ZynLogGetOutputPath(), place);
}

}  // namespace
