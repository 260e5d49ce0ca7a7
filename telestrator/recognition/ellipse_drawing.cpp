#include "telestrator/recognition/ellipse_drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "telestrator/recognition/repeated_sum.h"

namespace chalkpane {
namespace {

// Draws a fitted ellipse in steps of a hundredth of a pixel, with a vertex wherever they have come far enough from
// the last one. So the spacing of the vertices depends on the threshold alone, also near the ends of the axes.
class EllipseIterator {
public:
    EllipseIterator(const ShapePen& pen, const EllipseFit& fit, const Vector3& centroid, std::int32_t brushWidth)
        : pen_(pen),
          fit_(fit),
          centroid_(centroid),
          aspect_(pen.Aspect()),
          quarters_{{{fit.halfWidth, -overlap, -stride, 1, brushWidth / 2},
                     {0, -fit.halfWidth - overlap, -stride, 1, brushWidth / 2},
                     {-fit.halfWidth, overlap, stride, -1, brushWidth},
                     {0, fit.halfWidth + overlap, stride, -1, brushWidth}}} {}

    // KEEP: the first half may set vertices at half the distance of the second, rounded down, and its first quarter
    // runs a little beyond x = 0.
    void Draw() {
        const Vector3 start = PointAt(fit_.halfWidth, 1);
        last_ = start;
        pen_.Draw(StrokeStage::Begin, start.x, start.y);
        for (std::size_t i = 0; i < quarters_.size(); ++i) {
            if (SurelyMissesFrom(i, quarters_[i].from)) return;
            if (quarters_[i].threshold > 0)
                Iterate(quarters_[i]);
            else
                IterateDensely(i);
        }
        pen_.Draw(StrokeStage::End, start.x, start.y);
    }

private:
    static constexpr double stride = 0.01;
    static constexpr double overlap = 0.005;
    static constexpr std::int32_t promisingLeap = 64;
    static constexpr std::int32_t longArc = 65536;  // steps
    static constexpr double everywhere = std::numeric_limits<double>::infinity();

    struct Quarter {
        double from;
        double limit;
        double step;
        double sign;  // 1: above the centre; -1: below
        std::int32_t threshold;
    };

    // The point of the rotated ellipse above (`sign` 1) or below (-1) its centre at x, from the centroid.
    [[nodiscard]] Vector3 LocalPoint(double x, double sign) const {
        const double bSquared = fit_.halfHeight * fit_.halfHeight;
        const double t = std::min(x * x / (fit_.halfWidth * fit_.halfWidth), 1.0);
        return {x + fit_.centre.x, sign * std::sqrt(bSquared - t * bSquared) + fit_.centre.y, 0};
    }

    // The same in canvas pixels.
    [[nodiscard]] Vector3 PointAt(double x, double sign) const { return RotatedBack(LocalPoint(x, sign)); }

    // The plain rotation gives the same 32-bit floats as the angle functions do unless it comes out next to the middle
    // between two. Each of the two ways errs by less than 2e-15 of the radius and 3e-16 of the sums.
    [[nodiscard]] Vector3 RotatedBack(const Vector3& local) const {
        const auto [x, y] = Rotated(local);
        const Vector3 rotated(x - marginX_, y - marginY_, 0);
        if (rotated == Vector3(x + marginX_, y + marginY_, 0)) return rotated;
        const double radius = local.Length();
        const double angle = std::atan2(double{local.y}, double{local.x}) - fit_.angle;
        return {radius * std::cos(angle) + centroid_.x, (radius * std::sin(angle) + centroid_.y) * aspect_, 0};
    }

    void Iterate(const Quarter& quarter) {
        const auto [from, limit, step, sign, threshold] = quarter;
        const bool maySurelyBeWithin = threshold > margin_;
        std::int32_t likely = promisingLeap;
        bool follows = true;
        for (double x = from; IsBefore(x, limit, step); x += step) {
            if (maySurelyBeWithin && std::exchange(follows, false)) x = PassOver(quarter, x, likely);
            const Vector3 local = LocalPoint(x, sign);
            if (maySurelyBeWithin && IsSurelyWithin(local, threshold)) continue;
            const Vector3 point = RotatedBack(local);
            if (!IsFurther(point - last_, threshold)) continue;
            pen_.Draw(StrokeStage::Continue, point.x, point.y);
            last_ = point;
            follows = true;
        }
    }

    // Nearly every step sets a vertex.
    void IterateDensely(std::size_t number) {
        const auto [from, limit, step, sign, threshold] = quarters_[number];
        double x = from;
        while (IsBefore(x, limit, step) && !SurelyMissesFrom(number, x)) {
            x = PassMissesOver(number, x);
            for (std::int32_t i = 0; i < longArc && IsBefore(x, limit, step); ++i, x += step) {
                const Vector3 point = PointAt(x, sign);
                if (!IsFurther(point - last_, threshold)) continue;
                pen_.Draw(StrokeStage::Continue, point.x, point.y);
                last_ = point;
            }
        }
    }

