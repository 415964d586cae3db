#include "benchmarks/page/page_host.h"

#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>

#include "benchmarks/require.h"
#include "benchmarks/unix_socket.h"
#include "ipc/frame.h"
#include "ipc/frame_builder.h"

namespace kestrel::bench {
namespace {

constexpr int kRelay = to_host("ajax");
constexpr int kAnswer = to_page("answer");
constexpr std::size_t kPieceSize = 262'144;

void sleep_a_moment() { std::this_thread::sleep_for(std::chrono::microseconds(200)); }

}  // namespace

double monotonic_seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

PageHost::PageHost(const std::string& client_directory)
    : path_(client_directory + "/webkit_socket2"),
      listener_(bound_socket(path_)),
      assembler_({64'000'000, 100}) {
    thread_ = std::thread(&PageHost::serve, this);
}

PageHost::~PageHost() {
    paused_ = false;
    shutdown(listener_, SHUT_RDWR);
    if (peer_ != -1) shutdown(peer_, SHUT_RDWR);
    thread_.join();
    unlink(path_.c_str());
    close(listener_);
}

void PageHost::serve() {
    peer_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    std::vector<char> piece(kPieceSize);
    for (;;) {
        paused_.wait(true);
        const ssize_t got = read(peer_, piece.data(), piece.size());
        if (got <= 0) break;
        take(std::span(piece).first(static_cast<std::size_t>(got)));
    }
    close(peer_.exchange(-1));
}

void PageHost::take(std::span<const char> bytes) {
    const std::uint64_t received = received_ += bytes.size();
    if (task_ != Task::count) {
        while (const Frame frame = assembler_.next(bytes)) take_frame(*frame);
    }
    if (received >= expected_ && finished_at_ == 0) finished_at_ = monotonic_seconds();
}

void PageHost::take_frame(const webkit_message& frame) {
    const std::span<const char> payload = payload_of(frame);
    if (task_ == Task::keep) {
        kept_.emplace_back(payload.begin(), payload.end());
    } else if (frame.msg_type == kRelay) {
        const std::string_view text(payload.data());
        const std::array<std::string_view, 6> strings = {kAjaxCompletion, text};
        const Frame answer = build_frame(kAnswer, {}, strings);
        const std::span<const char> bytes = bytes_of(*answer);
        send({bytes.data(), bytes.size()});
    }
}

void PageHost::expect(std::uint64_t bytes) {
    kept_.clear();
    expected_ = received_ + bytes;
    finished_at_ = 0;
}

double PageHost::finished_at() const {
    constexpr double kPatience = 60;
    const double deadline = monotonic_seconds() + kPatience;
    while (finished_at_ == 0 && monotonic_seconds() < deadline) sleep_a_moment();
    return finished_at_;
}

void PageHost::resume() {
    paused_ = false;
    paused_.notify_one();
}

std::size_t PageHost::unread() const {
    int bytes = 0;
    ioctl(peer_, FIONREAD, &bytes);
    return static_cast<std::size_t>(bytes);
}

void PageHost::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(peer_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        require(sent > 0, "send");
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

}  // namespace kestrel::bench
