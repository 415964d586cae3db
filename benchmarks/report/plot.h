#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestrel::bench {

struct Series {
    std::string name;
    std::vector<std::pair<double, double>> points;  // all above 0
};

struct Plot {
    std::string title;
    std::string across;  // what x is
    std::string up;      // what y is
    std::vector<Series> series;
};

// The text of an SVG picture, both axes logarithmic.
std::string svg(const Plot& plot);

}  // namespace kestrel::bench
