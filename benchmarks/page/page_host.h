#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "ipc/frame_assembler.h"

namespace kestrel::bench {

// The host's end of the link. A thread of its own reads everything from one web process. All
// functions must be called from one thread.
class PageHost {
  public:
    enum class Task : std::uint8_t {
        count,  // only counts bytes
        echo,   // answers each frame of type 11 with its first string
        keep,   // keeps the payload of each frame
    };

    explicit PageHost(const std::string& client_directory);
    ~PageHost();
    PageHost(const PageHost&) = delete;
    PageHost& operator=(const PageHost&) = delete;

    // Only while no bytes are expected.
    void set_task(Task task) { task_ = task; }

    // Starts to wait for `bytes` more bytes and drops the kept payloads.
    void expect(std::uint64_t bytes);

    // Whether the expected bytes have arrived.
    bool has_finished() const { return finished_at_ != 0; }

    // Waits for the expected bytes, at most a minute. Returns the time of their arrival in
    // seconds of the monotonic clock.
    double finished_at() const;

    // Stops reading after the next read, or resumes it.
    void pause() { paused_ = true; }
    void resume();

    // Bytes in the socket that are not yet read.
    std::size_t unread() const;

    void send(std::string_view bytes) const;

    const std::vector<std::string>& kept() const { return kept_; }

  private:
    void serve();
    void take(std::span<const char> bytes);
    void take_frame(const webkit_message& frame);

    std::string path_;
    int listener_;
    std::atomic<int> peer_ = -1;
    std::atomic<Task> task_ = Task::count;
    std::atomic<bool> paused_ = false;
    std::atomic<std::uint64_t> received_ = 0;
    std::atomic<std::uint64_t> expected_ = 0;
    std::atomic<double> finished_at_ = 0;
    FrameAssembler assembler_;
    std::vector<std::string> kept_;
    std::thread thread_;
};

double monotonic_seconds();

inline constexpr double kNanoseconds = 1e9;  // per second

}  // namespace kestrel::bench
