// Building frames, and reading them from a socket up to their handler, against bare system calls.

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "benchmarks/repeated.h"
#include "ipc/frame.h"
#include "ipc/frame_builder.h"
#include "ipc/webkit_client.h"
#include "ipc/webkit_util.h"

namespace {

using kestrel::Frame;
using Clock = std::chrono::steady_clock;

constexpr int kAnswer = kestrel::to_page("answer");

// --- Building -----------------------------------------------------------------------------------

const std::vector<std::string> kThreeStrings = {"key", "value", "callback"};

// wrapMessage takes its lists by value. They are created before the measurement; their destruction,
// a cost of the caller, is measured separately and subtracted.
constexpr std::size_t kLists = 64;  // fit into the first-level cache
constexpr int kRounds = 100;

double processor_seconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// Uses processor time, as the floor does.
template <typename Taker>
void take_lists(benchmark::State& state, Taker taker) {
    std::array<std::vector<std::string>, kLists> lists;
    for (auto _ : state) {
        double taken = 0;
        for (int round = 0; round < kRounds; ++round) {
            lists.fill(kThreeStrings);
            const double start = processor_seconds();
            for (std::vector<std::string>& list : lists) taker(std::move(list));
            taken += processor_seconds() - start;
        }
        state.SetIterationTime(taken);
    }
}

void wrap_message_and_destruction(benchmark::State& state) {
    take_lists(state, [](std::vector<std::string>&& list) {
        webkit_message* message = webkit_util::wrapMessage(19, {}, std::move(list));
        benchmark::DoNotOptimize(message);
        std::free(message);
    });
}

void list_destruction(benchmark::State& state) {
    take_lists(state, [](std::vector<std::string>&& list) {
        std::vector<std::string> destroyed = std::move(list);
        benchmark::DoNotOptimize(destroyed);
    });
}

void malloc_and_memcpy(benchmark::State& state) {
    const Frame frame(webkit_util::wrapMessage(19, {}, kThreeStrings));
    const std::span<const char> bytes = kestrel::bytes_of(*frame);
    std::size_t size = bytes.size();
    for (auto _ : state) {
        benchmark::DoNotOptimize(size);
        void* copy = std::malloc(size);
        std::memcpy(copy, bytes.data(), size);
        benchmark::DoNotOptimize(copy);
        std::free(copy);
    }
}

// --- Reading short frames -----------------------------------------------------------------------

// All fit into a socket's default buffer.
constexpr int kShortFrames = 200;

struct Pair {
    Pair() {
        std::array<int, 2> ends{};
        if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == -1) std::abort();
        host = ends[0];
        link = ends[1];
    }
    ~Pair() {
        close(host);
        close(link);
    }
    Pair(const Pair&) = delete;
    Pair& operator=(const Pair&) = delete;

    void send(const webkit_message& frame) const {
        std::span<const char> rest = kestrel::bytes_of(frame);
        while (!rest.empty()) {
            const ssize_t written = write(host, rest.data(), rest.size());
            if (written <= 0) std::abort();
            rest = rest.subspan(static_cast<std::size_t>(written));
        }
    }

    int host;
    int link;
};

Frame short_frame() {
    constexpr std::array<std::string_view, 6> kStrings = {
        "zyns_ajax_complete", "17", "200", "application/json", "{\"state\":\"on\"}", "none"};
    return kestrel::build_frame(kAnswer, {}, kStrings);
}

// The handler of every message counts, and takes the time of the last one.
std::atomic<int> awaited;
std::atomic<Clock::rep> finished;

void finish_one() {
    if (awaited.fetch_sub(1) > 1) return;
    finished = Clock::now().time_since_epoch().count();
    finished.notify_one();
}

void count(int* /*ints*/, std::string* /*strings*/) { finish_one(); }

webkit_client::InboundHandler* handlers() {
    static std::array<webkit_client::InboundHandler, kestrel::kInboundHandlerSlots> table{};
    table[kAnswer] = count;
    return table.data();
}

