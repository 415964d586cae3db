#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "ipc/frame_assembler.h"

namespace kestrel::bench {

// The host's end of the link, in a thread of its own: reads all that comes. It listens from the
// start, and serves one web process. Its functions are for one other thread.
class PageHost {
  public:
    enum class Task : std::uint8_t {
        count,  // bytes, and nothing else
        echo,   // each frame of type 11 is answered: its first string comes back to the page
        keep,   // the payload of every frame
    };

    explicit PageHost(const std::string& client_directory);
    ~PageHost();
    PageHost(const PageHost&) = delete;
    PageHost& operator=(const PageHost&) = delete;

    // Only while nothing is under way.
    void set_task(Task task) { task_ = task; }

    // Forgets what has come; finished_at tells when `bytes` more have.
    void expect(std::uint64_t bytes);

    // Whether the expected bytes have come.
    bool has_finished() const { return finished_at_ != 0; }

    // Waits until the expected bytes have come, a minute at most, and says when that was, in
    // seconds of the monotonic clock.
    double finished_at() const;

    // Stops reading once the next piece has come, or goes on.
    void pause() { paused_ = true; }
    void resume();

    // Bytes that wait to be read.
    std::size_t waiting() const;

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

inline constexpr double kNanoseconds = 1e9;  // a second

}  // namespace kestrel::bench
