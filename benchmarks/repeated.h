// Google Benchmark with repetitions in random order; results are medians.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>

#include "benchmarks/measurements.h"

namespace kestrel::bench {

enum class Clock : std::uint8_t {
    own_time,  // processor time of the thread that runs the measurement
    manual,    // set by the measurement; an iteration takes milliseconds
};

struct Measurement {
    const char* name;
    void (*function)(benchmark::State&);
    Clock clock = Clock::own_time;
    int batch = 1;  // operations per iteration; the median is per operation
};

// Medians in nanoseconds, by name.
Measurements measure(std::span<const Measurement> measurements, bool smoke);

}  // namespace kestrel::bench
