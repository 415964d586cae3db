#include "workbench/wire/details_text.h"

#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <ctime>

#include "ipc/frame_builder.h"
#include "tests/workbench/wire/message_records.h"
#include "workbench/wire/row_text.h"

namespace kestrel::testing {
namespace {

using std::chrono::microseconds;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class DetailsTextTest : public ::testing::Test {
  protected:
    DetailsTextTest() {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    ~DetailsTextTest() override {
        unsetenv("TZ");
        tzset();
    }

    std::string details(std::size_t index = 0) const { return details_text(log.rows()[index]); }

    MessageLog log;
};

TEST_F(DetailsTextTest, ShowsHeaderItemsAndBytes) {
    MessageRecord record =
        record_of(Direction::from_page, 42,
                  *build_frame(21, std::array{255, -3}, std::array<std::string_view, 1>{"a\"\n"}));
    record.time = kRecordTime;
    log.add(record);
    EXPECT_EQ(details(),
              "#1  13:03:59.000  from process 42  21 recolorImage\n"
              "\n"
              "msg_type             21\n"
              "num_of_ints          2\n"
              "num_of_strings       1\n"
              "total_len_of_string  11\n"
              "\n"
              "int [0] 255\n"
              "int [1] -3\n"
              "string [0] \"a\\\"\\n\"\n"
              "\n"
              "00000000  15 00 00 00 02 00 00 00  01 00 00 00 0b 00 00 00  |................|\n"
              "00000010  32 35 35 00 2d 33 00 61  22 0a 00                 |255.-3.a\"..|\n");
}

TEST_F(DetailsTextTest, ShowsTheRequestOfAnAnswer) {
    log.add(from_page(18, {"key", "take"}));
    log.add(later(to_page(1, {"take"}), microseconds(1'250'400)));
    EXPECT_THAT(details(0), HasSubstr("18 getItem\nanswered by #2, 1.250 s later\n"));
    EXPECT_THAT(details(1), HasSubstr("to process 42  1 answer\nanswers #1, 1.250 s after it\n"));
}

TEST_F(DetailsTextTest, ShowsANote) {
    MessageRecord note = record_of("connection of 7: closed");
    note.time = kRecordTime;
    log.add(note);
    EXPECT_EQ(details(), "#1  13:03:59.000\n\nconnection of 7: closed\n");
}

TEST_F(DetailsTextTest, ReportsInvalidItemsAndUnknownBytes) {
    log.add(record_of(Direction::from_page, 0, webkit_message{18, 1, 0, 0}));
    EXPECT_THAT(details(0), HasSubstr("from process ?  18 getItem"));
    EXPECT_THAT(details(0), HasSubstr("\nThe items do not fit the header.\n"));
    MessageRecord inexact = from_page(18, {"key"});
    inexact.is_exact = false;
    log.add(inexact);
    EXPECT_THAT(details(1), EndsWith("string [0] \"key\"\n\n"
                                     "The trace does not contain the bytes of this message.\n"));
    log.add(from_page(7, {}));
    EXPECT_THAT(details(2), HasSubstr("\n\nNo items.\n\n"));
}

TEST_F(DetailsTextTest, TruncatesLongItemsAndLists) {
    log.add(from_page(5, {std::string(100'000, 'x')}));
    EXPECT_THAT(details(0), HasSubstr("x\"... 91808 more bytes\n"));
    EXPECT_THAT(details(0), EndsWith("|\n34481 more bytes\n"));
    const std::vector<std::string_view> many(1'000);
    log.add(record_of(Direction::to_page, 42, *build_frame(1, {}, many)));
    EXPECT_THAT(details(1), HasSubstr("string [255] \"\"\n744 more items\n"));
}

TEST_F(DetailsTextTest, FormatsCellTexts) {
    EXPECT_EQ(time_text(kRecordTime), "13:03:59.000");
    EXPECT_EQ(type_text(from_page(19, {})), "19 setItem");
    EXPECT_EQ(type_text(to_page(19, {})), "19 (unknown)");
    EXPECT_EQ(type_text(record_of("note")), "");
    EXPECT_EQ(duration_text(microseconds(87)), "87 \u00b5s");
    EXPECT_EQ(duration_text(microseconds(4'249)), "4.2 ms");
    EXPECT_EQ(duration_text(microseconds(999'900)), "999.9 ms");
    EXPECT_EQ(duration_text(microseconds(61'250'000)), "61.250 s");
    EXPECT_EQ(duration_text(microseconds(-1'500)), "-1.5 ms");
    log.add(from_page(18, {"key", "take"}));
    EXPECT_EQ(partner_text(log.rows()[0]), "");
    log.add(later(to_page(1, {"take"}), microseconds(4'200)));
    EXPECT_EQ(partner_text(log.rows()[0]), "\u21c4 #2, 4.2 ms");
    EXPECT_EQ(partner_text(log.rows()[1]), "\u21c4 #1, 4.2 ms");
}

}  // namespace
}  // namespace kestrel::testing
