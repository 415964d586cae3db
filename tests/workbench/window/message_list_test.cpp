#include "workbench/window/message_list.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

#include "tests/support/main_loop.h"
#include "tests/workbench/window/widgets.h"
#include "tests/workbench/wire/message_records.h"

namespace kestrel::testing {
namespace {

using std::chrono::microseconds;
using ::testing::ElementsAre;

constexpr int kPairColumn = 7;
constexpr double kLeastRowHeight = 12;

class MessageListTest : public ::testing::Test {
  protected:
    int count() const { return row_count(rows); }
    void wait_for_rows(int wanted) const {
        EXPECT_TRUE(run_main_loop_until([&] { return count() == wanted; })) << count();
        run_main_loop_until_idle();
    }
    GtkWidget* find(const std::string& name) const { return part(list.widget(), name); }
    std::vector<std::string> serials() const { return column(rows, 0); }

    GtkAdjustment* position() const { return gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(rows)); }
    // Whether the last row becomes visible once all rows are laid out.
    bool comes_to_end() const {
        return run_main_loop_until([&] {
            const double size = gtk_adjustment_get_page_size(position());
            const double upper = gtk_adjustment_get_upper(position());
            return upper >= kLeastRowHeight * count() &&
                   gtk_adjustment_get_value(position()) + size >= upper - 1;
        });
    }
    void add_notes(int number) {
        for (int i = 0; i < number; ++i) log.add(record_of("note"));
    }
    std::uint64_t selected_row() const {
        GtkTreeModel* model = nullptr;
        GtkTreeIter row;
        guint64 serial = 0;
        if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(GTK_TREE_VIEW(rows)),
                                            &model, &row) != FALSE) {
            gtk_tree_model_get(model, &row, 0, &serial, -1);
        }
        return serial;
    }

    MessageLog log;
    std::vector<std::uint64_t> selected;
    MessageList list{log,
                     [this](const LoggedMessage& message) { selected.push_back(message.serial); }};
    ShownWidget shown{list.widget()};
    GtkWidget* rows = part(list.widget(), "messages");
};

