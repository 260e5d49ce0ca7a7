#pragma once

#include <string>
#include <vector>

namespace chalkpane::growth {

// A size, and the processor seconds that it took.
struct Point {
    double size;
    double seconds;
};

struct Series {
    std::string name;
    std::vector<Point> points;  // by ascending size
};

// Both scales are logarithmic, and each series has a thin line beside it: what it would take if cost were proportional
// to size all the way from its largest point.
//
//   path   an SVG file, which is replaced
//
// False: the file could not be written.
[[nodiscard]] bool WritePlot(const std::string& path, const std::string& sizeLabel, const std::vector<Series>& all);

// How much more a unit of the largest size takes than one of a size ten times smaller or the nearest there is.
[[nodiscard]] double GrowthOfUnit(const Series& series);

}  // namespace chalkpane::growth