    // Passes over vertices beside the canvas, all but the last of a long row of them. What the brush keeps of those
    // before is its last dab, and how many steps it has looked at to place dabs that nobody sees. It forgets both on
    // the way to the row's end: at a dab that falls where it falls whatever came before, or once it has looked at so
    // many steps that it measures from the end of each stretch.
    double PassMissesOver(std::size_t number, double x) {
        const Quarter& quarter = quarters_[number];
        const std::size_t next = number + 1;
        const MissingRow row = MissingFrom(quarter, x);
        std::int64_t passed = row.steps - KeptVertices(quarter, row.end);
        if (next < quarters_.size() && quarters_[next].threshold <= 0 && StaysBeside(quarter, row.end))
            passed = std::min(row.steps, passed + MissingFrom(quarters_[next], quarters_[next].from).steps);
        if (passed < longArc) return x;
        x = AddRepeatedly(x, quarter.step, passed);
        last_ = PointAt(x, quarter.sign);
        pen_.Draw(StrokeStage::Begin, last_.x, last_.y);  // or the stroke would come there straight, over the canvas
        return x + quarter.step;
    }

    // Before x. Fewer steps of the brush are looked at where vertices lie further apart.
    [[nodiscard]] std::int64_t KeptVertices(const Quarter& quarter, double x) const {
        constexpr std::int64_t kept = 300000;
        constexpr double farApart = 0.08;
        const double from = x - static_cast<double>(kept) * quarter.step;
        const double length = (PointAt(x, quarter.sign) - PointAt(from, quarter.sign)).Length();
        return length > farApart * static_cast<double>(kept) ? 2 * kept : kept;
    }

    struct MissingRow {
        std::int64_t steps = 0;
        double end = 0;  // where the first of the others begins
    };

    // The steps from x on that surely lie beside the canvas, as far as one quarter goes, in arcs.
    [[nodiscard]] MissingRow MissingFrom(const Quarter& quarter, double x) const {
        MissingRow row{0, x};
        for (const std::int32_t arc : {longArc, longArc / 8}) {
            for (;;) {
                // A step further than the arc, which is far more than its rounding.
                const double beyond = row.end + (arc + 1) * quarter.step;
                if (!IsBefore(beyond, quarter.limit, quarter.step) || row.end * beyond < 0 ||
                    !IsArcBeside(row.end, beyond, quarter.sign))
                    break;
                row.end = AddRepeatedly(row.end, quarter.step, arc);
                row.steps += arc;
            }
        }
        return row;
    }

    // True: nothing of the ellipse from that x of a quarter on reaches the canvas, so the stroke may be left as it is.
    [[nodiscard]] bool SurelyMissesFrom(std::size_t number, double x) const {
        if (!StaysBeside(quarters_[number], x)) return false;
        return std::all_of(quarters_.begin() + static_cast<std::ptrdiff_t>(number) + 1, quarters_.end(),
                           [&](const Quarter& quarter) { return StaysBeside(quarter, quarter.from); });
    }

    [[nodiscard]] bool StaysBeside(const Quarter& quarter, double x) const {
        x = MissingFrom(quarter, x).end;
        if (!IsBefore(x, quarter.limit, quarter.step)) return true;
        const double end = quarter.limit + quarter.step;
        if (x * end >= 0) return IsArcBeside(x, end, quarter.sign);
        return IsArcBeside(x, 0, quarter.sign) && IsArcBeside(0, end, quarter.sign);
    }

    // A length is above 0 where its square is: floats are too large for that to vanish.
    static bool IsFurther(const Vector3& difference, std::int32_t threshold) {
        return threshold == 0 ? Dot(difference, difference) > 0 : difference.Length() > threshold;
    }

    static bool IsBefore(double x, double limit, double step) { return step < 0 ? x > limit : x < limit; }

    // Passes over steps that surely set no vertex: nearly as many as the last time, then as many as the way that is
    // left seems to take, fewer where that was too far. KEEP: x gathers the rounding of each step.
    //   likely  how many they were the last time; becomes what they are now
    double PassOver(const Quarter& quarter, double x, std::int32_t& likely) const {
        constexpr std::int32_t shortestLeap = 4;
        constexpr double mostSteps = 1e8;
        const auto [from, limit, step, sign, threshold] = quarter;
        const double within = threshold - margin_;
        std::int32_t passed = 0;
        for (std::int32_t leap = likely - likely / 8; leap >= shortestLeap;) {
            // A step further than the leap, which is far more than its rounding.
            const double end = x + (leap + 1) * step;
            const bool isOneArc = IsBefore(end, limit, step) && x * end >= 0;
            const double farthest = isOneArc ? std::sqrt(SquaredEndOfArc(x, end, sign)) : within;
            if (!(farthest < within)) {
                leap /= 2;
                continue;
            }
            x = AddRepeatedly(x, step, leap);
            passed += leap;
            const double left = 0.97 * (within - farthest) * passed / farthest;
            leap = left < mostSteps ? static_cast<std::int32_t>(left) : leap;
        }
        likely = std::max(passed, promisingLeap);
        return x;
    }

