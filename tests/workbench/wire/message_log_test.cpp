#include "workbench/wire/message_log.h"

#include <gmock/gmock.h>

#include "tests/support/main_loop.h"
#include "tests/workbench/wire/message_records.h"

namespace kestrel::testing {
namespace {

using std::chrono::microseconds;

TEST(MessageLog, NumbersRowsFromOne) {
    MessageLog log;
    EXPECT_EQ(log.next_serial(), 1U);
    EXPECT_EQ(log.add(record_of("a")), 1U);
    EXPECT_EQ(log.add(record_of("b")), 2U);
    ASSERT_EQ(log.rows().size(), 2U);
    EXPECT_EQ(log.rows()[1].serial, 2U);
    EXPECT_EQ(log.rows()[1].record->note, "b");
}

TEST(MessageLog, DropsTheOldestRowsFirst) {
    MessageLog log({.rows = 3, .bytes = 1'000});
    for (int i = 0; i < 5; ++i) log.add(record_of("note"));
    ASSERT_EQ(log.rows().size(), 3U);
    EXPECT_EQ(log.rows().front().serial, 3U);
    EXPECT_EQ(find_message(log.rows(), 2), nullptr);
    EXPECT_EQ(find_message(log.rows(), 3)->serial, 3U);
    EXPECT_EQ(find_message(log.rows(), 5)->serial, 5U);
    EXPECT_EQ(find_message(log.rows(), 6), nullptr);
}

TEST(MessageLog, LimitsItsBytes) {
    MessageLog log({.rows = 100, .bytes = 100});
    const MessageRecord forty_bytes = from_page(5, {std::string(23, 'x')});
    ASSERT_EQ(forty_bytes.size, 40U);
    for (int i = 0; i < 3; ++i) log.add(forty_bytes);
    EXPECT_EQ(log.rows().size(), 2U);
    log.add(from_page(5, {std::string(1'000, 'x')}));  // the newest is always kept
    EXPECT_EQ(log.rows().size(), 1U);
    log.add(forty_bytes);
    EXPECT_EQ(log.rows().size(), 1U);
    EXPECT_EQ(log.rows().front().serial, 5U);
}

// The size in a trace file may be wrong.
TEST(MessageLog, CountsItsBytes) {
    MessageLog log({.rows = 100, .bytes = 100});
    MessageRecord record = from_page(5, {std::string(90, 'x')});
    record.size = 0;
    for (int i = 0; i < 3; ++i) log.add(record);
    EXPECT_EQ(log.rows().size(), 1U);
}

TEST(MessageLog, PairsARequestWithItsAnswer) {
    MessageLog log;
    log.add(from_page(18, {"key", "take"}));
    log.add(record_of("between"));
    log.add(later(to_page(1, {"take"}), microseconds(4'200)));
    ASSERT_TRUE(log.rows()[0].partner && log.rows()[2].partner);
    EXPECT_EQ(log.rows()[0].partner->serial, 3U);
    EXPECT_EQ(log.rows()[2].partner->serial, 1U);
    EXPECT_EQ(log.rows()[0].partner->between, microseconds(4'200));
    EXPECT_EQ(log.rows()[2].partner->between, microseconds(4'200));
    EXPECT_FALSE(log.rows()[1].partner);
}

TEST(MessageLog, PairsNothingWithADroppedRow) {
    MessageLog log({.rows = 2, .bytes = 1'000});
    log.add(from_page(18, {"key", "take"}));
    log.add(record_of("a"));
    log.add(record_of("b"));
    log.add(to_page(1, {"take"}));
    EXPECT_FALSE(log.rows().back().partner);
    MessageRecord absurd = to_page(1, {"take"});
    absurd.answer_to = 99;
    log.add(absurd);
    EXPECT_FALSE(log.rows().back().partner);
}

TEST(MessageLog, ContinuesNumberingAfterClear) {
    MessageLog log;
    log.add(from_page(18, {"key", "take"}));
    log.clear();
    EXPECT_TRUE(log.rows().empty());
    EXPECT_EQ(log.add(to_page(1, {"take"})), 2U);
    EXPECT_FALSE(log.rows()[0].partner);
}

TEST(MessageLog, NotifiesOnceForManyChanges) {
    MessageLog log;
    int calls = 0;
    log.set_listener([&] { ++calls; });
    for (int i = 0; i < 1'000; ++i) log.add(record_of("note"));
    EXPECT_EQ(calls, 0);
    run_main_loop_until([&] { return calls > 0; });
    EXPECT_EQ(calls, 1);
    log.clear();
    run_main_loop_until([&] { return calls > 1; });
    EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace kestrel::testing
