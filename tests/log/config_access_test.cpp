#include <gtest/gtest.h>

#include <string>

#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "tests/log/machine.h"

namespace {

using kestrel::kLogFailure;

class Settings : public testing::Test {
  protected:
    Settings() { EXPECT_EQ(ZynLogInitConfigOnly(), 1); }
};

void expect_that_every_call_fails() {
    std::uint32_t flags = 77;
    EXPECT_EQ(ZynLogEnableFlags(1), 0);
    EXPECT_EQ(ZynLogDisableFlags(1), 0);
    EXPECT_EQ(ZynLogGetCurrentFlags(&flags), 0);
    EXPECT_EQ(ZynLogGetDefaultFlags(&flags), 0);
    EXPECT_EQ(flags, 77U);
    EXPECT_EQ(ZynLogSetCurrentLevel(0, 1), 0);
    EXPECT_EQ(ZynLogGetCurrentLevel(0), kLogFailure);
    EXPECT_EQ(ZynLogGetDefaultLevel(0), kLogFailure);
    EXPECT_EQ(ZynLogGetWorkingLevel(0), kLogFailure);
    EXPECT_EQ(ZynLogGetParent(29), kLogFailure);
    EXPECT_EQ(ZynLogGetClassName(0), nullptr);
    EXPECT_EQ(ZynLogGetClassDisplayName(0), nullptr);
    EXPECT_EQ(ZynLogGetLevelName(0), nullptr);
    EXPECT_EQ(ZynLogGetLevelDisplayName(0), nullptr);
    EXPECT_EQ(ZynLogSetOutputPath("x"), 0);
    EXPECT_EQ(ZynLogGetOutputPath(), nullptr);
    EXPECT_EQ(ZynLogSetRolloverSize(1), 0);
    EXPECT_EQ(ZynLogSetRolloverCount(1), 0);
    EXPECT_EQ(ZynLogSetSessionMax(1), 0);
    EXPECT_EQ(ZynLogGetRolloverSize(), kLogFailure);
    EXPECT_EQ(ZynLogGetRolloverCount(), kLogFailure);
    EXPECT_EQ(ZynLogGetSessionMax(), kLogFailure);
}

TEST(UnmappedSettings, FailBeforeAnyInit) { expect_that_every_call_fails(); }

TEST(UnmappedSettings, FailAfterShutdown) {
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    ZynLogShutdown();
    expect_that_every_call_fails();
}

TEST(UnmappedSettings, FailIfTheFileCannotBeOpened) {
    kestrel::testing::write_file(kestrel::testing::home() + "/file", "");
    setenv("HOME", (kestrel::testing::home() + "/file").c_str(), 1);
    EXPECT_EQ(ZynLogInitConfigOnly(), 0);
    expect_that_every_call_fails();
}

TEST(UnmappedSettings, WorkAgainAfterAnotherInit) {
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(ZynLogSetSessionMax(11), 1);
    ZynLogShutdown();
    EXPECT_EQ(ZynLogInitConfigOnly(), 1);
    EXPECT_EQ(ZynLogGetSessionMax(), 11U);
}

TEST_F(Settings, StartWithDefaults) {
    std::uint32_t flags = 0;
    EXPECT_EQ(ZynLogGetCurrentFlags(&flags), 1);
    EXPECT_EQ(flags, 0x62fU);
    for (std::uint32_t log_class = 0; log_class < 60; ++log_class) {
        EXPECT_EQ(ZynLogGetCurrentLevel(log_class), log_class == 0 ? 4U : 0U);
        EXPECT_EQ(ZynLogGetDefaultLevel(log_class), log_class == 0 ? 4U : 0U);
        EXPECT_EQ(ZynLogGetWorkingLevel(log_class), 4U);
    }
    EXPECT_EQ(ZynLogGetOutputPath(), kestrel::testing::home() + "//.QUOClient/logs/QUOClient.log");
    EXPECT_EQ(ZynLogGetRolloverSize(), 200U);
    EXPECT_EQ(ZynLogGetRolloverCount(), 2U);
    EXPECT_EQ(ZynLogGetSessionMax(), 200U);
}

TEST_F(Settings, SetAndClearFlagsBitByBit) {
    EXPECT_EQ(ZynLogEnableFlags(0x1010), 1);
    std::uint32_t flags = 0;
    EXPECT_EQ(ZynLogGetCurrentFlags(&flags), 1);
    EXPECT_EQ(flags, 0x163fU);
    EXPECT_EQ(ZynLogDisableFlags(0x8100f), 1);
    EXPECT_EQ(ZynLogGetCurrentFlags(&flags), 1);
    EXPECT_EQ(flags, 0x630U);
    EXPECT_EQ(ZynLogGetDefaultFlags(&flags), 1);
    EXPECT_EQ(flags, 0x62fU);
}

TEST_F(Settings, RejectNullPointersForFlags) {
    EXPECT_EQ(ZynLogGetCurrentFlags(nullptr), 0);
    EXPECT_EQ(ZynLogGetDefaultFlags(nullptr), 0);
}

TEST_F(Settings, RejectUnknownClassesAndLevels) {
    EXPECT_EQ(ZynLogSetCurrentLevel(60, 2), 0);
    EXPECT_EQ(ZynLogSetCurrentLevel(kLogFailure, 2), 0);
    EXPECT_EQ(ZynLogSetCurrentLevel(0, 8), 0);
    EXPECT_EQ(ZynLogSetCurrentLevel(0, kLogFailure), 0);
    EXPECT_EQ(ZynLogGetCurrentLevel(0), 4U);
    EXPECT_EQ(ZynLogSetCurrentLevel(59, 7), 1);
    EXPECT_EQ(ZynLogGetCurrentLevel(59), 7U);
    EXPECT_EQ(ZynLogGetCurrentLevel(60), kLogFailure);
    EXPECT_EQ(ZynLogGetDefaultLevel(60), kLogFailure);
    EXPECT_EQ(ZynLogGetWorkingLevel(60), kLogFailure);
}

TEST_F(Settings, DistinguishDefaultAndCurrentLevel) {
    EXPECT_EQ(ZynLogSetCurrentLevel(0, 1), 1);
    EXPECT_EQ(ZynLogGetDefaultLevel(0), 4U);
}

TEST_F(Settings, InheritTheWorkingLevelFromTheNearestAncestor) {
    EXPECT_EQ(ZynLogGetWorkingLevel(29), 4U);
    EXPECT_EQ(ZynLogSetCurrentLevel(28, 1), 1);
    EXPECT_EQ(ZynLogGetWorkingLevel(29), 1U);
    EXPECT_EQ(ZynLogGetWorkingLevel(28), 1U);
    EXPECT_EQ(ZynLogGetWorkingLevel(41), 4U);
    EXPECT_EQ(ZynLogSetCurrentLevel(29, 5), 1);
    EXPECT_EQ(ZynLogGetWorkingLevel(29), 5U);
}

TEST_F(Settings, HaveNoWorkingLevelIfTheRootInherits) {
    EXPECT_EQ(ZynLogSetCurrentLevel(0, 0), 1);
    EXPECT_EQ(ZynLogSetCurrentLevel(28, 2), 1);
    EXPECT_EQ(ZynLogGetWorkingLevel(0), kLogFailure);
    EXPECT_EQ(ZynLogGetWorkingLevel(41), kLogFailure);
    EXPECT_EQ(ZynLogGetWorkingLevel(29), 2U);
}

TEST_F(Settings, LimitTheRolloverSize) {
    for (const int size : {0, -1, 2001, -2147483647 - 1, 2147483647}) {
        EXPECT_EQ(ZynLogSetRolloverSize(size), 0);
        EXPECT_EQ(ZynLogGetRolloverSize(), 200U);
    }
    EXPECT_EQ(ZynLogSetRolloverSize(1), 1);
    EXPECT_EQ(ZynLogGetRolloverSize(), 1U);
    EXPECT_EQ(ZynLogSetRolloverSize(2000), 1);
    EXPECT_EQ(ZynLogGetRolloverSize(), 2000U);
}

TEST_F(Settings, LimitTheRolloverCount) {
    EXPECT_EQ(ZynLogSetRolloverCount(101), 0);
    EXPECT_EQ(ZynLogSetRolloverCount(kLogFailure), 0);
    EXPECT_EQ(ZynLogGetRolloverCount(), 2U);
    EXPECT_EQ(ZynLogSetRolloverCount(100), 1);
    EXPECT_EQ(ZynLogGetRolloverCount(), 100U);
    EXPECT_EQ(ZynLogSetRolloverCount(0), 1);
    EXPECT_EQ(ZynLogGetRolloverCount(), 0U);
}

TEST_F(Settings, LimitTheSessionMaximum) {
    EXPECT_EQ(ZynLogSetSessionMax(2001), 0);
    EXPECT_EQ(ZynLogSetSessionMax(kLogFailure), 0);
    EXPECT_EQ(ZynLogGetSessionMax(), 200U);
    EXPECT_EQ(ZynLogSetSessionMax(2000), 1);
    EXPECT_EQ(ZynLogGetSessionMax(), 2000U);
    EXPECT_EQ(ZynLogSetSessionMax(0), 1);
    EXPECT_EQ(ZynLogGetSessionMax(), 0U);
}

TEST_F(Settings, RejectANullOutputPath) {
    EXPECT_EQ(ZynLogSetOutputPath(nullptr), 0);
    EXPECT_EQ(ZynLogSetOutputPath(""), 1);
    EXPECT_STREQ(ZynLogGetOutputPath(), "");
}

}  // namespace
