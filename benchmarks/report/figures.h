// The figures with their floors, peers and targets.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/measurements.h"

namespace kestrel::bench {

enum class Unit : std::uint8_t { time, bytes, number };

// A row. Without a floor the target, if any, is in the figure's own unit.
struct Figure {
    std::string_view title;
    std::string_view measurement;
    std::string_view against;                // in words
    std::array<std::string_view, 2> floors;  // measurements: the smaller of up to two
    std::optional<double> target;            // the highest ratio or value that passes
    Unit unit = Unit::time;
};

struct Judged {
    const Figure* figure;
    std::optional<double> value;
    std::optional<double> floor;
    std::optional<double> ratio;
    bool missed;  // over its target, or not measured

    std::string_view verdict() const;
};

std::vector<Judged> judge(const Measurements& measurements);

}  // namespace kestrel::bench
