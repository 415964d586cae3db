// What a benchmark program has measured, and how it is told what to do.
#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace kestrel::bench {

// Measurements by name. Times are nanoseconds; sizes say so in their names.
using Measurements = nlohmann::ordered_json;

struct Options {
    std::string out;     // --out FILE: where the measurements go
    bool smoke = false;  // --smoke: as short as can be, to see that everything runs
};

// Ends the program with a line on standard error on anything else.
Options parse_options(int argc, char** argv);

// Ends the program with a line on standard error when the file cannot be written.
void write_measurements(const std::string& file, const Measurements& measurements);

// The middle one, or the higher of the two; 0 of none.
double median(std::vector<double> values);

}  // namespace kestrel::bench
