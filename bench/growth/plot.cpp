#include "bench/growth/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>

namespace chalkpane::growth {
namespace {

constexpr double width = 640.0;
constexpr double height = 400.0;
constexpr double left = 64.0;
constexpr double right = 200.0;  // room for the names
constexpr double top = 16.0;
constexpr double bottom = 44.0;

// Decades that hold a range of numbers.
struct Scale {
    int first = 99;
    int last = -99;
    double from;
    double to;

    void Hold(double number) {
        first = std::min(first, static_cast<int>(std::floor(std::log10(number))));
        last = std::max(last, static_cast<int>(std::ceil(std::log10(number))));
    }
    [[nodiscard]] double At(double number) const {
        return from + (to - from) * (std::log10(number) - first) / std::max(last - first, 1);
    }
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string Seconds(int decade) {
    static constexpr std::array<const char*, 4> units{"ns", "us", "ms", "s"};
    const int unit = std::clamp((decade + 9) / 3, 0, 3);
    return std::to_string(static_cast<long>(std::pow(10.0, decade + 9 - 3 * unit) + 0.5)) + " " +
           units[static_cast<std::size_t>(unit)];
}

void DrawGrid(std::FILE* file, const Scale& x, const Scale& y, const std::string& sizeLabel) {
    for (int decade = x.first; decade <= x.last; ++decade) {
        const double at = x.At(std::pow(10.0, decade));
        std::fprintf(file, "<path d=\"M%.1f %.1fV%.1f\" stroke=\"#ddd\"/>\n", at, y.to, y.from);
        std::fprintf(file, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">1e%d</text>\n", at, y.from + 16, decade);
    }
    for (int decade = y.first; decade <= y.last; ++decade) {
        const double at = y.At(std::pow(10.0, decade));
        std::fprintf(file, "<path d=\"M%.1f %.1fH%.1f\" stroke=\"#ddd\"/>\n", x.from, at, x.to);
        std::fprintf(file, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">%s</text>\n", x.from - 6, at + 4,
                     Seconds(decade).c_str());
    }
    std::fprintf(file, "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">%s</text>\n", (x.from + x.to) / 2,
                 y.from + 36, sizeLabel.c_str());
}

void DrawSeries(std::FILE* file, const Scale& x, const Scale& y, const Series& series, const char* colour) {
    const Point& largest = series.points.back();
    // Proportional to size, as far as it stays in the picture.
    const double lowest = std::pow(10.0, y.first);
    const double start = std::max(series.points.front().size, largest.size * lowest / largest.seconds);
    std::fprintf(file, "<path d=\"M%.1f %.1fL%.1f %.1f\" stroke=\"%s\" stroke-width=\"0.7\"/>\n", x.At(start),
                 y.At(largest.seconds * start / largest.size), x.At(largest.size), y.At(largest.seconds), colour);
    for (const Point& point : series.points)
        std::fprintf(file, "<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"%s\"/>\n", x.At(point.size),
                     y.At(point.seconds), colour);
}

}  // namespace

bool WritePlot(const std::string& path, const std::string& sizeLabel, const std::vector<Series>& all) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "w"));
    if (!file) return false;
    Scale x{.from = left, .to = width - right};
    Scale y{.from = height - bottom, .to = top};
    for (const Series& series : all) {
        for (const Point& point : series.points) {
            x.Hold(point.size);
            y.Hold(point.seconds);
        }
    }
    std::fprintf(file.get(),
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %.0f %.0f\" font-family=\"sans-serif\" "
                 "font-size=\"12\" fill=\"#222\">\n<rect width=\"100%%\" height=\"100%%\" fill=\"#fff\"/>\n",
                 width, height);
    DrawGrid(file.get(), x, y, sizeLabel);
    static constexpr std::array<const char*, 6> colours{"#1b6ca8", "#c0392b", "#2e8b57", "#8e44ad", "#b9770e", "#444"};
    for (std::size_t i = 0; i < all.size(); ++i) {
        const char* const colour = colours[i % colours.size()];
        DrawSeries(file.get(), x, y, all[i], colour);
        std::fprintf(file.get(), "<text x=\"%.1f\" y=\"%.1f\" fill=\"%s\">%s</text>\n", width - right + 12,
                     top + 14 + 18.0 * static_cast<double>(i), colour, all[i].name.c_str());
    }
    std::fprintf(file.get(), "</svg>\n");
    return std::ferror(file.get()) == 0;
}

double GrowthOfUnit(const Series& series) {
    const Point& largest = series.points.back();
    const Point* other = &series.points.front();
    for (const Point& point : series.points)
        if (point.size * 9.0 < largest.size) other = &point;
    return (largest.seconds / largest.size) / (other->seconds / other->size);
}

}  // namespace chalkpane::growth
