#include "ipc/trace_queue.h"

#include <new>
#include <utility>

namespace kestrel {

std::size_t TraceQueue::cost_of(const webkit_message& frame) {
    return sizeof(TracedFrame) + bytes_of(frame).size();
}

void TraceQueue::put(Direction direction, const webkit_message& frame) noexcept {
    const std::scoped_lock guard(lock_);
    if (closed_) return;
    const std::size_t cost = cost_of(frame);
    try {
        if (cost > capacity_ - used_) throw std::bad_alloc();
        frames_.push_back({std::chrono::system_clock::now(), direction, copy_of(frame), dropped_});
        used_ += cost;
        dropped_ = 0;
    } catch (const std::bad_alloc&) {
        ++dropped_;
    }
    changed_.notify_all();
}

TracedFrame TraceQueue::take() {
    std::unique_lock guard(lock_);
    taker_waits_ = true;
    changed_.notify_all();
    changed_.wait(guard, [this] { return !frames_.empty() || dropped_ > 0; });
    taker_waits_ = false;
    if (frames_.empty()) {
        TracedFrame count;
        count.time = std::chrono::system_clock::now();
        count.dropped = std::exchange(dropped_, 0);
        return count;
    }
    TracedFrame taken = std::move(frames_.front());
    frames_.pop_front();
    used_ -= cost_of(*taken.frame);
    return taken;
}

void TraceQueue::close() {
    const std::scoped_lock guard(lock_);
    closed_ = true;
    frames_.clear();
    dropped_ = 0;
    changed_.notify_all();
}

bool TraceQueue::wait_until_done(std::chrono::milliseconds patience) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, patience, [this] {
        return closed_ || (taker_waits_ && frames_.empty() && dropped_ == 0);
    });
}

}  // namespace kestrel
