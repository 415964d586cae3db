// Large values both ways while alarms interrupt the web process.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/frame_bytes.h"
#include "tests/webkit/store_fixture.h"
#include "tests/webkit/web_process.h"

namespace kestrel::testing {
namespace {

// Before main, and so before there are threads. A path in LD_PRELOAD may have no blanks.
[[gnu::constructor]] void preload() {
    setenv("LD_LIBRARY_PATH", ALARM_STORM_DIRECTORY, 1);
    setenv("LD_PRELOAD", ALARM_STORM, 1);
}

// Alarms so far.
std::uint64_t alarms() {
    std::uint64_t count = 0;
    std::ifstream(std::string(g_get_home_dir()) + "/alarms", std::ios::binary)
        .read(reinterpret_cast<char*>(&count), sizeof count);
    return count;
}

bool more_alarms_come(std::uint64_t more) {
    return run_main_loop_until([enough = alarms() + more] { return alarms() >= enough; });
}

// Four megabytes without repetition.
std::string large_text(int round) {
    static const std::string numbers = [] {
        std::string text;
        for (int number = 0; number < 600'000; ++number) text += ' ' + std::to_string(number);
        return text;
    }();
    return std::to_string(round) + numbers;
}

constexpr const char* kLargeText =
    "window.text = round => round + ' ' + Array.from({length: 600000}, (_, i) => i).join(' ')";

class AlarmStorm : public ConnectedStoreTest {
  protected:
    void SetUp() override {
        ConnectedStoreTest::SetUp();
        ASSERT_TRUE(more_alarms_come(1));
        store.evaluate(kLargeText);
    }

    // Script that sets an item to `times` copies of a text.
    static std::string set_item(int round, int times) {
        return "setTimeout(() => external.setItem('key', text(" + std::to_string(round) +
               ").repeat(" + std::to_string(times) + "), 'done'), 0)";
    }

    bool item_arrives(int round, int times) {
        if (!host.wait_for(19)) return false;
        std::string value;
        for (int i = 0; i < times; ++i) value += large_text(round);
        return host.frames(19)[0].payload == "key" + ('\0' + value) + '\0' + "done" + '\0';
    }

    static std::string answer(int round) {
        return "(() => { window.got = '" + large_text(round) + "' })";
    }

    bool answer_arrives(int round) {
        return host.wait_for(33) &&
               store.evaluate("got === text(" + std::to_string(round) + ")") == "true";
    }
};

// Each is larger than the socket buffer: the page blocks in the middle of it.
TEST_F(AlarmStorm, DeliversLargeCalls) {
    for (int round = 0; round < 5; ++round) {
        host.forget_frames();
        host.pause();
        store.evaluate(set_item(round, 4));
        ASSERT_TRUE(page_waits_for_host(announced(host)));
        ASSERT_TRUE(more_alarms_come(20));
        host.resume();
        ASSERT_TRUE(item_arrives(round, 4));
    }
    EXPECT_FALSE(store.process_has_gone());
}

// Together they are larger than the socket buffer: the page blocks between two of them.
TEST_F(AlarmStorm, DeliversManySmallCalls) {
    constexpr int kItems = 400;
    const std::string value(30'000, 'v');
    host.pause();
    store.evaluate("setTimeout(() => { for (let key = 0; key < " + std::to_string(kItems) +
                   "; ++key) external.setItem(key, '" + value + "', 'done') }, 0)");
    ASSERT_TRUE(page_waits_for_host(announced(host)));
    ASSERT_TRUE(more_alarms_come(20));
    host.resume();
    ASSERT_TRUE(host.wait_for(19, kItems));
    const std::vector<ReceivedFrame> items = host.frames(19);
    for (std::size_t key = 0; key < items.size(); ++key) {
        ASSERT_EQ(items[key].payload, std::to_string(key) + ('\0' + value) + '\0' + "done" + '\0');
    }
    EXPECT_FALSE(store.process_has_gone());
}

// The reader blocks in the middle of each.
TEST_F(AlarmStorm, DeliversLargeAnswers) {
    for (int round = 0; round < 5; ++round) {
        host.forget_frames();
        const std::string bytes = frame_bytes(1, {}, {answer(round)});
        host.send_bytes(bytes.substr(0, bytes.size() / 2));
        ASSERT_TRUE(more_alarms_come(20));
        host.send_bytes(bytes.substr(bytes.size() / 2));
        ASSERT_TRUE(answer_arrives(round));
    }
    EXPECT_FALSE(store.process_has_gone());
}

// The page and the reader both block in the middle of a frame.
TEST_F(AlarmStorm, DeliversBothDirectionsAtOnce) {
    for (int round = 0; round < 3; ++round) {
        host.forget_frames();
        host.pause();
        store.evaluate(set_item(round, 4));
        ASSERT_TRUE(page_waits_for_host(announced(host)));
        const std::string bytes = frame_bytes(1, {}, {answer(round)});
        host.send_bytes(bytes.substr(0, bytes.size() / 2));
        ASSERT_TRUE(more_alarms_come(20));
        host.resume();
        host.send_bytes(bytes.substr(bytes.size() / 2));
        ASSERT_TRUE(item_arrives(round, 4));
        ASSERT_TRUE(answer_arrives(round));
    }
    EXPECT_FALSE(store.process_has_gone());
}

}  // namespace
}  // namespace kestrel::testing
