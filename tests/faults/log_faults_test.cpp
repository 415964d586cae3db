// The logging client, from its start to its end, with each system call failing once.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/faults/faults.h"
#include "tests/faults/scenario.h"
#include "tests/support/listening_host.h"

namespace kestrel::testing {
namespace {

enum Status { kAllWell, kNoSettings, kWrongResult };

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
    ZynLogShutdown();
    GetTarnPackageversion();
    check_heartbeat_file_age(GetLogFilePath());
    if (result != 1 || errno != EDOM || is_set != (set == 1)) return kWrongResult;
    return set == 1 ? kAllWell : kNoSettings;
}

TEST(LogFaults, NoneHappens) {
    const Outcome outcome = run_with({"", 0, 0}, life_of_a_log);
    EXPECT_EQ(outcome.status, kAllWell);
    EXPECT_FALSE(outcome.leaks);
}

TEST(LogFaults, OfTheSettingsLeaveNone) {
    for_each_fault({{"ftruncate", {EIO, EFBIG, EROFS, EINTR, EINVAL}},
                    {"open", {EACCES, EROFS, ENOSPC, EDQUOT, EMFILE, ENFILE, ELOOP, EINTR, EIO}}},
                   life_of_a_log, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, kNoSettings) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(LogFaults, OfAnythingElseNeverShow) {
    for_each_fault({{"socket", {EMFILE, ENFILE, ENOMEM, EACCES}},
                    {"connect", {ECONNREFUSED, EACCES, EINTR, ETIMEDOUT, EAGAIN}},
                    {"write", {EPIPE, ECONNRESET, EINTR, EAGAIN, ENOBUFS, EIO}},
                    {"mkdir", {EACCES, EROFS, ENOSPC, EDQUOT, EMLINK, EIO, ENAMETOOLONG}},
                    {"stat", {EACCES, ELOOP, ENOMEM, EIO}},
                    {"readlink", {EACCES, EIO, ENOENT}},
                    {"mmap", {ENOMEM, EACCES, EAGAIN, ENFILE}}},
                   life_of_a_log, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_LT(outcome.status, kWrongResult) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

}  // namespace
}  // namespace kestrel::testing
