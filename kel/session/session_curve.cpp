#include "kel/session/session_curve.h"

#include <cmath>

namespace kel {
namespace {

constexpr std::size_t stepsBetweenPoints = 16;

// One coordinate of the spline at t (0 .. 1) between `b` and `c`.
double Spline(double a, double b, double c, double d, double t) {
    return b + 0.5 * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
}

double Distance(const SessionPoint& from, const SessionPoint& to) { return std::hypot(to.x - from.x, to.y - from.y); }

}  // namespace

std::vector<SessionPoint> CurveThrough(const std::vector<SessionPoint>& points) {
    if (points.size() < 3) return points;
    const std::size_t last = points.size() - 1;
    const bool closed = Distance(points.front(), points.back()) == 0.0;
    const SessionPoint& beforeFirst = closed ? points[last - 1] : points[0];
    const SessionPoint& afterLast = closed ? points[1] : points[last];
    std::vector<SessionPoint> curve = {points[0]};
    for (std::size_t i = 0; i < last; ++i) {
        const SessionPoint& before = i == 0 ? beforeFirst : points[i - 1];
        const SessionPoint& after = i + 1 == last ? afterLast : points[i + 2];
        for (std::size_t step = 1; step <= stepsBetweenPoints; ++step) {
            const double t = static_cast<double>(step) / stepsBetweenPoints;
            curve.push_back({Spline(before.x, points[i].x, points[i + 1].x, after.x, t),
                             Spline(before.y, points[i].y, points[i + 1].y, after.y, t)});
        }
    }
    return curve;
}

std::vector<SessionPoint> SpreadAlong(const std::vector<SessionPoint>& path, std::size_t steps) {
    double length = 0.0;
    for (std::size_t i = 1; i < path.size(); ++i) length += Distance(path[i - 1], path[i]);

    std::vector<SessionPoint> places;
    places.reserve(steps + 1);
    std::size_t next = 1;  // the end of the straight piece that the next place lies on
    double passed = 0.0;   // the length up to the start of that piece
    for (std::size_t step = 0; step < steps; ++step) {
        const double wanted = length * static_cast<double>(step) / static_cast<double>(steps);
        while (next < path.size() && passed + Distance(path[next - 1], path[next]) <= wanted) {
            passed += Distance(path[next - 1], path[next]);
            ++next;
        }
        if (next >= path.size()) {
            places.push_back(path.back());
            continue;
        }
        const SessionPoint& from = path[next - 1];
        const SessionPoint& to = path[next];
        const double t = (wanted - passed) / Distance(from, to);
        places.push_back({from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t});
    }
    places.push_back(path.back());
    return places;
}

}  // namespace kel
