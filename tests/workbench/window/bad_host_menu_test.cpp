#include "workbench/window/bad_host_menu.h"

#include <gmock/gmock.h>

#include "tests/workbench/window/widgets.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

class BadHostMenuTest : public ::testing::Test {
  protected:
    void choose(const std::string& name) const {
        gtk_button_clicked(GTK_BUTTON(part(menu.widget(), name)));
    }
    std::string label() const { return text_in(gtk_bin_get_child(GTK_BIN(menu.widget()))); }

    std::vector<Misbehavior> chosen;
    std::vector<Misbehavior> at_once;
    BadHostMenu menu{{.chosen = [this](Misbehavior kind) { chosen.push_back(kind); },
                      .at_once = [this](Misbehavior kind) { at_once.push_back(kind); }}};
    ShownWidget shown{menu.widget()};
};

TEST_F(BadHostMenuTest, HasAChoiceForEachMisbehaviorAndShowsIt) {
    EXPECT_EQ(label(), "Bad host");
    for (const MisbehaviorRow& row : kMisbehaviors) {
        if (row.kind == Misbehavior::none) continue;
        choose(std::string(row.name));
        EXPECT_EQ(label(), "Bad host: " + std::string(row.name));
        ASSERT_FALSE(chosen.empty());
        EXPECT_EQ(chosen.back(), row.kind);
    }
    EXPECT_EQ(chosen.size(), kMisbehaviors.size() - 1);
    choose("Behaves");
    EXPECT_EQ(chosen.back(), Misbehavior::none);
    EXPECT_EQ(label(), "Bad host");
}

TEST_F(BadHostMenuTest, TriggersSomeImmediatelyWithoutChoosingThem) {
    for (const char* name :
         {"Wrong type now", "Truncated message now", "Oversize now", "Hangs up now"}) {
        choose(name);
    }
    EXPECT_THAT(at_once, ElementsAre(Misbehavior::wrong_type, Misbehavior::truncated,
                                     Misbehavior::oversize, Misbehavior::hang_up));
    EXPECT_TRUE(chosen.empty());
}

}  // namespace
}  // namespace kestrel::testing
