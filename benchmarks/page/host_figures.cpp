#include "benchmarks/page/host_figures.h"

#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"

namespace kestrel::bench {
namespace {

// Nanoseconds a call of `script`, which returns when it started, until the host has `bytes`.
double until_read(const PageView& view, PageHost& host, const std::string& script, int calls,
                  std::size_t bytes) {
    host.expect(bytes * static_cast<std::size_t>(calls));
    const double start = view.number(script);
    return (host.finished_at() * kNanoseconds - start) / calls;
}

std::string answers_in_a_row(int count) {
    const Frame answer =
        build_frame(to_page("answer"), {}, std::array{std::string_view("answered")});
    const std::span<const char> bytes = bytes_of(*answer);
    std::string all;
    for (int i = 0; i < count; ++i) all.append(bytes.data(), bytes.size());
    return all;
}

// The page is stuck when what waits for the host has stopped growing.
std::size_t waiting_when_stuck(const PageHost& host) {
    constexpr int kQuietTurns = 25;
    constexpr auto kTurn = std::chrono::milliseconds(20);
    std::size_t waiting = 0;
    for (int quiet = 0; quiet < kQuietTurns; ++quiet) {
        std::this_thread::sleep_for(kTurn);
        const std::size_t now = host.waiting();
        if (now != waiting || now == 0) quiet = 0;
        waiting = now;
    }
    return waiting;
}

}  // namespace

void measure_burst(const PageView& view, PageHost& host, int calls, int rounds, Measurements& to) {
    constexpr std::size_t kSize = sizeof(webkit_message) + 2 + 2 + 3;  // 'k', 'v', 'cb'
    const std::string count = std::to_string(calls);
    view.run("bench.prepare(" + std::to_string(kSize) + ")");
    const std::pair<const char*, std::string> bursts[] = {
        {"burst_calls", "return burst(" + count + ")"},
        {"burst_writes", "return bench.writeMany(" + count + ")"},
    };
    std::map<std::string, std::vector<double>> times;
    for (int round = 0; round < rounds; ++round) {
        for (const auto& [name, script] : bursts) {
            times[name].push_back(until_read(view, host, script, calls, kSize));
        }
    }
    for (const auto& [name, measured] : times) to[name] = median(measured);
}

void measure_answers(const PageView& view, PageHost& host, int answers, int rounds,
                     Measurements& to) {
    view.run("window.answered = () => {}");
    const std::string bytes = answers_in_a_row(answers);
    std::vector<double> delivered;
    std::vector<double> evaluated;
    for (int round = 0; round < rounds; ++round) {
        host.expect(sizeof(webkit_message) * static_cast<std::size_t>(answers));
        double start = monotonic_seconds();
        host.send(bytes);
        delivered.push_back((host.finished_at() - start) * kNanoseconds / answers);
        start = monotonic_seconds();
        view.evaluate("answered()", answers);
        evaluated.push_back((monotonic_seconds() - start) * kNanoseconds / answers);
    }
    to["answers"] = median(delivered);
    to["evaluate_javascript"] = median(evaluated);
}

void measure_pause(const PageView& view, PageHost& host, Measurements& to) {
    constexpr std::size_t kCalls = 40'000;
    constexpr std::size_t kFirst = 100'000;
    constexpr std::size_t kSize = sizeof(webkit_message) + 2 + 7 + 3;  // 'k', '100000', 'cb'
    host.set_task(PageHost::Task::keep);
    host.pause();
    host.expect(kCalls * kSize);
    // Later, or the page would be stuck before this call of it has returned.
    view.run("setTimeout(() => numbered(" + std::to_string(kCalls) + "), 100)");
    to["paused_calls"] = waiting_when_stuck(host) / kSize;
    host.resume();
    host.finished_at();
    std::size_t in_order = 0;
    for (const std::string& payload : host.kept()) {
        const std::string value = std::to_string(kFirst + in_order);
        if (payload == std::string("k\0", 2) + value + std::string("\0cb\0", 4)) ++in_order;
    }
    to["paused_lost"] = kCalls - in_order;
    host.set_task(PageHost::Task::count);
}

}  // namespace kestrel::bench
