#pragma once

#include <glib.h>

#include <chrono>
#include <functional>
#include <utility>

namespace kestrel {

// A source of the default main context, removed with this object. The callback is called repeatedly
// until then; it may remove its own source.
class EventSource {
  public:
    using Callback = std::function<void()>;

    EventSource() = default;
    ~EventSource() { remove(); }
    EventSource(EventSource&& other) noexcept : id_(std::exchange(other.id_, 0)) {}
    EventSource& operator=(EventSource&& other) noexcept {
        std::swap(id_, other.id_);
        return *this;
    }

    // Has a lower priority than drawing, so that a peer that never stops sending cannot freeze the
    // window.
    static EventSource on_descriptor(int fd, GIOCondition condition, Callback callback);
    static EventSource on_signal(int signal, Callback callback);
    static EventSource every(std::chrono::milliseconds interval, Callback callback);
    // Runs when no other source is ready, descriptors included.
    static EventSource when_idle(Callback callback);

    // Calls once; cannot be cancelled.
    static void call_after(std::chrono::milliseconds delay, Callback callback);

    bool is_active() const { return id_ != 0; }
    void remove() {
        if (id_ != 0) g_source_remove(std::exchange(id_, 0));
    }

  private:
    explicit EventSource(guint id) : id_(id) {}

    guint id_ = 0;
};

}  // namespace kestrel
