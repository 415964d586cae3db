// bench-report --results DIRECTORY [--smoke]: reads the measurements of the benchmark programs from
// DIRECTORY, prints them as one table, and writes results.json and the data of the plots there.
// Fails when a target is missed; --smoke ignores the targets.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "benchmarks/report/figures.h"
#include "benchmarks/require.h"

namespace {

using kestrel::bench::Judged;
using kestrel::bench::Measurements;
using kestrel::bench::Unit;

struct Arguments {
    std::filesystem::path results;
    bool smoke = false;
};

Arguments parse(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--smoke") arguments.smoke = true;
        if (argument == "--results" && i + 1 < argc) arguments.results = argv[++i];
    }
    return arguments;
}

Measurements read_all(const std::filesystem::path& results) {
    Measurements all;
    for (const char* subject : {"log", "frame", "loading", "page"}) {
        std::ifstream file(results / (std::string(subject) + ".json"));
        all.update(Measurements::parse(file));
    }
    return all;
}

std::string format(const char* text, double value) {
    std::string buffer(32, '\0');
    buffer.resize(
        static_cast<std::size_t>(std::snprintf(buffer.data(), buffer.size(), text, value)));
    return buffer;
}

std::string shown_time(double nanoseconds) {
    if (nanoseconds < 1e3) return format("%.3g ns", nanoseconds);
    if (nanoseconds < 1e6) return format("%.3g us", nanoseconds / 1e3);
    return format("%.3g ms", nanoseconds / 1e6);
}

std::string shown(std::optional<double> value, Unit unit) {
    if (!value) return "-";
    if (unit == Unit::time) return shown_time(*value);
    if (unit == Unit::bytes) return format("%.0f KiB", *value / 1024);
    return format("%.0f", *value);
}

std::string shown_ratio(const std::optional<double>& ratio) {
    return ratio ? format("%.3g", *ratio) : "-";
}

std::string shown_target(const Judged& judged) {
    if (!judged.figure->target) return "-";
    const bool is_ratio = !judged.figure->floors[0].empty();
    return is_ratio ? shown_ratio(judged.figure->target)
                    : shown(judged.figure->target, judged.figure->unit);
}

// As a Markdown table, for the note.
void print(const std::vector<Judged>& all) {
    constexpr const char* kRow = "| %-37s | %9s | %-42s | %9s | %6s | %7s | %-8s |\n";
    std::printf(kRow, "figure", "", "against", "", "ratio", "target", "verdict");
    std::puts("|---|---|---|---|---|---|---|");
    for (const Judged& judged : all) {
        std::printf(kRow, std::string(judged.figure->title).c_str(),
                    shown(judged.value, judged.figure->unit).c_str(),
                    std::string(judged.figure->against).c_str(),
                    shown(judged.floor, judged.figure->unit).c_str(),
                    shown_ratio(judged.ratio).c_str(), shown_target(judged).c_str(),
                    std::string(judged.verdict()).c_str());
    }
}

Measurements or_null(const std::optional<double>& value) {
    return value ? Measurements(*value) : Measurements(nullptr);
}

Measurements json_of(const std::vector<Judged>& all) {
    Measurements rows = Measurements::array();
    for (const Judged& judged : all) {
        rows.push_back({{"figure", judged.figure->title},
                        {"value", or_null(judged.value)},
                        {"against", judged.figure->against},
                        {"floor", or_null(judged.floor)},
                        {"ratio", or_null(judged.ratio)},
                        {"target", or_null(judged.figure->target)},
                        {"verdict", judged.verdict()}});
    }
    return rows;
}

// Columns for gnuplot: x, time of a page call, time of the floor at the same x.
void write_growth(const std::filesystem::path& file, const Measurements& growth) {
    std::ofstream out(file);
    const Measurements& calls = growth["call"];
    const Measurements& floors = growth["texts"];
    for (std::size_t i = 0; i < calls.size(); ++i) {
        out << calls[i][0] << ' ' << calls[i][1] << ' ' << floors[i][1] << '\n';
    }
    out.close();
    kestrel::bench::require(!out.fail(), file);
}

}  // namespace

int main(int argc, char** argv) {
    const Arguments arguments = parse(argc, argv);
    const Measurements measurements = read_all(arguments.results);
    const std::vector<Judged> all = kestrel::bench::judge(measurements);
    print(all);
    kestrel::bench::write_measurements(arguments.results / "results.json",
                                       {{"figures", json_of(all)}, {"measurements", measurements}});
    write_growth(arguments.results / "payload-growth.dat", measurements["payload_growth"]);
    write_growth(arguments.results / "count-growth.dat", measurements["count_growth"]);
    const bool missed = std::ranges::any_of(all, &Judged::missed);
    return missed && !arguments.smoke ? EXIT_FAILURE : EXIT_SUCCESS;
}
