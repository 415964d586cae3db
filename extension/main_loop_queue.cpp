#include "extension/main_loop_queue.h"

#include <glib.h>

#include <list>
#include <mutex>
#include <utility>

#include "ipc/never_destroyed.h"

namespace kestrel {
namespace {

using Work = std::function<void()>;

struct Queue {
    std::mutex lock;
    std::list<Work> waiting;
    bool has_source = false;
};

// The reader outlives static destruction.
Queue& queue() {
    static NeverDestroyed<Queue> queue;
    return queue.object;
}

// One work or none.
std::list<Work> next_work() {
    Queue& from = queue();
    std::list<Work> work;
    const std::scoped_lock guard(from.lock);
    if (!from.waiting.empty()) work.splice(work.begin(), from.waiting, from.waiting.begin());
    return work;
}

std::size_t count_waiting() {
    const std::scoped_lock guard(queue().lock);
    return queue().waiting.size();
}

// A source removed by a loop inside this one may have a successor already: one too many finds
// nothing to do.
bool gives_up_source() {
    const std::scoped_lock guard(queue().lock);
    if (queue().waiting.empty()) queue().has_source = false;
    return queue().waiting.empty();
}

// What is handed over meanwhile waits for the main loop's next turn, so that the page stays alive.
gboolean work_off(void* /*data*/) {
    for (std::size_t left = count_waiting(); left > 0; --left) {
        for (const Work& work : next_work()) work();
    }
    return gives_up_source() ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

// A debugger stops a callback in a main loop of its own, which goes on with what waits.
void add_source() {
    GSource* const source = g_idle_source_new();
    g_source_set_callback(source, work_off, nullptr, nullptr);
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

}  // namespace

void run_in_main_loop(Work work) {
    std::list<Work> one;
    one.push_back(std::move(work));
    bool had_source = false;
    {
        const std::scoped_lock guard(queue().lock);
        queue().waiting.splice(queue().waiting.end(), one);
        had_source = std::exchange(queue().has_source, true);
    }
    if (!had_source) add_source();
}

}  // namespace kestrel
