// Pages whose main thread is always busy: scripts and answers of the host still run, and a flood of
// them does not stop the page's animation frames.
#include <string>
#include <thread>

#include "tests/webkit/store_fixture.h"

namespace kestrel::testing {
namespace {

struct Load {
    const char* name;
    const char* script;

    friend std::ostream& operator<<(std::ostream& stream, const Load& load) {
        return stream << load.name;
    }
};

// `busy(ms)` keeps the main thread busy; each load calls it again as soon as possible.
constexpr const char* kBusy =
    "busy = ms => { for (const end = performance.now() + ms; performance.now() < end;); };"
    "frames = ms => { busy(ms); requestAnimationFrame(() => frames(ms)) };"
    "timers = ms => { busy(ms); setTimeout(timers, 0, ms) };";

constexpr const char* kPostMessage =
    "onmessage = () => { busy(5); postMessage('', '*') }; postMessage('', '*')";
constexpr const char* kMessageChannel =
    "channel = new MessageChannel(); channel.port1.onmessage = () => {"
    "  busy(5); channel.port2.postMessage('') }; channel.port2.postMessage('')";

class BusyPage : public ConnectedStoreTest, public ::testing::WithParamInterface<Load> {
  protected:
    void SetUp() override {
        ConnectedStoreTest::SetUp();
        store.evaluate(std::string(kBusy) + GetParam().script + "; 0");
    }
};

TEST_P(BusyPage, ReceivesScriptsAndAnswersInOrder) {
    constexpr int kTurns = 20;
    for (int turn = 0; turn < kTurns; ++turn) {
        const std::string number = std::to_string(turn);
        host.send(0, {"external.sendAction('script " + number + "')"});
        ASSERT_TRUE(host.wait_for_text(5, "script " + number));
        host.send(1, {"() => external.sendAction('answer " + number + "')"});
        host.send(0, {"external.sendAction('after " + number + "')"});
        ASSERT_TRUE(host.wait_for_text(5, "after " + number));
        ASSERT_EQ(host.frames(5).size(), 3U * static_cast<unsigned>(turn + 1));
        ASSERT_EQ(host.frames(5).rbegin()[1].payload, "answer " + number + '\0');
    }
}

INSTANTIATE_TEST_SUITE_P(Loads, BusyPage,
                         ::testing::Values(Load{"FramesOf8msAndTimers", "frames(8); timers(8)"},
                                           Load{"FramesOf16ms", "frames(16)"},
                                           Load{"FramesOf30msAndTimers", "frames(30); timers(1)"},
                                           Load{"Timers", "timers(8); timers(8)"},
                                           Load{"PostMessage", kPostMessage},
                                           Load{"MessageChannel", kMessageChannel}),
                         [](const auto& load) { return load.param.name; });

// The page counts its frames between the first answer and the last.
class Flood : public ConnectedStoreTest {
  protected:
    void SetUp() override {
        ConnectedStoreTest::SetUp();
        store.evaluate(std::string(kBusy) +
                       "shown = 0; show = () => { ++shown; requestAnimationFrame(show) }; show();"
                       "begin = () => { start = performance.now(); shown = 0 };"
                       "end = () => { rate = shown / (performance.now() - start) * 1000 }; 0");
    }

    // Frames a second. WebKit's frames need this process's main loop, which therefore must not wait
    // for the socket.
    double rate_during(const std::string& answer, int count) {
        const std::jthread sender([&] {
            host.send(1, {"begin"});
            for (int i = 0; i < count; ++i) host.send(1, {answer});
            host.send(1, {"end"});
        });
        EXPECT_TRUE(host.wait_for(33, static_cast<std::size_t>(count) + 2));
        return std::stod(store.evaluate("rate"));
    }
};

TEST_F(Flood, SlowAnswersKeepAnimationFrames) { EXPECT_GE(rate_during("() => busy(5)", 200), 10); }

TEST_F(Flood, EmptyAnswersKeepAnimationFrames) { EXPECT_GE(rate_during("() => 0", 100'000), 10); }

TEST_F(ConnectedStoreTest, RunsMicrotasksOfAnAnswerBeforeTheNextOne) {
    store.evaluate(
        "order = ''; answer = () => { order += 'a';"
        "  Promise.resolve().then(() => { order += 'm' }).then(() => { order += 'n' }) }; 0");
    for (int i = 0; i < 100; ++i) {
        host.send(1, {"answer"});
        host.send(0, {"order += 's'; Promise.resolve().then(() => { order += 'p' })"});
    }
    ASSERT_TRUE(host.wait_for(33, 100));
    EXPECT_TRUE(store.wait_for("order.length === 500"));
    EXPECT_EQ(store.evaluate("order === 'amnsp'.repeat(100)"), "true") << store.evaluate("order");
}

}  // namespace
}  // namespace kestrel::testing
