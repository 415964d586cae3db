// Google Benchmark, as this project uses it: all measurements repeated and interleaved at random,
// the median of each kept.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <span>

#include "benchmarks/measurements.h"

namespace kestrel::bench {

enum class Clock : std::uint8_t {
    own_time,  // processor time of the thread that runs the measurement
    manual,    // what the measurement sets; each iteration is worth milliseconds
};

struct Measurement {
    const char* name;
    void (*function)(benchmark::State&);
    Clock clock = Clock::own_time;
    int batch = 1;  // what one iteration does that often; the median is of one
};

// The median of each in nanoseconds, by name.
Measurements measure(std::span<const Measurement> measurements, bool smoke);

}  // namespace kestrel::bench
