#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <iostream>
#include <optional>
#include <regex>

#include "common/LinuxCommonUtils.h"
#include "tests/common/child_process.h"
#include "tests/common/scoped_variable.h"

using kestrel::testing::in_child;
using kestrel::testing::Output;
using kestrel::testing::ScopedVariable;

namespace {

// The errno of a strftime that produces nothing; if unset, it works.
std::optional<int> strftime_error;

}  // namespace

extern "C" std::size_t __real_strftime(char*, std::size_t, const char*, const std::tm*);
extern "C" std::size_t __wrap_strftime(char* buffer, std::size_t size, const char* format,
                                       const std::tm* fields) {
    if (!strftime_error) return __real_strftime(buffer, size, format, fields);
    if (*strftime_error != 0) errno = *strftime_error;
    return 0;
}

namespace {

constexpr const char* kCentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

std::string local_time(const char* format) {
    const std::time_t now = std::time(nullptr);
    std::array<char, 256> text{};
    return {text.data(), __real_strftime(text.data(), text.size(), format, std::localtime(&now))};
}

class TimeText : public ::testing::Test {
  protected:
    ScopedVariable zone_{"TZ", kCentralEurope};

    void SetUp() override { tzset(); }
    void TearDown() override { strftime_error.reset(); }
};

TEST_F(TimeText, ForLogFilesIsTheLocalTimeWithItsZone) {
    const std::string before = local_time("%Y-%m-%d_%H_%M_%S_%z");
    const std::string text = LinuxCommonUtils::GetTimeStringForLogger();
    const std::string after = local_time("%Y-%m-%d_%H_%M_%S_%z");
    EXPECT_LE(before, text);
    EXPECT_LE(text, after);
    EXPECT_TRUE(std::regex_match(
        text, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2}_[0-9]{2}_[0-9]{2}_[0-9]{2}_\\+0[12]00")))
        << text;
}

TEST_F(TimeText, FollowsAChangedTimeZone) {
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString("%Z").substr(0, 3), "CET");
    const ScopedVariable zone("TZ", "IST-5:30");
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString("%Z %z"), "IST +0530");
}

TEST_F(TimeText, ForLogFilesIsAPlaceholderIfFormattingFails) {
    strftime_error = ERANGE;
    EXPECT_EQ(in_child([] { std::cout << LinuxCommonUtils::GetTimeStringForLogger(); }),
              (Output{"time", "Some issue with date conversion\n"}));
}

TEST_F(TimeText, ForLogFilesIsEmptyIfFormattingProducesNothing) {
    strftime_error = 0;
    errno = ENOENT;
    EXPECT_EQ(in_child([] { std::cout << LinuxCommonUtils::GetTimeStringForLogger(); }),
              (Output{"", ""}));
}

TEST_F(TimeText, FormatsTheCurrentTime) {
    const std::string before = local_time("%Y %j %H:%M:%S");
    const std::string text = LinuxCommonUtils::GetCurrentTimeString("%Y %j %H:%M:%S");
    EXPECT_LE(before, text);
    EXPECT_LE(text, local_time("%Y %j %H:%M:%S"));
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString("no field"), "no field");
}

TEST_F(TimeText, CurrentTimeHas255BytesAtMost) {
    const std::string longest(255, 'x');
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString(longest.c_str()), longest);
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString((longest + "x").c_str()), "");
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString(""), "");
    EXPECT_EQ(LinuxCommonUtils::GetCurrentTimeString(nullptr), "");
}

constexpr const char* kFormat = "%Y-%m-%d %H:%M:%S";

TEST_F(TimeText, IsParsedAsLocalTimeInWinterAndSummer) {
    // 9:00 and 8:00 UTC.
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime("2024-03-01 10:00:00", kFormat), 1'709'283'600);
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime("2024-07-01 10:00:00", kFormat), 1'719'820'800);
}

TEST_F(TimeText, IsNormalisedLikeMktime) {
    std::tm fields{};
    fields.tm_year = 124;
    fields.tm_mon = 2;
    fields.tm_mday = 1;
    fields.tm_hour = 10;
    fields.tm_isdst = -1;
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime("2024-03-01 10:00:00", kFormat),
              std::mktime(&fields));
}

TEST_F(TimeText, IsParsedUpTo255Bytes) {
    const std::string blanks(246, ' ');
    constexpr const char* kDay = " %Y-%m-%d";
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime((blanks + "2024-03-1").c_str(), kDay),
              LinuxCommonUtils::ConvertStringToTime("2024-03-01", kDay));
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime((blanks + "2024-03-12").c_str(), kDay),
              LinuxCommonUtils::ConvertStringToTime("2024-03-01", kDay));
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime((blanks + "2024-03-12 and more").c_str(), kDay),
              LinuxCommonUtils::ConvertStringToTime("2024-03-01", kDay));
}

TEST_F(TimeText, WithoutMatchHasZeroFields) {
    // The last day of 1899, at midnight in the zone.
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime("no time", kFormat), -2'208'992'400 - 86'400);
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime("", kFormat), -2'208'992'400 - 86'400);
}

TEST_F(TimeText, OfNullIsMinusOne) {
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime(nullptr, kFormat), -1);
    EXPECT_EQ(LinuxCommonUtils::ConvertStringToTime("2024-03-01 10:00:00", nullptr), -1);
}

}  // namespace
