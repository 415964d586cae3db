#include "benchmarks/measurements.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string_view>

#include "benchmarks/require.h"

namespace kestrel::bench {

Options parse_options(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--smoke") {
            options.smoke = true;
        } else if (argument == "--out" && i + 1 < argc) {
            options.out = argv[++i];
        } else {
            std::fprintf(stderr, "usage: %s --out FILE [--smoke]\n", argv[0]);
            std::exit(EXIT_FAILURE);
        }
    }
    return options;
}

void write_measurements(const std::string& file, const Measurements& measurements) {
    if (file.empty()) return;
    std::ofstream out(file);
    out << measurements.dump(2) << '\n';
    out.close();
    require(!out.fail(), file);
}

double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

}  // namespace kestrel::bench
