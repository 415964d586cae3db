#include "workbench/wire/event_source.h"

#include <glib-unix.h>

namespace kestrel {
namespace {

gboolean call(void* callback) {
    (*static_cast<EventSource::Callback*>(callback))();
    return G_SOURCE_CONTINUE;
}

// GLib keeps the callback alive while it runs, even if it removes its source.
void destroy(void* callback) { delete static_cast<EventSource::Callback*>(callback); }

}  // namespace

EventSource EventSource::on_descriptor(int fd, GIOCondition condition, Callback callback) {
    return EventSource(g_unix_fd_add_full(
        G_PRIORITY_DEFAULT_IDLE, fd, condition,
        [](int, GIOCondition, void* data) { return call(data); }, new Callback(std::move(callback)),
        destroy));
}

EventSource EventSource::on_signal(int signal, Callback callback) {
    return EventSource(g_unix_signal_add_full(G_PRIORITY_DEFAULT, signal, call,
                                              new Callback(std::move(callback)), destroy));
}

EventSource EventSource::every(std::chrono::milliseconds interval, Callback callback) {
    return EventSource(g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(interval.count()),
                                          call, new Callback(std::move(callback)), destroy));
}

EventSource EventSource::when_idle(Callback callback) {
    return EventSource(
        g_idle_add_full(G_PRIORITY_LOW, call, new Callback(std::move(callback)), destroy));
}

void EventSource::call_after(std::chrono::milliseconds delay, Callback callback) {
    g_timeout_add_full(
        G_PRIORITY_DEFAULT, static_cast<guint>(delay.count()),
        [](void* data) -> gboolean {
            call(data);
            return G_SOURCE_REMOVE;
        },
        new Callback(std::move(callback)), destroy);
}

}  // namespace kestrel
