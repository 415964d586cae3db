// What a log line costs its caller: suppressed, against an empty call; emitted, against a bare
// write of the same bytes to the same kind of socket.

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "bench/empty_call.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"

namespace {

constexpr const char* kFormat = "Value of server_fd %d, retries left : %d\n";
constexpr std::size_t kRecordSize = 26 + 40;  // its fields, and "… 7, … 9\n" with its NUL

// Takes connections and whatever comes through them, as a daemon that is never late.
class Sink {
  public:
    explicit Sink(const std::string& path) : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address_.sun_family = AF_UNIX;
        path.copy(address_.sun_path, sizeof address_.sun_path - 1);
        if (bind(fd_, name(), sizeof address_) == -1 || listen(fd_, 8) == -1) {
            std::perror(path.c_str());
            std::exit(1);
        }
        std::thread([this] {
            for (int peer = accept(fd_, nullptr, nullptr); peer != -1;
                 peer = accept(fd_, nullptr, nullptr)) {
                std::thread(drain, peer).detach();
            }
        }).detach();
    }

    int connect_to() const {
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (connect(fd, name(), sizeof address_) == -1) std::exit(1);
        return fd;
    }

  private:
    const sockaddr* name() const { return reinterpret_cast<const sockaddr*>(&address_); }

    static void drain(int peer) {
        std::array<char, 65'536> bytes;
        while (read(peer, bytes.data(), bytes.size()) > 0) {
        }
    }

    sockaddr_un address_{};
    int fd_;
};

const Sink* sink = nullptr;

void empty_function_call(benchmark::State& state) {
    for (auto _ : state) {
        empty_call(kestrel::kLogWebkit, kestrel::kVerbose, "", "", 0, kFormat, 7, 9);
    }
}

void suppressed_line(benchmark::State& state) {
    for (auto _ : state) {
        __ZynTrace(kestrel::kLogWebkit, kestrel::kVerbose, "", "", 0, kFormat, 7, 9);
    }
}

// The longest walk that there is: a class, its group, the root.
void suppressed_line_of_a_group(benchmark::State& state) {
    for (auto _ : state) {
        __ZynTrace(kestrel::kLogKestrelExtension, kestrel::kVerbose, "", "", 0, kFormat, 7, 9);
    }
}

void bare_write(benchmark::State& state) {
    const int fd = sink->connect_to();
    const std::array<char, kRecordSize> bytes{};
    for (auto _ : state) benchmark::DoNotOptimize(write(fd, bytes.data(), bytes.size()));
    close(fd);
}

void emitted_line(benchmark::State& state) {
    for (auto _ : state) {
        __ZynTrace(kestrel::kLogWebkit, kestrel::kError, "", "", 0, kFormat, 7, 9);
    }
}

// Shows the table and keeps the medians of the caller's own time.
class MedianReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") {
                medians_[run.run_name.function_name] = run.GetAdjustedCPUTime();
            }
        }
    }

    void print_ratio(const char* name, const char* floor) const {
        if (!medians_.contains(name) || !medians_.contains(floor)) return;
        std::printf("%-28s %6.2f x %s\n", name, medians_.at(name) / medians_.at(floor), floor);
    }

  private:
    std::map<std::string, double> medians_;
};

struct Measurement {
    const char* name;
    void (*function)(benchmark::State&);
};

constexpr std::array<Measurement, 5> kMeasurements{{
    {"empty_function_call", empty_function_call},
    {"suppressed_line", suppressed_line},
    {"suppressed_line_of_a_group", suppressed_line_of_a_group},
    {"bare_write", bare_write},
    {"emitted_line", emitted_line},
}};

void register_benchmarks() {
    for (const Measurement& measurement : kMeasurements) {
        benchmark::RegisterBenchmark(measurement.name, measurement.function)
            ->Repetitions(9)
            ->ReportAggregatesOnly()
            ->MinTime(0.2);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::string home = std::filesystem::temp_directory_path() / "log-bench-XXXXXX";
    if (mkdtemp(home.data()) == nullptr) return 1;
    setenv("HOME", home.c_str(), 1);
    if (!std::string_view(GetSocketFilePath()).starts_with(home)) {
        std::fputs("The system-wide log directory is in use: not measured.\n", stderr);
        return 1;
    }
    const Sink daemon(GetSocketFilePath());
    sink = &daemon;
    ZynLogInit();

    register_benchmarks();
    benchmark::Initialize(&argc, argv);
    MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::puts("");
    reporter.print_ratio("suppressed_line", "empty_function_call");
    reporter.print_ratio("suppressed_line_of_a_group", "empty_function_call");
    reporter.print_ratio("emitted_line", "bare_write");
    std::fflush(stdout);
    std::filesystem::remove_all(home);
    _exit(0);  // the sink's threads still read
}
