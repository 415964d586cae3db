#include "benchmarks/page/host_figures.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"

namespace kestrel::bench {
namespace {

// Nanoseconds per call of `subject`, from the first call until the host has read the last byte.
double until_read(const PageView& view, PageHost& host, const std::string& subject, int calls,
                  std::size_t bytes) {
    host.expect(bytes * static_cast<std::size_t>(calls));
    const double start =
        view.number("return burst('" + subject + "', " + std::to_string(calls) + ")");
    return (host.finished_at() * kNanoseconds - start) / calls;
}

// Expressions as hosts send them: each carries its value, so that no two are alike. WebKit's
// function gets the same expressions, called.
struct Scripts {
    std::string answers;  // frames
    std::vector<std::string> evaluations;
};

Scripts distinct_scripts(int count) {
    static int value = 1'000'000;
    Scripts scripts;
    for (int i = 0; i < count; ++i) {
        const std::string call = "(answered)('value " + std::to_string(++value) + "')";
        const std::string expression = "(() => " + call + ")";
        const Frame answer =
            build_frame(to_page("answer"), {}, std::array{std::string_view(expression)});
        const std::span<const char> bytes = bytes_of(*answer);
        scripts.answers.append(bytes.data(), bytes.size());
        scripts.evaluations.push_back(expression + "()");
    }
    return scripts;
}

// The page is blocked when the unread bytes stop growing.
std::size_t unread_when_blocked(const PageHost& host) {
    constexpr int kQuietTurns = 25;
    constexpr auto kTurn = std::chrono::milliseconds(20);
    std::size_t unread = 0;
    for (int quiet = 0; quiet < kQuietTurns; ++quiet) {
        std::this_thread::sleep_for(kTurn);
        const std::size_t now = host.unread();
        if (now != unread || now == 0) quiet = 0;
        unread = now;
    }
    return unread;
}

}  // namespace

void measure_burst(const PageView& view, PageHost& host, int calls, int rounds, Measurements& to) {
    constexpr std::size_t kSize = sizeof(webkit_message) + 2 + 2 + 3;  // 'k', 'v', 'cb'
    view.run("bench.prepare(" + std::to_string(kSize) + ")");
    std::vector<double> called;
    std::vector<double> floors;
    for (int round = 0; round < rounds; ++round) {
        called.push_back(until_read(view, host, "call", calls, kSize));
        floors.push_back(until_read(view, host, "texts", calls, kSize));
    }
    to["burst_calls"] = median(called);
    to["burst_texts"] = median(floors);
}

void measure_answers(const PageView& view, PageHost& host, int answers, int rounds,
                     Measurements& to) {
    std::vector<double> delivered;
    std::vector<double> evaluated;
    std::vector<double> floors;
    for (int round = 0; round < rounds; ++round) {
        const Scripts scripts = distinct_scripts(answers);
        host.expect(sizeof(webkit_message) * static_cast<std::size_t>(answers));
        double start = monotonic_seconds();
        host.send(scripts.answers);
        delivered.push_back((host.finished_at() - start) * kNanoseconds / answers);
        start = monotonic_seconds();
        view.evaluate(scripts.evaluations);
        evaluated.push_back((monotonic_seconds() - start) * kNanoseconds / answers);
        floors.push_back(view.number("return timeOfEvaluations(" + std::to_string(answers) + ")"));
    }
    if (view.number("return answers") != 3.0 * answers * rounds) {
        std::fputs("Not every answer has called its callback.\n", stderr);
        std::exit(EXIT_FAILURE);
    }
    to["answers"] = median(delivered);
    to["evaluate_javascript"] = median(evaluated);
    to["evaluate_callback"] = median(floors);
}

void measure_pause(const PageView& view, PageHost& host, Measurements& to) {
    constexpr std::size_t kCalls = 40'000;
    constexpr std::size_t kFirst = 100'000;
    constexpr std::size_t kSize = sizeof(webkit_message) + 2 + 7 + 3;  // 'k', '100000', 'cb'
    host.set_task(PageHost::Task::keep);
    host.pause();
    host.expect(kCalls * kSize);
    // Delayed, because the page would block before this call returned.
    view.run("setTimeout(() => numbered(" + std::to_string(kCalls) + "), 100)");
    to["paused_calls"] = unread_when_blocked(host) / kSize;
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
