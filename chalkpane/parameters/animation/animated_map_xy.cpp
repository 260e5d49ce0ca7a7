#include "chalkpane/parameters/animation/animated_map_xy.h"

#include <algorithm>
#include <cmath>

#include "chalkpane/parameters/animation/bezier.h"

namespace chalkpane {

namespace {

constexpr double coincident = 1e-9;  // Manhattan length below which a chord has no direction
constexpr double longestIteration =
    1024 * 1024;  // frames; the companion of a longer span would take seconds to iterate over

double manhattan(const DoublePair& a, const DoublePair& b) { return std::fabs(b.x - a.x) + std::fabs(b.y - a.y); }
DoublePair mirror(const DoublePair& about, const DoublePair& point) {
    return {2 * about.x - point.x, 2 * about.y - point.y};
}

// Beside `point`, towards `other`, along the chord from the neighbour on the far side.
DoublePair control(const DoublePair& point, const DoublePair& other, const DoublePair& neighbour) {
    if (manhattan(neighbour, other) < coincident) return point;
    const double length = distance(point, other);
    const double chord = distance(neighbour, other);
    return {point.x + (other.x - neighbour.x) * length / (3 * chord),
            point.y + (other.y - neighbour.y) * length / (3 * chord)};
}

}  // namespace

ValuePointer AnimatedMapXY::clone() const { return makeValue<AnimatedMapXY>(parameter, undoable, clock); }

void AnimatedMapXY::setZoomCurve(AnimatedValue* curve) {
    zoomCurve = curve;
    logZoomCurve = dynamic_cast<AnimatedLogDouble*>(curve);
}

AnimatedMapXY::Controls AnimatedMapXY::controls(std::int32_t index) const {
    const DoublePair p1 = storedAt(index);
    const DoublePair p2 = storedAt(index + 1);
    if (manhattan(p1, p2) < coincident) return {p1, p2};
    const DoublePair previous = index == 0 ? mirror(p1, p2) : storedAt(index - 1);
    const DoublePair next = index + 2 < keyCount() ? storedAt(index + 2) : mirror(p2, p1);
    return {control(p1, p2, previous), control(p2, p1, next)};
}

// Always positive: a logarithmic companion is raised to its minimum, any other to 0.01.
double AnimatedMapXY::weightAt(std::int32_t frame) const {
    double zoom = 0.0;
    zoomCurve->valueAtFrameDouble(frame, zoom);
    if (logZoomCurve != nullptr) zoom = std::exp(logZoomCurve->toLog(zoom));
    return zoom > 0.01 || (logZoomCurve != nullptr && zoom > 0.0) ? zoom : 0.01;
}

double AnimatedMapXY::fraction(std::int32_t index, std::int32_t frame) const {
    const double left = frameOf(index);
    const double right = frameOf(index + 1);
    const double plain = (frame - left) / (right - left);
    if (zoomCurve == nullptr || right - left > longestIteration) return plain;

    const std::int32_t end = index + 1;
    const bool atStart = index == 0;
    const bool atEnd = end + 1 == keyCount();
    const double sa = atStart ? 1 / framesBetween(index, end) : 2 / framesBetween(index - 1, end);
    const double sb = atEnd ? 1 / framesBetween(index, end) : 2 / framesBetween(index, end + 1);
    double before = 0.0;
    double sum = 0.0;
    double sumAtFrame = 0.0;
    for (std::int32_t f = frameOf(index) + 1; f <= frameOf(end); ++f) {
        const double now =
            evaluateKeySegment(left, right, f, keyAt(index)->outHandle, 0.0, sa, keyAt(end)->inHandle, 1.0, sb);
        sum += std::max(now - before, 0.0) * weightAt(f);  // handles may make it swing back; the path does not
        before = now;
        if (f == frame) sumAtFrame = sum;
    }
    return sum > 0.0 && std::isfinite(sum) ? sumAtFrame / sum : plain;
}

void AnimatedMapXY::evaluate(std::int32_t frame, DoublePair& out) const {
    const KeySpan span = findKeySpan(frame);
    if (!span.between) {
        AnimatedDoubleXY::evaluate(frame, out);
        return;
    }
    const DoublePair p1 = storedAt(span.index);
    const DoublePair p2 = storedAt(span.index + 1);
    const auto [c1, c2] = controls(span.index);
    const double u = fraction(span.index, frame);
    out = {bezierAt(u, p1.x, c1.x, c2.x, p2.x), bezierAt(u, p1.y, c1.y, c2.y, p2.y)};
}

}  // namespace chalkpane