TEST_F(MessageListTest, ShowsTheColumnsOfEachMessage) {
    log.add(from_page(18, {"key", "take"}));
    log.add(later(to_page(1, {"(() => (take\n)(null))"}), microseconds(4'200)));
    MessageRecord note = record_of("a note");
    note.time = kRecordTime;
    log.add(note);
    wait_for_rows(3);
    const std::string time = cells(rows, 0)[1];
    EXPECT_THAT(cells(rows, 0), ElementsAre("1", time, "\u2190", "42", "18 getItem",
                                            "\"key\" \"take\"", "25", "\u21c4 #2, 4.2 ms"));
    EXPECT_THAT(cells(rows, 1),
                ElementsAre("2", cells(rows, 1)[1], "\u2192", "42", "1 answer",
                            "\"(() => (take\\n)(null))\"", "38", "\u21c4 #1, 4.2 ms"));
    EXPECT_THAT(cells(rows, 2), ElementsAre("3", time, "", "", "", "a note", "", ""));
}

TEST_F(MessageListTest, ShowsTheAnswerOfARequest) {
    log.add(from_page(18, {"key", "take"}));
    wait_for_rows(1);
    EXPECT_THAT(column(rows, kPairColumn), ElementsAre(""));
    log.add(later(to_page(1, {"take"}), microseconds(1'500)));
    wait_for_rows(2);
    EXPECT_THAT(column(rows, kPairColumn), ElementsAre("\u21c4 #2, 1.5 ms", "\u21c4 #1, 1.5 ms"));
}

TEST_F(MessageListTest, ShowsTheNewestOfABurst) {
    constexpr int kMessages = 100'000;
    int sent = 0;
    EventSource burst;
    burst = EventSource::when_idle([&] {
        for (int i = 0; i < 500; ++i) log.add(from_page(5, {"action"}));
        sent += 500;
        if (sent == kMessages) burst.remove();
    });
    const auto newest = [this] { return count() == 0 ? "" : cells(rows, count() - 1)[0]; };
    int most_rows = 0;
    int updates = 0;
    std::string last;
    ASSERT_TRUE(run_main_loop_until([&] {
        most_rows = std::max(most_rows, count());
        if (std::exchange(last, newest()) != newest()) ++updates;
        return newest() == "100000";
    }));
    EXPECT_EQ(sent, kMessages);
    EXPECT_EQ(most_rows, 20'000);
    EXPECT_EQ(cells(rows, 0)[0], "80001");
    EXPECT_EQ(text_in(find("count")), "20,000 shown");
    EXPECT_LT(updates,
              kMessages / 500);  // updates are batched, so that the window stays responsive
    EXPECT_TRUE(comes_to_end());
}

TEST_F(MessageListTest, DropsOldRowsAsNewOnesArrive) {
    for (int last = 10'000; last <= 50'000; last += 10'000) {
        for (int i = 0; i < 10'000; ++i) log.add(from_page(5, {"action"}));
        ASSERT_TRUE(run_main_loop_until(
            [&] { return count() > 0 && cells(rows, count() - 1)[0] == std::to_string(last); }));
        EXPECT_EQ(count(), std::min(last, 20'000));
        EXPECT_EQ(cells(rows, 0)[0], std::to_string(std::max(1, last - 19'999)));
        EXPECT_TRUE(comes_to_end());
    }
}

TEST_F(MessageListTest, ShowsMatchingMessagesOnly) {
    log.add(from_page(18, {"key", "take"}));
    log.add(from_page(19, {"key", "value", "take"}));
    log.add(from_page(6, {}));
    wait_for_rows(3);
    type_into(find("filter"), "KEY");
    wait_for_rows(2);
    EXPECT_THAT(serials(), ElementsAre("1", "2"));
    log.add(from_page(6, {}));
    log.add(from_page(18, {"key", "take"}));
    wait_for_rows(3);
    EXPECT_THAT(serials(), ElementsAre("1", "2", "5"));
    type_into(find("filter"), "");
    wait_for_rows(5);
    EXPECT_THAT(serials(), ElementsAre("1", "2", "3", "4", "5"));
}

TEST_F(MessageListTest, IsFrozenWhilePausedAndCountsWaitingMessages) {
    add_notes(2);
    wait_for_rows(2);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(find("pause")), TRUE);
    add_notes(1'500);
    EXPECT_TRUE(run_main_loop_until([&] { return text_in(find("count")) == "1,500 waiting"; }));
    EXPECT_EQ(count(), 2);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(find("pause")), FALSE);
    wait_for_rows(1'502);
    EXPECT_EQ(text_in(find("count")), "1,502 shown");
}

TEST_F(MessageListTest, IsEmptyAfterClear) {
    add_notes(3);
    wait_for_rows(3);
    gtk_button_clicked(GTK_BUTTON(find("clear")));
    EXPECT_EQ(count(), 0);
    add_notes(1);
    wait_for_rows(1);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(find("pause")), TRUE);
    gtk_button_clicked(GTK_BUTTON(find("clear")));
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(text_in(find("count")), "0 waiting");
}

TEST_F(MessageListTest, FollowsTheNewestUntilItIsScrolledUp) {
    add_notes(500);
    wait_for_rows(500);
    EXPECT_TRUE(comes_to_end());
    add_notes(500);
    wait_for_rows(1'000);
    EXPECT_TRUE(comes_to_end());

    const double end = gtk_adjustment_get_upper(position());
    gtk_adjustment_set_value(position(), 1'000);
    add_notes(500);
    wait_for_rows(1'500);
    run_main_loop_until([&] { return gtk_adjustment_get_upper(position()) > end; });
    run_main_loop_until_idle();
    EXPECT_EQ(gtk_adjustment_get_value(position()), 1'000);

    gtk_adjustment_set_value(position(), gtk_adjustment_get_upper(position()));
    add_notes(500);
    wait_for_rows(2'000);
    EXPECT_TRUE(comes_to_end());
}

TEST_F(MessageListTest, ReportsTheSelectionAndHighlightsItsPartner) {
    log.add(from_page(18, {"key", "take"}));
    add_notes(1);
    log.add(to_page(1, {"take"}));
    wait_for_rows(3);
    list.select(1);
    EXPECT_THAT(selected, ElementsAre(1));
    const auto is_marked = [&](int row) {
        GtkTreeViewColumn* drawn = gtk_tree_view_get_column(GTK_TREE_VIEW(rows), 0);
        cells(rows, row);
        GList* renderers = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(drawn));
        gboolean is_set = FALSE;
        g_object_get(renderers->data, "cell-background-set", &is_set, nullptr);
        g_list_free(renderers);
        return is_set != FALSE;
    };
    EXPECT_FALSE(is_marked(0));
    EXPECT_FALSE(is_marked(1));
    EXPECT_TRUE(is_marked(2));

    GtkTreePath* path = gtk_tree_path_new_from_indices(0, -1);
    gtk_tree_view_row_activated(GTK_TREE_VIEW(rows), path, nullptr);
    gtk_tree_path_free(path);
    EXPECT_THAT(selected, ElementsAre(1, 3));
    EXPECT_EQ(selected_row(), 3U);
}

TEST_F(MessageListTest, ReportsTheSelectedMessageAgainWhenItsPartnerArrives) {
    log.add(from_page(18, {"key", "take"}));
    wait_for_rows(1);
    list.select(1);
    log.add(to_page(1, {"take"}));
    wait_for_rows(2);
    EXPECT_THAT(selected, ElementsAre(1, 1));
}

TEST_F(MessageListTest, KeepsTheSelectionWhenRowsAreDropped) {
    add_notes(10);
    wait_for_rows(10);
    list.select(5);
    type_into(find("filter"), "not");
    add_notes(1);
    wait_for_rows(11);
    type_into(find("filter"), "note");
    run_main_loop_until([&] { return selected_row() == 5; });
    EXPECT_EQ(selected_row(), 5U);
    add_notes(19'989);
    wait_for_rows(20'000);
    add_notes(10);
    EXPECT_TRUE(run_main_loop_until([&] { return cells(rows, 0)[0] == "11"; }));
    EXPECT_EQ(selected_row(), 0U);
    EXPECT_THAT(selected, ElementsAre(5));
}

}  // namespace
}  // namespace kestrel::testing
