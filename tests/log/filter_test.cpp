// Which lines reach the daemon or syslog.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <filesystem>
#include <set>
#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/bytes.h"
#include "tests/log/fake_daemon.h"
#include "tests/log/machine.h"
#include "tests/log/syslog_recorder.h"

namespace {

using kestrel::kLogAll;
using kestrel::kLogFailure;
using kestrel::kLogKestrelExtension;
using kestrel::kLogWebkit;
using kestrel::testing::syslog_calls;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kLowestInt = -2147483647 - 1;
constexpr int kHighestInt = 2147483647;

class Filter : public testing::Test {
  protected:
    Filter() {
        ZynLogInit();
        kestrel::testing::clear_syslog_calls();
    }

    // All levels at which a line of the class is written.
    static std::set<int> passing_levels(std::uint32_t log_class) {
        std::set<int> levels;
        for (const int level : {kLowestInt, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, kHighestInt}) {
            kestrel::testing::clear_syslog_calls();
            __ZynTrace(log_class, level, "", "", 0, "x");
            if (!syslog_calls().empty()) levels.insert(level);
        }
        kestrel::testing::clear_syslog_calls();
        return levels;
    }
};

[[gnu::format(printf, 3, 4)]] void trace_v(std::uint32_t log_class, int level, const char* format,
                                           ...) {
    std::va_list arguments;
    va_start(arguments, format);
    __ZynTraceV(log_class, level, "", "", 0, format, arguments);
    va_end(arguments);
}

TEST_F(Filter, PassesErrorsByDefault) {
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(4, 5, 6));
    EXPECT_THAT(passing_levels(kLogKestrelExtension), ElementsAre(4, 5, 6));
    EXPECT_THAT(passing_levels(kLogAll), ElementsAre(4, 5, 6));
}

TEST_F(Filter, PassesTheWorkingLevelAndAbove) {
    ZynLogSetCurrentLevel(kLogWebkit, 1);
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(1, 2, 3, 4, 5, 6));
    ZynLogSetCurrentLevel(kLogWebkit, 2);
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(2, 3, 4, 5, 6));
    ZynLogSetCurrentLevel(kLogWebkit, 5);
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(5, 6));
}

TEST_F(Filter, PassesOnlyAlwaysOnLinesAtAolAndNone) {
    ZynLogSetCurrentLevel(kLogWebkit, 6);
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(6));
    ZynLogSetCurrentLevel(kLogWebkit, 7);
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(6));
}

TEST_F(Filter, InheritsFromTheParent) {
    ZynLogSetCurrentLevel(kestrel::kLogKestrel, 2);
    EXPECT_THAT(passing_levels(kLogKestrelExtension), ElementsAre(2, 3, 4, 5, 6));
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(4, 5, 6));
}

TEST_F(Filter, PassesOnlyAlwaysOnLinesIfTheRootInherits) {
    ZynLogSetCurrentLevel(kLogAll, 0);
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(6));
    EXPECT_THAT(passing_levels(kLogAll), ElementsAre(6));
}

TEST_F(Filter, PassesOnlyAlwaysOnLinesOfUnknownClasses) {
    for (const std::uint32_t log_class : {60U, 0x8000'0000U, kLogFailure}) {
        EXPECT_THAT(passing_levels(log_class), ElementsAre(6));
    }
}

TEST_F(Filter, RejectsNullTexts) {
    __ZynTrace(kLogWebkit, 5, nullptr, "", 0, "x");
    __ZynTrace(kLogWebkit, 5, "", nullptr, 0, "x");
    const char* volatile no_format = nullptr;
    __ZynTrace(kLogWebkit, 5, "", "", 0, no_format, 0);
    trace_v(kLogWebkit, 5, no_format, 0);
    __ZynLog(5, nullptr, "", 0, "x");
    __ZynLog(5, "", nullptr, 0, "x");
    __ZynLog(5, "", "", 0, no_format, 0);
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST_F(Filter, TreatsTheVariantWithVaListAlike) {
    trace_v(kLogWebkit, 3, "%d", 3);
    trace_v(kLogWebkit, 4, "%d", 4);
    trace_v(kLogWebkit, 0, "%d", 0);
    trace_v(kLogWebkit, 7, "%d", 7);
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(3, 4)"));
}

TEST_F(Filter, PassesAllClasslessLinesUpToFatal) {
    ZynLogSetCurrentLevel(kLogAll, 7);
    for (const int level : {kLowestInt, -1, 0, 1, 2, 3, 4, 5, 6, 7, kHighestInt}) {
        __ZynLog(level, "", "", 0, "%d", level);
    }
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(6, 1)", "vsyslog(5, 2)", "vsyslog(4, 3)",
                                            "vsyslog(3, 4)", "vsyslog(1, 5)"));
}

