// The utilities that touch the system, with each system call failing once.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "common/LinuxCommonUtils.h"
#include "tests/faults/faults.h"
#include "tests/faults/scenario.h"

namespace kestrel::testing {
namespace {

int use_the_lock() { return LinuxCommonUtils::IsAnotherInstanceRunning("probe") ? 1 : 0; }

// The second start of the same process finds its own lock.
int use_the_lock_twice() {
    const int first = use_the_lock();
    return first == 0 ? use_the_lock() : first;
}

int use_a_lock_in_a_directory() {
    std::filesystem::create_directories(std::string(std::getenv("HOME")) + "/.QUOClient/.tmp/.a");
    return LinuxCommonUtils::IsAnotherInstanceRunning("a/probe") ? 1 : 0;
}

int use_the_rest() {
    LinuxCommonUtils::GetModulePath();
    LinuxCommonUtils::getQUOROOT();
    LinuxCommonUtils::GetTarnUserAgent();
    return LinuxCommonUtils::getUserTmpDir().starts_with('/') ? 0 : 1;
}

// Neither HOME nor USER is set.
int ask_for_name_and_home() {
    unsetenv("HOME");
    unsetenv("USER");
    set_password_entry("ann", "/home/ann");
    const std::string home = LinuxCommonUtils::getHomeDir();
    const std::string name = LinuxCommonUtils::getUserName();
    if (home == "/home/ann" && name == "ann") return 0;
    return home + name == "ann" || home + name == "/home/ann" ? 1 : 2;
}

int read_a_time() {
    const std::time_t day = LinuxCommonUtils::ConvertStringToTime("2024-03-01", "%Y-%m-%d");
    return day == -1 ? 1 : 0;
}

int drop_capabilities() { return LinuxCommonUtils::drop_capability() == 0 ? 0 : 1; }

TEST(Utilities, TreatLockErrorsAsAnotherInstance) {
    for (const auto& use : {use_the_lock, use_a_lock_in_a_directory}) {
        for_each_fault({{"open", {EACCES, EMFILE, ENFILE, ELOOP, EIO, EINTR}},
                        {"openat", {EACCES, EMFILE, ENFILE, EROFS, ELOOP, ENOSPC, EIO, EINTR}},
                        {"fstat", {EIO, ENOMEM, EOVERFLOW}},
                        {"write", {ENOSPC, EIO, EDQUOT, EFBIG}}},
                       use, [](const Fault& fault, const Outcome& outcome) {
                           EXPECT_EQ(outcome.status, 1) << fault;
                           EXPECT_NE(outcome.errors.find("Please remove/"), std::string::npos)
                               << fault;
                       });
    }
}

TEST(Utilities, SurviveErrorsAtAnExistingLock) {
    for_each_fault({{"flock", {EINTR, ENOLCK}},
                    {"read", {EIO, EISDIR, EBADF}},
                    {"open", {EACCES, EMFILE, ENOENT}},
                    {"openat", {EACCES, EMFILE, ENOENT}}},
                   use_the_lock_twice, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_LE(outcome.status, 1) << fault;
                       const bool has_advice =
                           outcome.errors.find("Please remove/") != std::string::npos;
                       EXPECT_TRUE(outcome.status == 1 || !has_advice) << fault;
                   });
    for_each_fault({{"kill", {ESRCH, EPERM}}}, use_the_lock_twice,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

TEST(Utilities, IgnoreCloseErrors) {
    for (const auto& use : {use_the_lock, use_a_lock_in_a_directory}) {
        for_each_fault({{"close", {EIO, EINTR, ENOSPC, EDQUOT}}}, use,
                       [](const Fault& fault, const Outcome& outcome) {
                           EXPECT_EQ(outcome.status, 0) << fault;
                           EXPECT_EQ(outcome.errors, "") << fault;
                       });
    }
}

TEST(Utilities, ReturnNoTextWithoutThePasswordDatabase) {
    EXPECT_EQ(run_with({"", 0, 0}, ask_for_name_and_home).status, 0);
    for_each_fault({{"getpwuid_r", {EINTR, EIO, EMFILE, ENFILE, ENOMEM, ENOENT}}},
                   ask_for_name_and_home, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 1) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
    for_each_fault(
        {{"getpwuid_r", {ERANGE}}}, ask_for_name_and_home,
        [](const Fault& fault, const Outcome& outcome) { EXPECT_EQ(outcome.status, 0) << fault; });
}

// The library is not installed under its second name.
TEST(Utilities, ReportAMissingCapabilityLibrary) {
    if (geteuid() != 0) GTEST_SKIP() << "there are no capabilities to drop";
    for_each_fault({{"dlopen", {ENOENT, EACCES, EMFILE, ENOMEM}}}, drop_capabilities,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 1) << fault;
                       EXPECT_EQ(outcome.errors,
                                 "Unable to set the capability as libcap library is not found\n"
                                 "Unable to get the capability reduction lib\n")
                           << fault;
                   });
}

TEST(Utilities, FallBackToAnotherScratchDirectory) {
    for_each_fault({{"mkdir", {EACCES, ENOSPC, EROFS, EMLINK, ENAMETOOLONG, EDQUOT}}}, use_the_rest,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                       EXPECT_NE(outcome.errors.find(".Using /tmp directory.\n"), std::string::npos)
                           << fault;
                   });
}

TEST(Utilities, ReturnLessWithoutSystemInformation) {
    for_each_fault({{"readlink", {EACCES, ENOENT, EIO}},
                    {"stat", {EACCES, ELOOP, ENOTDIR}},
                    {"uname", {EFAULT}},
                    {"calloc", {ENOMEM}}},
                   use_the_rest, [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 0) << fault;
                   });
}

TEST(Utilities, ReturnMinusOneForAnInvalidTime) {
    EXPECT_EQ(run_with({"", 0, 0}, read_a_time).status, 0);
    for_each_fault({{"mktime", {EOVERFLOW}}}, read_a_time,
                   [](const Fault& fault, const Outcome& outcome) {
                       EXPECT_EQ(outcome.status, 1) << fault;
                       EXPECT_EQ(outcome.errors, "") << fault;
                   });
}

}  // namespace
}  // namespace kestrel::testing
