// What a log line costs its caller: suppressed, against an empty call; emitted, against a bare
// write of the same bytes to the same kind of socket, and against two other ways to log.

#include <benchmark/benchmark.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "benchmarks/empty_call.h"
#include "benchmarks/own_syslog.h"
#include "benchmarks/repeated.h"
#include "benchmarks/sink.h"
#include "log/zynlog.h"
#include "log/zynlog_config.h"
#include "log/zynlog_paths.h"
#include "tests/support/temporary_directory.h"

namespace {

constexpr const char* kFormat = "Value of server_fd %d, retries left : %d\n";
constexpr std::size_t kRecordSize = 26 + 40;  // its fields, and "… 7, … 9\n" with its NUL

const kestrel::bench::Sink* sink = nullptr;

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

void syslog_line(benchmark::State& state) {
    for (auto _ : state) syslog(LOG_ERR, kFormat, 7, 9);
}

void spdlog_line(benchmark::State& state) {
    const auto syslog_sink = std::make_shared<spdlog::sinks::syslog_sink_mt>(
        "log-bench", LOG_CONS | LOG_PID, LOG_USER, false);
    spdlog::logger logger("bench", syslog_sink);
    for (auto _ : state) logger.error("Value of server_fd {}, retries left : {}\n", 7, 9);
}

constexpr std::array<kestrel::bench::Measurement, 7> kMeasurements{{
    {"empty_function_call", empty_function_call},
    {"suppressed_line", suppressed_line},
    {"suppressed_line_of_a_group", suppressed_line_of_a_group},
    {"bare_write", bare_write},
    {"emitted_line", emitted_line},
    {"syslog_line", syslog_line},
    {"spdlog_line", spdlog_line},
}};

std::span<const kestrel::bench::Measurement> measurable(bool has_syslog) {
    constexpr std::size_t kSyslogLines = 2;
    return std::span(kMeasurements).first(kMeasurements.size() - (has_syslog ? 0 : kSyslogLines));
}

}  // namespace

int main(int argc, char** argv) {
    const kestrel::bench::Options options = kestrel::bench::parse_options(argc, argv);
    const bool has_syslog = kestrel::bench::enter_own_dev();
    auto home = std::make_optional<kestrel::testing::TemporaryDirectory>();
    setenv("HOME", home->path().c_str(), 1);
    if (!std::string_view(GetSocketFilePath()).starts_with(home->path())) {
        std::fputs("The system-wide log directory is in use: not measured.\n", stderr);
        return EXIT_FAILURE;
    }
    const kestrel::bench::Sink daemon(GetSocketFilePath(), SOCK_STREAM);
    if (has_syslog) const kestrel::bench::Sink system_logger("/dev/log", SOCK_DGRAM);
    sink = &daemon;
    ZynLogInit();

    const auto medians = kestrel::bench::measure(measurable(has_syslog), options.smoke);
    kestrel::bench::write_measurements(options.out, medians);
    home.reset();
    std::fflush(stdout);
    _exit(EXIT_SUCCESS);  // the sinks' threads still read
}