TEST_F(Filter, MapsLevelsToSyslogPriorities) {
    ZynLogSetCurrentLevel(kLogWebkit, 1);
    for (int level = 1; level <= 6; ++level) __ZynTrace(kLogWebkit, level, "", "", 0, "%d", level);
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(6, 1)", "vsyslog(5, 2)", "vsyslog(4, 3)",
                                            "vsyslog(3, 4)", "vsyslog(1, 5)", "vsyslog(6, 6)"));
}

TEST_F(Filter, OmitsTheThreadNameInSyslog) {
    ZynLogEnableFlags(kestrel::kLogThreadNameFlag);
    __ZynTrace(kLogWebkit, 4, "", "", 0, "x");
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(3, x)"));
}

TEST_F(Filter, BlocksEverythingAfterShutdown) {
    ZynLogShutdown();
    kestrel::testing::clear_syslog_calls();
    EXPECT_THAT(passing_levels(kLogWebkit), IsEmpty());
    __ZynLog(5, "", "", 0, "x");
    EXPECT_THAT(syslog_calls(), IsEmpty());
    ZynLogInit();
    EXPECT_THAT(passing_levels(kLogWebkit), ElementsAre(4, 5, 6));
}

TEST(UninitialisedFilter, BlocksEverything) {
    __ZynTrace(kLogWebkit, 6, "", "", 0, "x");
    trace_v(kLogWebkit, 6, "x");
    __ZynLog(5, "", "", 0, "x");
    EXPECT_THAT(syslog_calls(), IsEmpty());
}

TEST(FilterWithoutSettings, PassesOnlyAlwaysOnLines) {
    std::filesystem::create_directory(kestrel::testing::client_directory() + "/.zynlogconf");
    const kestrel::testing::FakeDaemon daemon;
    ZynLogInit();
    kestrel::testing::DaemonConnection connection = daemon.accept();
    connection.read_message();
    for (int level = 1; level <= 6; ++level) __ZynTrace(kLogWebkit, level, "", "", 0, "%d", level);
    EXPECT_EQ(kestrel::testing::u16_at(connection.read_message(), 4), 6U);
    EXPECT_TRUE(connection.is_quiet());
}

class FilterOfInvalidLevels : public testing::TestWithParam<std::uint32_t> {};

TEST_P(FilterOfInvalidLevels, PassesOnlyAlwaysOnLines) {
    std::string bytes(516, '\0');
    kestrel::testing::put_u32(bytes, 4, GetParam());
    kestrel::testing::put_u32(bytes, 512, 0x12345678);
    kestrel::testing::write_file(kestrel::testing::client_directory() + "/.zynlogconf", bytes);
    ZynLogInit();
    kestrel::testing::clear_syslog_calls();
    for (int level = 1; level <= 6; ++level) __ZynTrace(kLogWebkit, level, "", "", 0, "%d", level);
    EXPECT_THAT(syslog_calls(), ElementsAre("vsyslog(6, 6)"));
}

INSTANTIATE_TEST_SUITE_P(AboveSeven, FilterOfInvalidLevels,
                         testing::Values(8U, 0x7fff'ffffU, 0x8000'0000U, 0xffff'ffffU));

}  // namespace
