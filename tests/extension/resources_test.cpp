#include "extension/resources.h"

#include <gtest/gtest.h>

#include "extension/page_globals.h"

namespace kestrel::testing {
namespace {

class Resources : public ::testing::Test {
  protected:
    ~Resources() override { take_resources(); }
};

TEST_F(Resources, AreShownByTheExportedGlobal) {
    set_resources("{a: 1}");
    EXPECT_STREQ(g_resources, "{a: 1}");
    set_resources("{a: 2}");
    EXPECT_STREQ(g_resources, "{a: 2}");
}

TEST_F(Resources, AreCopied) {
    std::string text = "{a: 1}";
    set_resources(text);
    text = "other";
    EXPECT_STREQ(g_resources, "{a: 1}");
}

TEST_F(Resources, AreConsumedWhenTaken) {
    set_resources("{a: 1}");
    EXPECT_EQ(take_resources(), "{a: 1}");
    EXPECT_STREQ(g_resources, "");
    EXPECT_EQ(take_resources(), "");
}

TEST_F(Resources, MayBeSetByAnotherProgram) {
    set_resources("ours");
    g_resources = "theirs";
    EXPECT_EQ(take_resources(), "theirs");
    EXPECT_STREQ(g_resources, "");

    g_resources = "theirs";
    set_resources("ours");
    EXPECT_STREQ(g_resources, "ours");
}

TEST_F(Resources, TreatNullAsEmpty) {
    g_resources = nullptr;
    EXPECT_EQ(take_resources(), "");
    EXPECT_STREQ(g_resources, "");
}

}  // namespace
}  // namespace kestrel::testing
