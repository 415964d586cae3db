#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <ctime>
#include <string>

#include "log/zynlog_paths.h"
#include "tests/log/machine.h"

namespace {

constexpr std::time_t kNow = 1'700'000'000;

}  // namespace

// A fixed clock, so that one second more or less can be tested.
extern "C" std::time_t time(std::time_t* result) noexcept {
    if (result != nullptr) *result = kNow;
    return kNow;
}

namespace {

std::string file_modified_at(std::time_t seconds) {
    std::string path = kestrel::testing::home() + "/heartbeat";
    kestrel::testing::write_file(path, "");
    const std::array<timespec, 2> times{{{seconds, 0}, {seconds, 999'999'999}}};
    utimensat(AT_FDCWD, path.c_str(), times.data(), 0);
    return path;
}

TEST(Heartbeat, IsFreshForADayLessOneSecond) {
    EXPECT_TRUE(check_heartbeat_file_age(file_modified_at(kNow).c_str()));
    EXPECT_TRUE(check_heartbeat_file_age(file_modified_at(kNow - 86'399).c_str()));
    EXPECT_FALSE(check_heartbeat_file_age(file_modified_at(kNow - 86'400).c_str()));
    EXPECT_FALSE(check_heartbeat_file_age(file_modified_at(0).c_str()));
}

TEST(Heartbeat, IsFreshWithATimeInTheFuture) {
    EXPECT_TRUE(check_heartbeat_file_age(file_modified_at(kNow + 86'400).c_str()));
}

TEST(Heartbeat, IsNotFreshWithoutAFile) {
    EXPECT_FALSE(check_heartbeat_file_age((kestrel::testing::home() + "/missing").c_str()));
    EXPECT_FALSE(check_heartbeat_file_age(""));
    EXPECT_FALSE(check_heartbeat_file_age(nullptr));
}

TEST(Heartbeat, MayBeADirectory) {
    EXPECT_FALSE(check_heartbeat_file_age("/proc/self/fd/-1"));
    const std::array<timespec, 2> times{{{kNow, 0}, {kNow, 0}}};
    utimensat(AT_FDCWD, kestrel::testing::home().c_str(), times.data(), 0);
    EXPECT_TRUE(check_heartbeat_file_age(kestrel::testing::home().c_str()));
}

}  // namespace
