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

TEST_F(MainLoopQueue, TakesTasksAgainOnceItWasEmpty) {
    queue("first");
    run_main_loop_until_idle();
    queue("second");
    run_main_loop_until_idle();
    EXPECT_THAT(done, ElementsAre("first", "second"));
}

TEST_F(MainLoopQueue, LosesNothingThatAnotherThreadQueuesMeanwhile) {
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
    static std::counting_semaphore sleeps{0};
    static int events = 1;
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
    while (done.size() < 2 && events > 0) g_main_context_iteration(nullptr, TRUE);
    g_main_context_set_poll_func(nullptr, previous);
    EXPECT_THAT(done, ElementsAre("first", "second"));
}

// A source of the main loop that calls `callback` in every iteration that gets to its priority.
class Source {
  public:
    Source(int priority, std::function<void()> callback) : callback_(std::move(callback)) {
        id_ = g_idle_add_full(
            priority,
            [](void* self) -> gboolean {
                static_cast<Source*>(self)->callback_();
                return G_SOURCE_CONTINUE;
            },
            this, nullptr);
    }
    ~Source() { g_source_remove(id_); }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

  private:
    std::function<void()> callback_;
    guint id_;
};

TEST_F(MainLoopQueue, IsNotStarvedByABusyLoop) {
    const Source busy(G_PRIORITY_DEFAULT, [] {});
    for (const char* name : {"first", "second"}) {
        queue(name);
        EXPECT_TRUE(run_main_loop_until([&] { return !done.empty() && done.back() == name; }));
    }
}

TEST_F(MainLoopQueue, LeavesTheLoopToDrawingWhileTasksBringMoreTasks) {
    constexpr int kDrawing = 120;  // below WebKit's own tasks, above idle
    int drawn = 0;
    const Source drawing(kDrawing, [&] { ++drawn; });
    const std::function<void()> again = [&] {
        if (drawn < 10) run_in_main_loop(again);
    };
    run_in_main_loop(again);
    EXPECT_TRUE(run_main_loop_until([&] { return drawn >= 10; }));
    queue("behind the last one");
    EXPECT_TRUE(run_main_loop_until([&] { return !done.empty(); }));
}

TEST_F(MainLoopQueue, RunsTasksInALoopInsideOfATask) {
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

TEST_F(MainLoopQueue, TakesTasksFromALoopInsideOfATask) {
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