void bare_reads(int fd, std::size_t payload) {
    std::array<char, 4'096> buffer;
    while (awaited > 0) {
        if (read(fd, buffer.data(), sizeof(webkit_message)) <= 0) std::abort();
        if (read(fd, buffer.data(), payload) <= 0) std::abort();
        finish_one();
    }
}

double seconds_until_finished(Clock::time_point start) {
    finished.wait(0);
    return std::chrono::duration<double>(Clock::duration(finished) - start.time_since_epoch())
        .count();
}

// Everything is sent before the reader starts, so that only reading is measured.
template <typename Reader>
void read_short_frames(benchmark::State& state, Reader reader) {
    const Frame frame = short_frame();
    for (auto _ : state) {
        const Pair pair;
        for (int i = 0; i < kShortFrames; ++i) pair.send(*frame);
        shutdown(pair.host, SHUT_WR);
        awaited = kShortFrames;
        finished = 0;
        webkit_client::server_fd = pair.link;
        Clock::time_point start;
        std::thread thread([&] {
            start = Clock::now();
            reader(pair.link, static_cast<std::size_t>(frame->total_len_of_string));
        });
        thread.join();
        state.SetIterationTime(seconds_until_finished(start));
    }
}

void inbound_short(benchmark::State& state) {
    read_short_frames(state, [](int, std::size_t) { webkit_client::recvMessage(); });
}

void two_bare_reads(benchmark::State& state) { read_short_frames(state, bare_reads); }

// --- Reading a large frame ----------------------------------------------------------------------

constexpr std::size_t kLarge = 4'900'000;

// From the host's write until the handler runs or the buffer is full.
template <typename Reader>
void read_large_frames(benchmark::State& state, Reader reader) {
    const std::string text(kLarge, 'x');
    const Frame frame = kestrel::build_frame(kAnswer, {}, std::array{std::string_view(text)});
    const Pair pair;
    webkit_client::server_fd = pair.link;
    std::thread thread([&] { reader(pair.link); });
    for (auto _ : state) {
        awaited = 1;
        finished = 0;
        const Clock::time_point start = Clock::now();
        pair.send(*frame);
        state.SetIterationTime(seconds_until_finished(start));
    }
    shutdown(pair.host, SHUT_WR);
    thread.join();
}

void bare_large_reads(int fd) {
    std::vector<char> buffer(sizeof(webkit_message) + kLarge + 1);
    for (;;) {
        std::span<char> rest(buffer);
        while (!rest.empty()) {
            const ssize_t got = read(fd, rest.data(), rest.size());
            if (got <= 0) return;
            rest = rest.subspan(static_cast<std::size_t>(got));
        }
        finish_one();
    }
}

void inbound_large(benchmark::State& state) {
    read_large_frames(state, [](int) { webkit_client::recvMessage(); });
}

void bare_large(benchmark::State& state) { read_large_frames(state, bare_large_reads); }

using kestrel::bench::Clock::manual;

constexpr std::array<kestrel::bench::Measurement, 7> kMeasurements{{
    {"wrap_message_and_destruction", wrap_message_and_destruction, manual, kLists* kRounds},
    {"list_destruction", list_destruction, manual, kLists* kRounds},
    {"malloc_and_memcpy", malloc_and_memcpy},
    {"inbound_short", inbound_short, manual, kShortFrames},
    {"two_bare_reads", two_bare_reads, manual, kShortFrames},
    {"inbound_large", inbound_large, manual},
    {"bare_large", bare_large, manual},
}};

}  // namespace

int main(int argc, char** argv) {
    const kestrel::bench::Options options = kestrel::bench::parse_options(argc, argv);
    webkit_client::func_array = handlers();
    auto medians = kestrel::bench::measure(kMeasurements, options.smoke);
    medians["wrap_message"] = medians["wrap_message_and_destruction"].get<double>() -
                              medians["list_destruction"].get<double>();
    kestrel::bench::write_measurements(options.out, medians);
}
