#include "workbench/window/message_details.h"

#include <gmock/gmock.h>

#include "tests/workbench/window/widgets.h"
#include "tests/workbench/wire/message_records.h"
#include "workbench/wire/details_text.h"

namespace kestrel::testing {
namespace {

using ::testing::HasSubstr;

TEST(MessageDetails, ShowsItemsAndBytesAsSelectableText) {
    MessageLog log;
    log.add(from_page(18, {"k\xff", "take"}));
    MessageDetails details;
    const ShownWidget shown(details.widget());
    GtkWidget* text = part(details.widget(), "details");
    EXPECT_EQ(text_in(text), "Select a message to see its items and its bytes.");
    details.show(log.rows()[0]);
    EXPECT_EQ(text_in(text), details_text(log.rows()[0]));
    EXPECT_THAT(
        text_in(text),
        HasSubstr("00000000  12 00 00 00 00 00 00 00  02 00 00 00 08 00 00 00  |................|\n"
                  "00000010  6b ff 00 74 61 6b 65 00                           |k..take.|\n"));
    EXPECT_FALSE(gtk_text_view_get_editable(GTK_TEXT_VIEW(text)));
    EXPECT_TRUE(gtk_text_view_get_monospace(GTK_TEXT_VIEW(text)));
}

TEST(MessageDetails, ShowsANoteOfAnyBytes) {
    MessageLog log;
    log.add(record_of(std::string_view("a\0b\xff", 4)));
    MessageDetails details;
    details.show(log.rows()[0]);
    EXPECT_THAT(text_in(part(details.widget(), "details")), HasSubstr("\na\ufffdb\ufffd\n"));
}

}  // namespace
}  // namespace kestrel::testing
