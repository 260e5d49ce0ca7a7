#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

// Where segments may meet others: their bounds, a little wider, since the difference between two points is rounded.
// A segment without length meets none.
struct Bounds {
    static constexpr double nowhere = std::numeric_limits<double>::infinity();
    double minX = nowhere, minY = nowhere, maxX = -nowhere, maxY = -nowhere;

    [[nodiscard]] bool IsEmpty() const { return minX > maxX; }
    [[nodiscard]] bool Meets(const Bounds& other) const {
        return minX <= other.maxX && other.minX <= maxX && minY <= other.maxY && other.minY <= maxY;
    }
    void Include(const Bounds& other) {
        minX = std::min(minX, other.minX);
        minY = std::min(minY, other.minY);
        maxX = std::max(maxX, other.maxX);
        maxY = std::max(maxY, other.maxY);
    }
};

Bounds BoundsOf(const Vector3& a, const Vector3& b) {
    if (a.x == b.x && a.y == b.y) return {};
    constexpr double ofLength = 1e-6;
    constexpr double ofPlace = 1e-12;
    const auto [lowX, highX] = std::minmax({double{a.x}, double{b.x}});
    const auto [lowY, highY] = std::minmax({double{a.y}, double{b.y}});
    const double room = ofLength * (highX - lowX + highY - lowY) +
                        ofPlace * (std::abs(lowX) + std::abs(highX) + std::abs(lowY) + std::abs(highY));
    return {lowX - room, lowY - room, highX + room, highY + room};
}

// The bounds of runs of segments, and of runs of such runs: most pairs of segments are told apart by far fewer tests.
class SegmentRuns {
public:
    static constexpr std::size_t runLength = 16;

    explicit SegmentRuns(std::span<const Vector3> points) {
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const Bounds bounds = BoundsOf(points[i], points[i + 1]);
            runs_[i / runLength].Include(bounds);
            groups_[i / (runLength * runLength)].Include(bounds);
        }
    }

    // The first of the segments up to `segment`, that one included, none of which surely meets what lies in `bounds`;
    // the next one when there is no such thing. Looks no further down than the run of `segment` or its group.
    [[nodiscard]] std::size_t FirstApart(std::size_t segment, const Bounds& bounds) const {
        constexpr std::size_t groupLength = runLength * runLength;
        if (!groups_[segment / groupLength].Meets(bounds)) return segment / groupLength * groupLength;
        if (!runs_[segment / runLength].Meets(bounds)) return segment / runLength * runLength;
        return segment + 1;
    }

private:
    static constexpr std::size_t runCount = recognitionPointLimit / runLength + 1;
    std::array<Bounds, runCount> runs_;
    std::array<Bounds, runCount / runLength + 1> groups_;
};

// Early segments against late ones, latest first: that is what a cross of two strokes looks like in the joined points.
// KEEP: a closed loop whose ends cross passes, too.
std::optional<Vector3> FindSelfCrossing(std::span<const Vector3> points) {
    const SegmentRuns runs(points);
    Vector3 crossing;
    for (std::size_t i = 0; i < points.size() / 2; ++i) {
        const Bounds bounds = BoundsOf(points[i], points[i + 1]);
        if (bounds.IsEmpty()) continue;
        for (std::size_t end = points.size() - 1; end > i + 3; --end) {
            const std::size_t j = end - 1;
            if (const std::size_t apart = runs.FirstApart(j, bounds); apart <= j) {
                end = apart + 1;
            } else if (SegmentsIntersect(points[i], points[i + 1], points[j], points[j + 1], crossing)) {
                return crossing;
            }
        }
    }
    return std::nullopt;
}

double GreatestDistance(std::span<const Vector3> points, const Vector3& from) {
    double greatest = 0;
    for (const Vector3& point : points) greatest = std::max(greatest, (from - point).Length());
    return greatest;
}

}  // namespace

bool RecognizeCross(const ShapeInput& input) {
    const std::span<const Vector3> points = input.points;
    if (!input.settings.recogniseCross || points.size() < 2) return false;
    const std::optional<Vector3> crossing = FindSelfCrossing(points);
    if (!crossing) return false;
    const double size =
        input.settings.crossDiameter > 0 ? input.settings.crossDiameter : GreatestDistance(points, *crossing);
    const double half = size / 2;
    const double x = crossing->x;
    const double y = crossing->y;
    // Always upright, whatever the angle of the drawn strokes.
    const ShapePen& pen = input.pen;
    pen.Line(x - half, y - half, x + half, y + half);
    pen.Line(x - half, y + half, x + half, y - half);
    return true;
}

}  // namespace chalkpane
