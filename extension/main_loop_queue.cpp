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

gboolean check(GSource* /*source*/) { return static_cast<gboolean>(count_waiting() > 0); }

gboolean prepare(GSource* source, int* timeout) {
    *timeout = -1;
    return check(source);
}

// What is handed over meanwhile waits for the main loop's next turn, so that the page stays alive.
gboolean work_off(GSource* /*source*/, GSourceFunc /*callback*/, void* /*data*/) {
    for (std::size_t left = count_waiting(); left > 0; --left) {
        for (const Work& work : next_work()) work();
    }
    return G_SOURCE_CONTINUE;
}

// Part of the main loop from the first work on, for good. A debugger stops a callback in a main
// loop of its own, which goes on with what waits.
void attach_source() {
    static GSourceFuncs functions{prepare, check, work_off, nullptr, nullptr, nullptr};
    GSource* const source = g_source_new(&functions, sizeof(GSource));
    g_source_set_static_name(source, "kestrel messages for the page");
    g_source_set_priority(source, G_PRIORITY_DEFAULT_IDLE);
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

}  // namespace

void run_in_main_loop(Work work) {
    std::list<Work> one;
    one.push_back(std::move(work));
    bool was_empty = false;
    {
        const std::scoped_lock guard(queue().lock);
        was_empty = queue().waiting.empty();
        queue().waiting.splice(queue().waiting.end(), one);
    }
    static std::once_flag has_source;
    std::call_once(has_source, attach_source);
    if (was_empty) g_main_context_wakeup(nullptr);
}

}  // namespace kestrel
