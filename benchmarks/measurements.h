// Measurements and command-line options of a benchmark program.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kestrel::bench {

// Measurements by name. Times are in nanoseconds.
using Measurements = nlohmann::ordered_json;

struct Options {
    std::string out;     // --out FILE: receives the measurements
    bool smoke = false;  // --smoke: as brief as possible, only to check that everything runs
};

// Ends the program with an error line on unknown arguments.
Options parse_options(int argc, char** argv);

// Ends the program with an error line when the file cannot be written.
void write_measurements(const std::string& file, const Measurements& measurements);

// The upper median; 0 if there are no values.
double median(std::vector<double> values);

}  // namespace kestrel::bench
