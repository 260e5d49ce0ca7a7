#include <algorithm>
#include <cmath>

#include "telestrator/recognition/ellipse_fit.h"
#include "telestrator/recognition/shape_recognition.h"

namespace chalkpane {
namespace {

constexpr double widestHalfAxis = 65536;
constexpr double widestLimit = 1024;  // the canvas's height

// Draws a fitted ellipse in steps of a hundredth of a pixel, with a vertex wherever they have come far enough from
// the last one. So the spacing of the vertices depends on the threshold alone, also near the ends of the axes.
class EllipseIterator {
public:
    EllipseIterator(const ShapePen& pen, const EllipseFit& fit, const Vector3& centroid)
        : pen_(pen), fit_(fit), centroid_(centroid), aspect_(pen.Aspect()) {}

    // KEEP: the first half may set vertices at half the distance of the second, rounded down, and its first quarter
    // runs a little beyond x = 0.
    void Draw(std::int32_t brushWidth) {
        const double a = fit_.halfWidth;
        const Vector3 start = PointAt(a, 1);
        last_ = start;
        pen_.Draw(StrokeStage::Begin, start.x, start.y);
        IterateQuarter(a, -overlap, -stride, 1, brushWidth / 2);
        IterateQuarter(0, -a - overlap, -stride, 1, brushWidth / 2);
        IterateQuarter(-a, overlap, stride, -1, brushWidth);
        IterateQuarter(0, a + overlap, stride, -1, brushWidth);
        pen_.Draw(StrokeStage::End, start.x, start.y);
    }

private:
    static constexpr double stride = 0.01;
    static constexpr double overlap = 0.005;
    static constexpr std::int32_t promisingLeap = 64;

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
        const double x = local.x * cosine_ + local.y * sine_ + centroid_.x;
        const double y = (local.y * cosine_ - local.x * sine_ + centroid_.y) * aspect_;
        const Vector3 rotated(x - marginX_, y - marginY_, 0);
        if (rotated == Vector3(x + marginX_, y + marginY_, 0)) return rotated;
        const double radius = local.Length();
        const double angle = std::atan2(double{local.y}, double{local.x}) - fit_.angle;
        return {radius * std::cos(angle) + centroid_.x, (radius * std::sin(angle) + centroid_.y) * aspect_, 0};
    }

    void IterateQuarter(double from, double limit, double step, double sign, std::int32_t threshold) {
        const bool maySurelyBeWithin = threshold > margin_;
        const std::int32_t firstLeap = maySurelyBeWithin ? promisingLeap : 0;
        std::int32_t leap = firstLeap;
        for (double x = from; IsBefore(x, limit, step); x += step) {
            if (leap != 0) x = PassOver(x, limit, step, sign, threshold, leap);
            const Vector3 local = LocalPoint(x, sign);
            if (maySurelyBeWithin && IsSurelyWithin(local, threshold)) continue;
            const Vector3 point = RotatedBack(local);
            if (!IsFurther(point - last_, threshold)) continue;
            pen_.Draw(StrokeStage::Continue, point.x, point.y);
            last_ = point;
            leap = firstLeap;
        }
    }

    // A length is above 0 where its square is: floats are too large for that to vanish.
    static bool IsFurther(const Vector3& difference, std::int32_t threshold) {
        return threshold == 0 ? Dot(difference, difference) > 0 : difference.Length() > threshold;
    }

    static bool IsBefore(double x, double limit, double step) { return step < 0 ? x > limit : x < limit; }

    // Passes over steps that surely set no vertex, in leaps that double as long as they may and then halve until none
    // is left. KEEP: x gathers the rounding of each step.
    double PassOver(double x, double limit, double step, double sign, double threshold, std::int32_t& leap) const {
        constexpr std::int32_t shortestLeap = 8;
        for (bool grows = true; leap >= shortestLeap;) {
            // A step further than the leap, which is far more than its rounding.
            const double end = x + (leap + 1) * step;
            if (IsBefore(end, limit, step) && x * end >= 0 && IsArcSurelyWithin(x, end, sign, threshold)) {
                for (std::int32_t i = 0; i < leap; ++i) x += step;
                if (grows) leap *= 2;
            } else {
                grows = false;
                leap /= 2;
            }
        }
        leap = 0;
        return x;
    }

    // On one side of its middle an arc rises or falls all the way, so it lies in the box of its ends.
    [[nodiscard]] bool IsArcSurelyWithin(double from, double to, double sign, double threshold) const {
        const Vector3 a = LocalPoint(from, sign);
        const Vector3 b = LocalPoint(to, sign);
        return IsSurelyWithin(a, threshold) && IsSurelyWithin(b, threshold) &&
               IsSurelyWithin({a.x, b.y, 0}, threshold) && IsSurelyWithin({b.x, a.y, 0}, threshold);
    }

    // Spares the many steps between two vertices their angle functions. The plain rotation differs from `RotatedBack`
    // by the rounding of a few floats, far less than the margin; in doubt the answer is no.
    [[nodiscard]] bool IsSurelyWithin(const Vector3& local, double threshold) const {
        const double dx = local.x * cosine_ + local.y * sine_ + centroid_.x - last_.x;
        const double dy = (local.y * cosine_ - local.x * sine_ + centroid_.y) * aspect_ - last_.y;
        const double within = threshold - margin_;
        return within > 0 && dx * dx + dy * dy < within * within;
    }

    [[nodiscard]] double Margin() const {
        const double extent = fit_.halfWidth + fit_.halfHeight + fit_.centre.Length() + centroid_.Length();
        return 1e-6 * extent * std::max(1.0, std::abs(aspect_));
    }

    ShapePen pen_;
    EllipseFit fit_;
    Vector3 centroid_;
    double aspect_;
    // A step beyond the ends of the axes included.
    double greatestRadius_ = 1.001 * (fit_.halfWidth + fit_.halfHeight + fit_.centre.Length() + 1);
    double centroidExtent_ = std::abs(double{centroid_.x}) + std::abs(double{centroid_.y});
    double marginX_ = 1e-14 * (greatestRadius_ + centroidExtent_);
    double marginY_ = marginX_ * std::abs(aspect_);
    Vector3 last_;
    double cosine_ = std::cos(fit_.angle);
    double sine_ = std::sin(fit_.angle);
    double margin_ = Margin();
};

bool IsAccepted(const EllipseFit& fit, std::span<const Vector3> points) {
    if (fit.count < static_cast<std::int32_t>(points.size()) / 4) return false;
    if (!(fit.halfWidth < widestHalfAxis && fit.halfHeight < widestHalfAxis)) return false;
    // An open arc is no ellipse.
    const double gap = (points.back() - points.front()).Length();
    return !(gap > std::min(fit.halfWidth, fit.halfHeight));
}

}  // namespace

bool RecognizeEllipse(const ShapeInput& input) {
    const std::span<const Vector3> points = input.points;
    if (!input.settings.recogniseEllipse || points.empty()) return false;
    const Vector3 centroid = Centroid(points);
    if (!SurroundsOnAllSides(points, centroid)) return false;
    EllipseFit fit;
    const bool fitted =
        input.pen.Memory().Run([&] { fit = FitEllipse(points, centroid, input.settings.brushWidth, widestLimit); });
    if (!fitted || !IsAccepted(fit, points)) return false;
    EllipseIterator(input.pen, fit, centroid).Draw(input.settings.brushWidth);
    return true;
}

}  // namespace chalkpane
