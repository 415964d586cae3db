// What loading the extension costs a web process: time, relocations and memory, measured in several
// web processes.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "benchmarks/measurements.h"
#include "benchmarks/page/page_session.h"

namespace {

using kestrel::bench::Measurements;
using kestrel::bench::median;
using kestrel::bench::PageEnvironment;
using kestrel::bench::PageSession;

// What is still allocated after the page's start is freed during this time.
constexpr const char* kSettle = "await new Promise(done => setTimeout(done, 500));";

double memory_added(const PageSession& session, const std::string& call) {
    return session.view.number(kSettle + ("return memoryAdded(" + call + ")"));
}

Measurements measure_loading(const PageEnvironment& environment, int starts) {
    std::map<std::string, std::vector<double>> figures;
    std::vector<double> empty;
    std::vector<double> loaded;
    for (int start = 0; start < starts; ++start) {
        const PageSession baseline(environment, BENCH_EMPTY_LIBRARY);
        empty.push_back(memory_added(baseline, "CALLS.nothing"));
    }
    for (int start = 0; start < starts; ++start) {
        const PageSession session(environment, KESTREL_EXTENSION);
        const auto loading = Measurements::parse(session.view.run("return bench.loadingFigures()"));
        for (const auto& [name, value] : loading.items()) figures[name].push_back(value);
        loaded.push_back(memory_added(session, "CALLS.call"));
    }
    Measurements medians;
    for (const auto& [name, values] : figures) medians[name] = median(values);
    // Other work of the process during a measurement adds memory, so the smallest is the truest.
    medians["private_bytes"] = std::ranges::min(loaded) - std::ranges::min(empty);
    return medians;
}

}  // namespace

int main(int argc, char** argv) {
    const kestrel::bench::Options options = kestrel::bench::parse_options(argc, argv);
    // WebKit's own allocator returns memory at times of its own, which would hide the extension's.
    setenv("Malloc", "1", 1);
    const PageEnvironment environment;
    kestrel::bench::write_measurements(options.out,
                                       measure_loading(environment, options.smoke ? 1 : 7));
}
