#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include "ipc/direction.h"
#include "ipc/frame.h"

namespace kestrel {

struct TracedFrame {
    std::chrono::system_clock::time_point time;
    Direction direction = Direction::from_page;
    Frame frame;              // null when there is only a count to tell
    std::size_t dropped = 0;  // frames that are missing before this one
};

// Frames on their way from the threads of the link to the one that writes them down. It keeps a
// bounded number of bytes; what does not fit is counted and dropped, so that putting never waits.
class TraceQueue {
  public:
    explicit TraceQueue(std::size_t capacity) : capacity_(capacity) {}

    // Keeps a copy of the frame, or counts it as dropped. Any thread.
    void put(Direction direction, const webkit_message& frame) noexcept;

    // Waits for the next frame, or for a count to tell. The taker has dealt with what it took
    // before when it calls this again. One thread.
    TracedFrame take();

    // The taker takes no more: forgets what there is and whatever will be put.
    void close();

    // Waits until the taker has dealt with everything; false when `patience` is over before.
    bool wait_until_done(std::chrono::milliseconds patience);

  private:
    static std::size_t cost_of(const webkit_message& frame);

    const std::size_t capacity_;
    std::mutex lock_;
    std::condition_variable changed_;
    std::deque<TracedFrame> frames_;
    std::size_t used_ = 0;
    std::size_t dropped_ = 0;
    bool taker_waits_ = false;
    bool closed_ = false;
};

}  // namespace kestrel
