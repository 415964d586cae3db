#include <gtest/gtest.h>

#include <set>
#include <string>

#include "log/levels_and_classes.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"

namespace {

using kestrel::kLogFailure;
using kestrel::logging::LogClassRecord;
using kestrel::logging::LogLevelRecord;

class Tables : public testing::Test {
  protected:
    Tables() { EXPECT_EQ(ZynLogInitConfigOnly(), 1); }
};

static_assert(sizeof(LogLevelRecord) == 64);
static_assert(sizeof(LogClassRecord) == 68);
static_assert(offsetof(LogClassRecord, displayName) == 32);
static_assert(offsetof(LogClassRecord, parent) == 64);

TEST_F(Tables, HaveEightLevels) {
    const std::array<std::array<const char*, 2>, 8> levels{{
        {"INHERIT", "Inherited"},
        {"VERBOSE", "Verbose"},
        {"INFO", "Information"},
        {"WARNING", "Warnings"},
        {"ERROR", "Errors"},
        {"FATAL", "Fatal Errors"},
        {"AOL", "Always On Logging"},
        {"NONE", "Disabled"},
    }};
    for (std::uint32_t level = 0; level < levels.size(); ++level) {
        EXPECT_STREQ(ZynLogGetLevelName(level), levels[level][0]);
        EXPECT_STREQ(ZynLogGetLevelDisplayName(level), levels[level][1]);
    }
    EXPECT_EQ(ZynLogGetLevelName(8), nullptr);
    EXPECT_EQ(ZynLogGetLevelDisplayName(8), nullptr);
    EXPECT_EQ(ZynLogGetLevelName(kLogFailure), nullptr);
}

TEST_F(Tables, HaveTheKnownClassesAtTheirIndices) {
    struct Row {
        std::uint32_t index;
        const char* name;
        const char* display_name;
        std::uint32_t parent;
    };
    for (const Row& row :
         {Row{0, "ALL", "All", kLogFailure}, Row{28, "KS", "Kestrel", 0},
          Row{29, "KSEXT", "Kestrel Extensions", 28}, Row{41, "WEBKIT", "Webkit", 0}}) {
        EXPECT_STREQ(ZynLogGetClassName(row.index), row.name);
        EXPECT_STREQ(ZynLogGetClassDisplayName(row.index), row.display_name);
        EXPECT_EQ(ZynLogGetParent(row.index), row.parent);
    }
    EXPECT_EQ(kestrel::kLogAll, 0);
    EXPECT_EQ(kestrel::kLogKestrel, 28);
    EXPECT_EQ(kestrel::kLogKestrelExtension, 29);
    EXPECT_EQ(kestrel::kLogWebkit, 41);
}

TEST_F(Tables, MarkTheOtherClassesAsReserved) {
    EXPECT_STREQ(ZynLogGetClassName(1), "CLASS01");
    EXPECT_STREQ(ZynLogGetClassDisplayName(1), "Class 1");
    EXPECT_STREQ(ZynLogGetClassName(59), "CLASS59");
    EXPECT_STREQ(ZynLogGetClassDisplayName(59), "Class 59");
    for (std::uint32_t index = 1; index < 60; ++index) {
        if (index == 28 || index == 29 || index == 41) continue;
        const std::string digits = (index < 10 ? "0" : "") + std::to_string(index);
        EXPECT_EQ(ZynLogGetClassName(index), "CLASS" + digits);
        EXPECT_EQ(ZynLogGetClassDisplayName(index), "Class " + std::to_string(index));
        EXPECT_EQ(ZynLogGetParent(index), 0U);
    }
}

TEST_F(Tables, HaveUniqueClassNames) {
    std::set<std::string> names;
    for (std::uint32_t index = 0; index < 60; ++index) names.insert(ZynLogGetClassName(index));
    EXPECT_EQ(names.size(), 60U);
}

TEST_F(Tables, ConnectEveryClassToTheRoot) {
    for (std::uint32_t index = 0; index < 60; ++index) {
        std::uint32_t at = index;
        for (int steps = 0; steps < 60 && at != 0; ++steps) at = ZynLogGetParent(at);
        EXPECT_EQ(at, 0U) << "from class " << index;
    }
}

TEST_F(Tables, EndAtSixtyClasses) {
    for (const std::uint32_t index : {60U, 0x8000'0000U, kLogFailure}) {
        EXPECT_EQ(ZynLogGetClassName(index), nullptr);
        EXPECT_EQ(ZynLogGetClassDisplayName(index), nullptr);
        EXPECT_EQ(ZynLogGetParent(index), kLogFailure);
    }
}

}  // namespace
