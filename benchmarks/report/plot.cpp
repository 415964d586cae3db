#include "benchmarks/report/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

namespace kestrel::bench {
namespace {

constexpr double kWidth = 720;
constexpr double kHeight = 420;
constexpr double kLeft = 80;
constexpr double kRight = 20;
constexpr double kTop = 50;
constexpr double kBottom = 60;

constexpr std::array kColours = {"#1f5fa8", "#b35c00", "#3a7d34", "#7a3f9d"};

template <typename... Values>
std::string format(const char* text, Values... values) {
    std::array<char, 512> buffer;
    std::snprintf(buffer.data(), buffer.size(), text, values...);
    return buffer.data();
}

// Whole powers of ten around all values, on their place of the picture.
class Axis {
  public:
    Axis(double from, double to) : from_(from), to_(to) {}

    void include(double value) {
        first_ = std::min(first_, static_cast<int>(std::floor(std::log10(value))));
        last_ = std::max(last_, static_cast<int>(std::ceil(std::log10(value))));
    }
    double place(double value) const {
        const double decades = std::max(last_ - first_, 1);
        return from_ + (to_ - from_) * (std::log10(value) - first_) / decades;
    }
    int first() const { return first_; }
    int last() const { return last_; }

  private:
    double from_;
    double to_;
    int first_ = std::numeric_limits<int>::max();
    int last_ = std::numeric_limits<int>::min();
};

// 1, 10, 100, 1k, ... 1G
std::string power_of_ten(int exponent) {
    constexpr std::array kUnits = {"", "k", "M", "G"};
    const auto thousands = static_cast<std::size_t>(std::clamp(exponent, 0, 11)) / 3;
    return format("%.0f%s", std::pow(10.0, exponent - 3 * static_cast<int>(thousands)),
                  kUnits[thousands]);
}

std::string text(double x, double y, const char* attributes, const std::string& content) {
    return format("<text x=\"%.1f\" y=\"%.1f\" %s>%s</text>\n", x, y, attributes, content.c_str());
}

std::string line(double x1, double y1, double x2, double y2) {
    return format("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" stroke=\"#d8d8d8\"/>\n",
                  x1, y1, x2, y2);
}

std::string grid(const Axis& across, const Axis& up) {
    std::string picture;
    for (int power = across.first(); power <= across.last(); ++power) {
        const double x = across.place(std::pow(10.0, power));
        picture += line(x, kTop, x, kHeight - kBottom);
        picture += text(x, kHeight - kBottom + 18, "text-anchor=\"middle\"", power_of_ten(power));
    }
    for (int power = up.first(); power <= up.last(); ++power) {
        const double y = up.place(std::pow(10.0, power));
        picture += line(kLeft, y, kWidth - kRight, y);
        picture += text(kLeft - 8, y + 4, "text-anchor=\"end\"", power_of_ten(power));
    }
    return picture;
}

std::string curve(const Series& series, const Axis& across, const Axis& up, const char* colour) {
    std::string points;
    std::string dots;
    for (const auto& [x, y] : series.points) {
        points += format("%.1f,%.1f ", across.place(x), up.place(y));
        dots += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"%s\"/>\n", across.place(x),
                       up.place(y), colour);
    }
    return "<polyline fill=\"none\" stroke=\"" + std::string(colour) +
           "\" stroke-width=\"2\" points=\"" + points + "\"/>\n" + dots;
}

}  // namespace

std::string svg(const Plot& plot) {
    Axis across(kLeft, kWidth - kRight);
    Axis up(kHeight - kBottom, kTop);
    for (const Series& series : plot.series) {
        for (const auto& [x, y] : series.points) {
            across.include(x);
            up.include(y);
        }
    }
    std::string picture = format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %.0f %.0f\" "
        "font-family=\"sans-serif\" font-size=\"12\">\n"
        "<rect width=\"100%%\" height=\"100%%\" fill=\"white\"/>\n",
        kWidth, kHeight);
    picture += text(kLeft, 22, "font-size=\"15\"", plot.title);
    picture += grid(across, up);
    picture +=
        text((kLeft + kWidth - kRight) / 2, kHeight - 14, "text-anchor=\"middle\"", plot.across);
    picture += format("<text transform=\"translate(18 %.0f) rotate(-90)\" text-anchor=\"middle\">",
                      (kTop + kHeight - kBottom) / 2) +
               plot.up + "</text>\n";
    for (std::size_t i = 0; i < plot.series.size(); ++i) {
        const char* colour = kColours[i % kColours.size()];
        picture += curve(plot.series[i], across, up, colour);
        const std::string attributes = std::string("fill=\"") + colour + '"';
        picture +=
            text(kLeft + 240 * static_cast<double>(i), 42, attributes.c_str(), plot.series[i].name);
    }
    return picture + "</svg>\n";
}

}  // namespace kestrel::bench
