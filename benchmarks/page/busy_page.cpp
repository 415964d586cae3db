#include "benchmarks/page/busy_page.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "ipc/frame.h"
#include "ipc/frame_builder.h"

namespace kestrel::bench {
namespace {

// Runs the main loop, which WebKit needs to render frames.
void run_for(double seconds) {
    const double end = monotonic_seconds() + seconds;
    while (monotonic_seconds() < end) g_main_context_iteration(nullptr, FALSE);
}

double time_to_effect(PageHost& host, const Frame& script) {
    host.expect(sizeof(webkit_message));
    const std::span<const char> bytes = bytes_of(*script);
    const double start = monotonic_seconds();
    host.send({bytes.data(), bytes.size()});
    while (!host.has_finished()) g_main_context_iteration(nullptr, FALSE);
    return (host.finished_at() - start) * kNanoseconds;
}

// The pauses vary, so that scripts arrive at different moments of the page's work.
std::vector<double> times_to_effect(PageHost& host, int scripts) {
    constexpr double kPause = 0.0137;
    const Frame script =
        build_frame(to_page("script"), {}, std::array{std::string_view("external.refresh()")});
    std::vector<double> times;
    for (int i = 0; i < scripts; ++i) {
        times.push_back(time_to_effect(host, script));
        run_for(kPause * (1 + i % 3));
    }
    return times;
}

}  // namespace

void measure_busy_pages(const PageView& view, PageHost& host, int scripts, Measurements& to) {
    to["script_quiet"] = median(times_to_effect(host, scripts));
    double highest = 0;
    double longest = 0;
    for (const char* load : {"frames8", "frames16", "frames30", "timers", "messages", "channel"}) {
        view.run("keepBusy('" + std::string(load) + "')");
        const std::vector<double> times = times_to_effect(host, scripts);
        view.run("calmDown()");
        highest = std::max(highest, median(times));
        longest = std::max(longest, std::ranges::max(times));
    }
    to["script_busy"] = highest;
    to["script_busy_longest"] = longest;
}

}  // namespace kestrel::bench
