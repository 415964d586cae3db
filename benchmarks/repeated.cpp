#include "benchmarks/repeated.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace kestrel::bench {
namespace {

constexpr int kRepetitions = 11;
constexpr double kSecondsOfOneRepetition = 0.05;
constexpr int kManualIterations = 25;

// Prints the table and keeps the medians.
class MedianReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.aggregate_name != "median") continue;
            medians_[run.run_name.function_name] = run.run_name.time_type == "manual_time"
                                                       ? run.GetAdjustedRealTime()
                                                       : run.GetAdjustedCPUTime();
        }
    }

    double median_of(const std::string& name) const { return medians_.at(name); }

  private:
    std::map<std::string, double> medians_;
};

void add(const Measurement& measurement, bool smoke) {
    auto* added = benchmark::RegisterBenchmark(measurement.name, measurement.function);
    added->Repetitions(smoke ? 2 : kRepetitions)->ReportAggregatesOnly();
    if (measurement.clock == Clock::manual) {
        added->UseManualTime()->Iterations(smoke ? 1 : kManualIterations);
    } else {
        added->MinTime(smoke ? 0.0001 : kSecondsOfOneRepetition);
    }
}

}  // namespace

Measurements measure(std::span<const Measurement> measurements, bool smoke) {
    for (const Measurement& measurement : measurements) add(measurement, smoke);
    std::string program = "bench";
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::array<char*, 3> arguments = {program.data(), interleaved.data(), nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments.data());
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);

    Measurements medians;
    for (const Measurement& measurement : measurements) {
        medians[measurement.name] = reporter.median_of(measurement.name) / measurement.batch;
    }
    return medians;
}

}  // namespace kestrel::bench
