// What a page sees of the library, in a real WebKit: this program is the host.
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

#include "benchmarks/measurements.h"
#include "benchmarks/page/busy_page.h"
#include "benchmarks/page/host_figures.h"
#include "benchmarks/page/page_host.h"
#include "benchmarks/page/page_view.h"

namespace {

using kestrel::bench::Measurements;
using kestrel::bench::median;
using kestrel::bench::PageHost;
using kestrel::bench::PageView;

struct Effort {
    int starts = 5;        // of a web process
    int rounds = 15;       // of a page's measurements
    int call_rounds = 31;  // of those of a call
    int calls = 100'000;   // of a burst
    int answers = 5'000;
    int scripts = 60;  // to a busy page, with each load
    int attachments = 10'000;
    int largest = 10'000'000;  // payload
    int most = 1'000'000;      // calls
};

constexpr Effort kSmokeEffort{1, 1, 1, 1'000, 100, 2, 100, 1'000, 100};

// A host and a page, as long as they are needed.
struct Meeting {
    explicit Meeting(const std::string& client_directory) : host(client_directory) {}
    PageHost host;
    PageView view;
};

void add(const std::string& json, Measurements& to) { to.update(Measurements::parse(json)); }

// Loads the library in several web processes; the last one goes on.
std::unique_ptr<Meeting> measure_loading(const std::string& directory, int starts,
                                         Measurements& to) {
    std::map<std::string, std::vector<double>> seen;
    std::unique_ptr<Meeting> meeting;
    for (int start = 0; start < starts; ++start) {
        meeting.reset();
        meeting = std::make_unique<Meeting>(directory);
        const auto loaded = Measurements::parse(meeting->view.run(
            "await new Promise(quiet => setTimeout(quiet, 500)); return bench.load()"));
        for (const auto& [name, value] : loaded.items()) seen[name].push_back(value);
    }
    for (const auto& [name, values] : seen) to[name] = median(values);
    return meeting;
}

// The first attachments fill pools and caches; the later ones must add nothing. What WebKit does of
// its own meanwhile shows now and then, a leak would show every time.
void measure_attachments(const PageView& view, int count, Measurements& to) {
    constexpr int kRounds = 5;
    const std::string attach = "return bench.attach(" + std::to_string(count) + ")";
    view.run(attach);
    std::vector<double> times;
    std::vector<double> growths;
    double resident = view.number("return bench.resident()");
    for (int round = 0; round < kRounds; ++round) {
        times.push_back(view.number(attach));
        const double before = std::exchange(resident, view.number("return bench.resident()"));
        growths.push_back(resident - before);
    }
    to["attachment"] = median(times);
    to["attachments_bytes"] = median(growths);
}

void measure_all(const std::string& directory, const Effort& effort, Measurements& to) {
    const auto meeting = measure_loading(directory, effort.starts, to);
    PageView& view = meeting->view;
    PageHost& host = meeting->host;
    const std::string rounds = std::to_string(effort.rounds);
    const auto json_of = [&view](const std::string& call) {
        return view.run("return JSON.stringify(await " + call + ")");
    };

    add(json_of("callFigures(" + std::to_string(effort.call_rounds) + ")"), to);
    measure_burst(view, host, effort.calls, effort.rounds, to);
    host.set_task(PageHost::Task::echo);
    add(json_of("tripFigures(" + rounds + ")"), to);
    host.set_task(PageHost::Task::count);
    measure_answers(view, host, effort.answers, effort.rounds, to);
    measure_busy_pages(view, host, effort.scripts, to);
    to["payload_growth"] = Measurements::parse(
        json_of("payloadGrowth(" + rounds + ", " + std::to_string(effort.largest) + ")"));
    to["count_growth"] =
        Measurements::parse(json_of("countGrowth(" + std::to_string(effort.most) + ")"));
    measure_attachments(view, effort.attachments, to);
    measure_pause(view, host, to);
}

}  // namespace

// The environment is set before GTK starts a thread; web processes inherit it.
int main(int argc, char** argv) {
    const kestrel::bench::Options options = kestrel::bench::parse_options(argc, argv);
    std::string home = std::filesystem::temp_directory_path() / "page-bench-XXXXXX";
    if (mkdtemp(home.data()) == nullptr) return EXIT_FAILURE;
    const std::string client_directory = home + "/.QUOClient";
    std::filesystem::create_directory(client_directory);
    setenv("HOME", home.c_str(), 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("GSETTINGS_BACKEND", "memory", 1);
    gtk_init(&argc, &argv);

    Measurements measurements;
    measure_all(client_directory, options.smoke ? kSmokeEffort : Effort(), measurements);
    std::filesystem::remove_all(home);
    kestrel::bench::write_measurements(options.out, measurements);
}
