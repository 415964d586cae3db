// What the reader thread hands to the main loop.
#include "extension/main_loop_queue.h"

#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <functional>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/main_loop.h"

namespace kestrel::testing {
namespace {

using ::testing::ElementsAre;

class MainLoopQueue : public ::testing::Test {
  protected:
    void queue(const std::string& name) {
        run_in_main_loop([this, name] { done.push_back(name); });
    }

    std::vector<std::string> done;
};

TEST_F(MainLoopQueue, WaitsForTheMainLoop) {
    queue("work");
    EXPECT_THAT(done, ElementsAre());
    run_main_loop_until_idle();
    EXPECT_THAT(done, ElementsAre("work"));
}

TEST_F(MainLoopQueue, KeepsTheOrder) {
    queue("first");
    queue("second");
    queue("third");
    run_main_loop_until_idle();
    EXPECT_THAT(done, ElementsAre("first", "second", "third"));
}

TEST_F(MainLoopQueue, TakesWorkAgainOnceItWasEmpty) {
    queue("first");
    run_main_loop_until_idle();
    queue("second");
    run_main_loop_until_idle();
    EXPECT_THAT(done, ElementsAre("first", "second"));
}

TEST_F(MainLoopQueue, LosesNothingOfAnotherThreadThatGoesOnMeanwhile) {
    constexpr int kCount = 100'000;
    int last = 0;
    bool is_in_order = true;
    std::jthread reader([&] {
        for (int i = 1; i <= kCount; ++i) {
            run_in_main_loop([&, i] { is_in_order &= std::exchange(last, i) == i - 1; });
        }
    });
    EXPECT_TRUE(run_main_loop_until([&] { return last == kCount; }));
    EXPECT_TRUE(is_in_order);
}

TEST_F(MainLoopQueue, WakesALoopThatSleeps) {
    static std::binary_semaphore sleeps{0};
    static int events = 0;
    queue("first");
    run_main_loop_until_idle();
    const std::jthread reader([this] {
        sleeps.acquire();
        queue("second");
    });
    const GPollFunc previous = g_main_context_get_poll_func(nullptr);
    g_main_context_set_poll_func(nullptr, [](GPollFD* fds, guint count, int /*timeout*/) {
        constexpr int kPatienceMilliseconds = 10'000;
        sleeps.release();
        events = poll(reinterpret_cast<pollfd*>(fds), count, kPatienceMilliseconds);
        return events;
    });
    g_main_context_iteration(nullptr, TRUE);
    g_main_context_set_poll_func(nullptr, previous);
    EXPECT_EQ(events, 1);
    EXPECT_THAT(done, ElementsAre("first", "second"));
}

// Drawing and the page's timers have a higher priority than idle work.
TEST_F(MainLoopQueue, LetsTheRestOfTheLoopLiveWhileWorkBringsMoreWork) {
    constexpr int kTurns = 1'000;
    int turns = 0;
    int turns_when_drawn = kTurns;
    std::function<void()> draw = [&] { turns_when_drawn = turns; };
    const std::function<void()> again = [&] {
        if (++turns < kTurns) run_in_main_loop(again);
    };
    run_in_main_loop([&] {
        g_idle_add_full(
            G_PRIORITY_DEFAULT,
            [](void* work) -> gboolean {
                (*static_cast<std::function<void()>*>(work))();
                return G_SOURCE_REMOVE;
            },
            &draw, nullptr);
        again();
    });
    EXPECT_TRUE(run_main_loop_until([&] { return turns == kTurns; }));
    EXPECT_LT(turns_when_drawn, kTurns);
}

TEST_F(MainLoopQueue, GoesOnInALoopInsideOfOneOfItsWorks) {
    run_in_main_loop([this] {
        done.emplace_back("outer");
        run_main_loop_until_idle();
        done.emplace_back("outer again");
    });
    queue("inner");
    run_main_loop_until_idle();
    queue("after");
    run_main_loop_until_idle();
    EXPECT_THAT(done, ElementsAre("outer", "inner", "outer again", "after"));
}

TEST_F(MainLoopQueue, TakesWorkFromALoopInsideOfOneOfItsWorks) {
    run_in_main_loop([this] {
        queue("inner");
        run_main_loop_until_idle();
        queue("later");
        done.emplace_back("outer");
    });
    run_main_loop_until_idle();
    EXPECT_THAT(done, ElementsAre("inner", "outer", "later"));
}

}  // namespace
}  // namespace kestrel::testing
