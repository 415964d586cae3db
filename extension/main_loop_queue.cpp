#include "extension/main_loop_queue.h"

#include <glib.h>

#include <list>
#include <mutex>
#include <utility>

#include "base/never_destroyed.h"

namespace kestrel {
namespace {

using Task = std::function<void()>;

constexpr gint64 kSlice = 8 * G_TIME_SPAN_MILLISECOND;
// How long tasks leave the loop to the rest of the page before they are due at its priority.
constexpr gint64 kPatience = 4 * G_TIME_SPAN_MILLISECOND;
constexpr gint64 kNever = -1;
constexpr gint64 kAtOnce = 0;

gboolean dispatch(GSource* source, GSourceFunc callback, void* data);

// Attached on first use, never removed. It may recurse because a debugger that stops a task runs a
// main loop of its own.
GSource* attach_source(int priority) {
    static GSourceFuncs functions{nullptr, nullptr, dispatch, nullptr, nullptr, nullptr};
    GSource* const source = g_source_new(&functions, sizeof(GSource));
    g_source_set_static_name(source, "kestrel messages for the page");
    g_source_set_priority(source, priority);
    g_source_set_can_recurse(source, TRUE);
    g_source_attach(source, nullptr);
    g_source_unref(source);  // the main context holds it
    return source;
}

class Queue {
  public:
    void push(Task&& task) {
        std::list<Task> one;
        one.push_back(std::move(task));
        const std::scoped_lock guard(lock_);
        const bool was_empty = tasks_.empty();
        tasks_.splice(tasks_.end(), one);
        if (was_empty) schedule();
    }

    // One task, or none.
    std::list<Task> pop() {
        std::list<Task> task;
        const std::scoped_lock guard(lock_);
        if (!tasks_.empty()) task.splice(task.begin(), tasks_, tasks_.begin());
        return task;
    }

    void schedule_rest() {
        const std::scoped_lock guard(lock_);
        schedule();
    }

  private:
    void schedule() {
        const bool is_empty = tasks_.empty();
        g_source_set_ready_time(overdue_, is_empty ? kNever : g_get_monotonic_time() + kPatience);
        g_source_set_ready_time(idle_, is_empty ? kNever : kAtOnce);
    }

    std::mutex lock_;
    std::list<Task> tasks_;
    GSource* const idle_ = attach_source(G_PRIORITY_DEFAULT_IDLE);
    GSource* const overdue_ = attach_source(G_PRIORITY_DEFAULT);
};

// The reader outlives static destruction.
Queue& queue() {
    static NeverDestroyed<Queue> queue;
    return queue.object;
}

gboolean dispatch(GSource* /*source*/, GSourceFunc /*callback*/, void* /*data*/) {
    const gint64 end = g_get_monotonic_time() + kSlice;
    do {
        const std::list<Task> tasks = queue().pop();
        if (tasks.empty()) break;
        tasks.front()();
    } while (g_get_monotonic_time() < end);
    queue().schedule_rest();
    return G_SOURCE_CONTINUE;
}

}  // namespace

void run_in_main_loop(Task task) { queue().push(std::move(task)); }

}  // namespace kestrel
