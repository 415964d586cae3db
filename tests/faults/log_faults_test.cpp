// The logging client from start to shutdown, with each system call failing once.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "log/shared_config.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/faults/faults.h"
#include "tests/faults/scenario.h"
#include "tests/support/listening_host.h"

namespace kestrel::testing {
namespace {

enum Status { kAllWell, kNoSettings, kFoundLater, kWrongResult };

// A slow thread may still read the record after the shutdown, even if the file was truncated.
void read_when_cut_short(logging::SharedLogConfig& record) {
    const NoFaults of_a_neighbour;
    std::filesystem::resize_file(GetConfigFilePath(), 0);
    logging::load(record.flags);
}

// With a daemon that listens and never reads.
int life_of_a_log() {
    const std::string client_directory = std::string(std::getenv("HOME")) + "/.QUOClient";
    std::optional<ListeningHost> daemon;
    {
        const NoFaults listening;
        std::filesystem::create_directories(client_directory);
        daemon.emplace(client_directory + "/.zynlogsocket");
    }
    errno = EDOM;
    const int result = ZynLogInit();
    __ZynTrace(kLogWebkit, kError, "", "", 0, "%s", "a line");
    __ZynLog(kError, "", "", 0, "%s", "a line");
    const int set = ZynLogSetCurrentLevel(kLogWebkit, kVerbose);
    const bool is_set = ZynLogGetWorkingLevel(kLogWebkit) == kVerbose;
    __ZynTrace(kLogWebkit, kVerbose, "", "", 0, "%d", 5);
    logging::SharedLogConfig* const held = logging::config();
    ZynLogShutdown();
    if (held != nullptr) read_when_cut_short(*held);
    GetTarnPackageversion();
    check_heartbeat_file_age(GetLogFilePath());
    if (result != 1 || errno != EDOM || is_set != (set == 1)) return kWrongResult;
    return set == 1 ? kAllWell : kNoSettings;
}

// The settings file is a symbolic link.
int life_with_a_link() {
    {
        const NoFaults linking;
        const std::string client_directory = std::string(std::getenv("HOME")) + "/.QUOClient";
        std::filesystem::create_directories(client_directory);
        std::filesystem::create_symlink("settings", client_directory + "/.zynlogconf");
    }
    return life_of_a_log();
}

// The user's home is the one in the password database.
int life_without_home() {
    const std::string home = std::getenv("HOME");
    unsetenv("HOME");
    set_password_entry("ann", home);
    const std::string path = GetConfigFilePath();
    const bool is_set = ZynLogInitConfigOnly() == 1;
    ZynLogShutdown();
    if (path.empty()) return is_set ? kFoundLater : kNoSettings;
    return is_set && path == home + "//.QUOClient/.zynlogconf" ? kAllWell : kWrongResult;
}

enum VersionStatus { kVersion, kUnknownVersion, kWrongVersion };

// With an install root that is complete.
int look_for_the_version() {
    namespace fs = std::filesystem;
    const fs::path root = fs::path(std::getenv("HOME")) / "root";
    fs::create_directories(root / "gtk/glade");
    fs::create_directories(root / "pkginf");
    std::ofstream(root / "gtk/glade/main.glade") << "";
    std::ofstream(root / "libproxy.so") << "";
    std::ofstream(root / "pkginf/Ver.core.any") << "ID_NAME=any\nID_VERSION=7.1\n";
    setenv("QUOROOT", root.c_str(), 1);
    errno = EDOM;
    const std::string version = GetTarnPackageversion();
    if (errno != EDOM) return kWrongVersion;
    if (version == "7.1") return kVersion;
    return version == "unknown" ? kUnknownVersion : kWrongVersion;
}

TEST(Log, WorksWithoutFaults) {
    const Outcome outcome = run_with({"", 0, 0}, life_of_a_log);
    EXPECT_EQ(outcome.status, kAllWell);
    EXPECT_FALSE(outcome.leaks);
    EXPECT_EQ(run_with({"", 0, 0}, life_with_a_link).status, kAllWell);
    EXPECT_EQ(run_with({"", 0, 0}, life_without_home).status, kAllWell);
    EXPECT_EQ(run_with({"", 0, 0}, look_for_the_version).status, kVersion);
}

TEST(Log, HasNoSettingsWithoutTheirFile) {
    for_each_fault({{"ftruncate", {EIO, EFBIG, EROFS, EINTR, EINVAL}},
                    {"openat", {EACCES, EROFS, ENOSPC, EDQUOT, EMFILE, ENFILE, ELOOP, EINTR, EIO}}},
                   life_of_a_log, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kNoSettings) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
    for_each_fault({{"openat", {EACCES, EMFILE, ENFILE, ENOENT, EINTR, EIO}},
                    {"fstat", {EIO, ENOMEM, EOVERFLOW}},
                    {"readlinkat", {EACCES, EINVAL, EIO, ENOMEM}}},
                   life_with_a_link, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kNoSettings) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(Log, HidesOtherErrors) {
    for_each_fault({{"socket", {EMFILE, ENFILE, ENOMEM, EACCES}},
                    {"connect", {ECONNREFUSED, EACCES, EINTR, ETIMEDOUT, EAGAIN}},
                    {"write", {EPIPE, ECONNRESET, EINTR, EAGAIN, ENOBUFS, EIO}},
                    {"mkdir", {EACCES, EROFS, ENOSPC, EDQUOT, EMLINK, EIO, ENAMETOOLONG}},
                    {"stat", {EACCES, ELOOP, ENOMEM, EIO}},
                    {"readlink", {EACCES, EIO, ENOENT}},
                    {"mmap", {ENOMEM, EACCES, EAGAIN, ENFILE}},
                    {"mremap", {ENOMEM, EAGAIN}},
                    {"close", {EIO, EINTR, EDQUOT}},
                    {"shutdown", {ENOTCONN, ENOBUFS}},
                    {"access", {EACCES, ELOOP, ENOENT, ENOMEM, EIO}},
                    {"strdup", {ENOMEM}},
                    {"asprintf", {ENOMEM}}},
                   life_of_a_log, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_LT(outcome.status, kWrongResult) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

// The settings cannot be replaced by the page of zeros, which cannot be unmapped either.
TEST(Log, HidesUnmapErrors) {
    for_each_fault(
        {{"munmap", {EINVAL, ENOMEM}}},
        [] {
            fail_before("mremap", ENOMEM);
            return life_of_a_log();
        },
        [](const Fault& fault, const Outcome& outcome) {
            EXPECT_EQ(outcome.status, kAllWell) << fault;
            EXPECT_EQ(outcome.errors, "") << fault;
        });
}

TEST(Log, RetriesThePasswordDatabase) {
    for_each_fault(
        {{"getpwuid_r", {EINTR, EIO, EMFILE, ENFILE, ENOMEM, ENOENT}}, {"strdup", {ENOMEM}}},
        life_without_home, [](const Fault& fault, const Outcome& outcome) {
            EXPECT_EQ(outcome.status, kFoundLater) << fault;
            EXPECT_EQ(outcome.errors, "") << fault;
        });
    for_each_fault({{"getpwuid_r", {ERANGE}}}, life_without_home,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kAllWell) << fault;
                   });
}

TEST(Log, ReportsAnUnknownVersion) {
    for_each_fault({{"opendir", {EACCES, EMFILE, ENFILE, ENOENT, ENOMEM, ENOTDIR}},
                    {"fopen", {EACCES, EINTR, ELOOP, EMFILE, ENFILE, ENOENT, ENOMEM}},
                    {"fgets", {EIO, EINTR, EISDIR}},
                    {"readdir", {EIO, ENOENT, EOVERFLOW}},
                    {"access", {EACCES, EIO, ELOOP, ENOMEM}}},
                   look_for_the_version, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kUnknownVersion) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(Log, HidesCloseErrorsOfTheVersionFile) {
    for_each_fault({{"closedir", {EBADF, EINTR}}, {"fclose", {EBADF, EINTR, EIO}}},
                   look_for_the_version, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kVersion) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

}  // namespace
}  // namespace kestrel::testing
