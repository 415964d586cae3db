#include "workbench/window/trace_window.h"

#include <gmock/gmock.h>

#include <fstream>
#include <system_error>

#include "tests/support/main_loop.h"
#include "tests/support/temporary_directory.h"
#include "tests/workbench/window/widgets.h"
#include "tests/workbench/wire/message_records.h"
#include "trace/frame_json.h"

namespace kestrel::testing {
namespace {

class TraceWindowTest : public ::testing::Test {
  protected:
    void write(const MessageRecord& record) const {
        std::ofstream(path, std::ios::app)
            << frame_json(record.time, record.direction, record.pid, *record.frame) << '\n';
    }

    TemporaryDirectory directory;
    const std::string path = directory.path() + "/trace.jsonl";
};

TEST_F(TraceWindowTest, ShowsMessagesPairsAndNotes) {
    write(from_page(18, {"key", "take"}));
    write(later(to_page(1, {"take"}), std::chrono::microseconds(4'200)));
    std::ofstream(path, std::ios::app) << "torn";
    TraceWindow trace(path, nullptr);
    GtkWidget* rows = part(trace.pane().widget(), "messages");
    ASSERT_TRUE(run_main_loop_until([&] { return row_count(rows) == 3; }));
    EXPECT_EQ(cells(rows, 0)[7], "\u21c4 #2, 4.2 ms");
    EXPECT_EQ(cells(rows, 2)[5], "line 3: not JSON");
    trace.pane().list().select(1);
    EXPECT_THAT(text_in(part(trace.pane().widget(), "details")),
                ::testing::HasSubstr("answered by #2, 4.2 ms later\n"));
}

TEST_F(TraceWindowTest, StopsReadingWhenClosed) {
    for (int i = 0; i < 100; ++i) write(from_page(5, {std::string(50'000, 'x')}));
    TraceWindow trace(path, nullptr);
    EXPECT_FALSE(trace.is_closed());
    gtk_window_close(GTK_WINDOW(trace.widget()));
    EXPECT_TRUE(run_main_loop_until([&] { return trace.is_closed(); }));
    run_main_loop_until_idle();
    EXPECT_FALSE(gtk_widget_get_visible(trace.widget()));
    EXPECT_EQ(row_count(part(trace.pane().widget(), "messages")), 0);
}

TEST_F(TraceWindowTest, ThrowsForAMissingFile) {
    EXPECT_THROW(TraceWindow(path, nullptr), std::system_error);
}

}  // namespace
}  // namespace kestrel::testing