    // On one side of its middle an arc rises or falls all the way, so it lies in the box of its ends.
    [[nodiscard]] std::array<Vector3, 4> BoxOfArc(double from, double to, double sign) const {
        const Vector3 a = LocalPoint(from, sign);
        const Vector3 b = LocalPoint(to, sign);
        return {a, b, {a.x, b.y, 0}, {b.x, a.y, 0}};
    }

    // No point of the arc is further from the last vertex by the plain rotation; the distance's square.
    [[nodiscard]] double SquaredEndOfArc(double from, double to, double sign) const {
        double farthest = 0;
        for (const Vector3& corner : BoxOfArc(from, to, sign)) farthest = std::max(farthest, SquaredDistance(corner));
        return farthest;
    }

    // The stroke's curve, too, which lies among four vertices.
    [[nodiscard]] bool IsArcBeside(double from, double to, double sign) const {
        CanvasPosition least{everywhere, everywhere};
        CanvasPosition most{-everywhere, -everywhere};
        for (const Vector3& corner : BoxOfArc(from, to, sign)) {
            const auto [x, y] = Rotated(corner);
            least = {std::min(least.x, x - roomBeside_), std::min(least.y, y - roomBeside_)};
            most = {std::max(most.x, x + roomBeside_), std::max(most.y, y + roomBeside_)};
        }
        return pen_.SurelyMisses(least, most);
    }

    // By the plain rotation, in canvas pixels.
    [[nodiscard]] CanvasPosition Rotated(const Vector3& local) const {
        return {local.x * cosine_ + local.y * sine_ + centroid_.x,
                (local.y * cosine_ - local.x * sine_ + centroid_.y) * aspect_};
    }

    // Spares the many steps between two vertices their angle functions. The plain rotation differs from `RotatedBack`
    // by the rounding of a few floats, each by 6e-8 of it at most, less than the margin; in doubt the answer is no.
    [[nodiscard]] bool IsSurelyWithin(const Vector3& local, double threshold) const {
        const double within = threshold - margin_;
        return within > 0 && SquaredDistance(local) < within * within;
    }

    [[nodiscard]] double SquaredDistance(const Vector3& local) const {
        const auto [x, y] = Rotated(local);
        const double dx = x - last_.x;
        const double dy = y - last_.y;
        return dx * dx + dy * dy;
    }

    // More than four times as far as one vertex can lie from the next. The longest step is the first from an end of the
    // axis.
    [[nodiscard]] double RoomBeside() const {
        const double longestStep = 1 + fit_.halfHeight * std::sqrt(4 * stride / fit_.halfWidth);
        const double threshold = std::max(quarters_.back().threshold, 0);
        return 1 + 40 * margin_ + 4 * (threshold + longestStep * std::max(1.0, std::abs(aspect_)));
    }

    [[nodiscard]] double Margin() const {
        const double extent = fit_.halfWidth + fit_.halfHeight + fit_.centre.Length() + centroid_.Length();
        return 2.5e-7 * extent * std::max(1.0, std::abs(aspect_));
    }

    ShapePen pen_;
    EllipseFit fit_;
    Vector3 centroid_;
    double aspect_;
    std::array<Quarter, 4> quarters_;
    // A step beyond the ends of the axes included.
    double greatestRadius_ = 1.001 * (fit_.halfWidth + fit_.halfHeight + fit_.centre.Length() + 1);
    double centroidExtent_ = std::abs(double{centroid_.x}) + std::abs(double{centroid_.y});
    double marginX_ = 1e-14 * (greatestRadius_ + centroidExtent_);
    double marginY_ = marginX_ * std::abs(aspect_);
    Vector3 last_;
    double cosine_ = std::cos(fit_.angle);
    double sine_ = std::sin(fit_.angle);
    double margin_ = Margin();
    double roomBeside_ = RoomBeside();
};

}  // namespace

void DrawEllipse(const ShapePen& pen, const EllipseFit& fit, const Vector3& centroid, std::int32_t brushWidth) {
    EllipseIterator(pen, fit, centroid, brushWidth).Draw();
}

}  // namespace chalkpane
