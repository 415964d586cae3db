// What a page sees of the library, in a real WebKit: this program is the host.
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/measurements.h"
#include "benchmarks/page/busy_page.h"
#include "benchmarks/page/host_figures.h"
#include "benchmarks/page/page_session.h"

namespace {

using kestrel::bench::Measurements;
using kestrel::bench::median;
using kestrel::bench::PageEnvironment;
using kestrel::bench::PageHost;
using kestrel::bench::PageSession;
using kestrel::bench::PageView;

struct Effort {
    int rounds = 15;
    int call_rounds = 31;  // of page calls
    int burst_calls = 100'000;
    int answers = 5'000;
    int scripts = 60;  // to a busy page, per load
    int attachments = 10'000;
    int largest_payload = 10'000'000;
    int most_calls = 1'000'000;
};

constexpr Effort kSmokeEffort{1, 1, 1'000, 100, 2, 100, 1'000, 100};

void add(const std::string& json, Measurements& to) { to.update(Measurements::parse(json)); }

// The first attachments fill pools and caches; later ones must add nothing. The median ignores
// single growths, which are WebKit's own: a leak shows in every round.
void measure_attachments(const PageView& view, int count, Measurements& to) {
    constexpr int kRounds = 5;
    const std::string attach = "return bench.attach(" + std::to_string(count) + ")";
    view.run(attach);
    std::vector<double> times;
    std::vector<double> growths;
    double memory = view.number("return bench.privateMemory()");
    for (int round = 0; round < kRounds; ++round) {
        times.push_back(view.number(attach));
        const double before = std::exchange(memory, view.number("return bench.privateMemory()"));
        growths.push_back(memory - before);
    }
    to["attachment"] = median(times);
    to["attachments_bytes"] = median(growths);
}

Measurements measure(const PageEnvironment& environment, const Effort& effort) {
    PageSession session(environment, KESTREL_EXTENSION);
    PageView& view = session.view;
    PageHost& host = session.host;
    const std::string rounds = std::to_string(effort.rounds);
    const auto json_of = [&view](const std::string& call) {
        return view.run("return JSON.stringify(await " + call + ")");
    };

    Measurements all;
    view.run("bench.load()");
    add(json_of("callFigures(" + std::to_string(effort.call_rounds) + ")"), all);
    measure_burst(view, host, effort.burst_calls, effort.rounds, all);
    host.set_task(PageHost::Task::echo);
    add(json_of("tripFigures(" + rounds + ")"), all);
    host.set_task(PageHost::Task::count);
    measure_answers(view, host, effort.answers, effort.rounds, all);
    measure_busy_pages(view, host, effort.scripts, all);
    all["payload_growth"] = Measurements::parse(
        json_of("payloadGrowth(" + rounds + ", " + std::to_string(effort.largest_payload) + ")"));
    all["count_growth"] =
        Measurements::parse(json_of("countGrowth(" + std::to_string(effort.most_calls) + ")"));
    measure_attachments(view, effort.attachments, all);
    measure_pause(view, host, all);
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    const kestrel::bench::Options options = kestrel::bench::parse_options(argc, argv);
    const PageEnvironment environment;
    kestrel::bench::write_measurements(
        options.out, measure(environment, options.smoke ? kSmokeEffort : Effort()));
}
