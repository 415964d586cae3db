#include "workbench/wire/message_view.h"

#include <gmock/gmock.h>

#include "tests/workbench/wire/message_records.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::FieldsAre;
using ::testing::IsEmpty;

class MessageViewTest : public ::testing::Test {
  protected:
    void add(std::initializer_list<const char*> notes) {
        for (const char* note : notes) log.add(record_of(note));
    }

    MessageLog log{{.rows = 4, .bytes = 1'000}};
    MessageView view{log};
};

TEST_F(MessageViewTest, StartsWithTheLogsRows) {
    add({"a", "b"});
    EXPECT_THAT(view.update(), FieldsAre(true, 0, 0));
    EXPECT_THAT(view.serials(), ElementsAre(1, 2));
}

TEST_F(MessageViewTest, FollowsTheLog) {
    view.update();
    add({"a", "b", "c"});
    EXPECT_THAT(view.update(), FieldsAre(false, 0, 3));
    add({"d", "e", "f"});
    EXPECT_THAT(view.update(), FieldsAre(false, 2, 3));
    EXPECT_THAT(view.serials(), ElementsAre(3, 4, 5, 6));
    EXPECT_THAT(view.update(), FieldsAre(false, 0, 0));
    EXPECT_EQ(view.waiting(), 0U);
}

TEST_F(MessageViewTest, OmitsRowsAddedAndDroppedBetweenUpdates) {
    view.update();
    add({"a"});
    view.update();
    add({"b", "c", "d", "e", "f", "g", "h"});
    EXPECT_THAT(view.update(), FieldsAre(false, 1, 4));
    EXPECT_THAT(view.serials(), ElementsAre(5, 6, 7, 8));
}

TEST_F(MessageViewTest, ShowsMatchingMessagesOnly) {
    add({"a", "b", "ab"});
    view.update();
    view.set_filter("b");
    EXPECT_THAT(view.update(), FieldsAre(true, 0, 0));
    EXPECT_THAT(view.serials(), ElementsAre(2, 3));
    add({"c", "b"});
    EXPECT_THAT(view.update(), FieldsAre(false, 0, 1));
    EXPECT_THAT(view.serials(), ElementsAre(2, 3, 5));
    add({"c", "c"});
    EXPECT_THAT(view.update(), FieldsAre(false, 2, 0));
    view.set_filter("");
    view.update();
    EXPECT_THAT(view.serials(), ElementsAre(4, 5, 6, 7));
}

TEST_F(MessageViewTest, IsFrozenWhilePaused) {
    add({"a", "b"});
    view.set_paused(true);
    view.update();
    add({"b", "c", "b", "d", "e"});
    EXPECT_THAT(view.update(), FieldsAre(false, 0, 0));
    EXPECT_THAT(view.serials(), ElementsAre(1, 2));
    EXPECT_EQ(view.waiting(), 5U);
    EXPECT_EQ(view.find(1)->record->note, "a");
    EXPECT_EQ(view.find(3), nullptr);

    view.set_filter("b");
    view.update();
    EXPECT_THAT(view.serials(), ElementsAre(2));
    EXPECT_EQ(view.waiting(), 5U);

    view.set_filter("");
    view.set_paused(false);
    EXPECT_THAT(view.update(), FieldsAre(true, 0, 0));
    EXPECT_THAT(view.serials(), ElementsAre(4, 5, 6, 7));
    EXPECT_EQ(view.waiting(), 0U);
}

TEST_F(MessageViewTest, IsEmptyAfterTheLogIsCleared) {
    add({"a", "b"});
    view.update();
    log.clear();
    EXPECT_THAT(view.update(), FieldsAre(false, 2, 0));
    add({"c"});
    EXPECT_THAT(view.update(), FieldsAre(false, 0, 1));
    EXPECT_THAT(view.serials(), ElementsAre(3));
}

}  // namespace
}  // namespace kestrel::testing
