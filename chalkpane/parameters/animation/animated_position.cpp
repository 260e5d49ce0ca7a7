#include "chalkpane/parameters/animation/animated_position.h"

#include <algorithm>
#include <cmath>

#include "chalkpane/parameters/animation/bezier.h"

namespace chalkpane {

double easeFraction(double p, double q, double f) {
    DoublePair c1{0.0, 0.0};
    DoublePair c2{1.0, 1.0};
    if (p == easedNeighbour) {
        c1 = {0.33, 0.0};
    } else if (p != noNeighbour) {
        const double r = std::sqrt(1 + p * p);
        c1 = {1 / r, p / r};
    }
    if (q == easedNeighbour) {
        c1 = {0.67, 1.0};  // KEEP: the first control, although the second is meant
    } else if (q != noNeighbour) {
        const double r = std::sqrt(1 + q * q);
        c2 = {1 - 1 / r, 1 - q / r};
    }
    const double u = solveBezierParameter(0.0, c1.x, c2.x, 1.0, f);
    return bezierAt(u, 0.0, c1.y, c2.y, 1.0);
}

Polyline::Polyline(const PathPoint& left, const PathPoint& right) {
    const DoublePair p0 = left.point;
    const DoublePair c1 = left.out;
    const DoublePair c2 = right.in;
    const DoublePair p3 = right.point;
    const double bend = std::max({std::fabs(c2.x - 2 * c1.x + p0.x), std::fabs(c2.y - 2 * c1.y + p0.y),
                                  std::fabs(c1.x + p3.x - 2 * c2.x), std::fabs(c1.y + p3.y - 2 * c2.y)});
    const double perimeter = std::fabs(c1.x - p0.x) + std::fabs(c1.y - p0.y) + std::fabs(c2.x - c1.x) +
                             std::fabs(c2.y - c1.y) + std::fabs(p3.x - c2.x) + std::fabs(p3.y - c2.y);
    const double count = std::floor(std::sqrt(bend * (1000.0 / (perimeter + 1e-6)) / 1.33333333) + 1.0);
    if (count > 1.0) segments = static_cast<int>(std::min<double>(count, most));

    const double h = 1.0 / segments;
    const auto evaluateAxis = [&](double a0, double a1, double a2, double a3, double DoublePair::*axis) {
        const double cubic = a3 - 3 * a2 + 3 * a1 - a0;
        const double square = 3 * a2 - 6 * a1 + 3 * a0;
        const double linear = 3 * (a1 - a0);
        double place = a0;
        double d1 = cubic * h * h * h + square * h * h + linear * h;
        double d2 = 6 * cubic * h * h * h + 2 * square * h * h;
        const double d3 = 6 * cubic * h * h * h;
        for (int i = 0; i <= segments; ++i) {
            points[i].*axis = place;
            place += d1;
            d1 += d2;
            d2 += d3;
        }
    };
    evaluateAxis(p0.x, c1.x, c2.x, p3.x, &DoublePair::x);
    evaluateAxis(p0.y, c1.y, c2.y, p3.y, &DoublePair::y);
    for (int i = 1; i <= segments; ++i) length += distance(points[i - 1], points[i]);
}

DoublePair Polyline::at(double arc) const {
    double passed = 0.0;
    for (int i = 1; i <= segments; ++i) {
        const DoublePair& from = points[i - 1];
        const DoublePair& to = points[i];
        const double step = distance(from, to);
        if (passed + step >= arc) {
            const double part = step > 0.0 ? (arc - passed) / step : 0.0;
            return {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
        }
        passed += step;
    }
    return points[segments];
}

template <typename Content>
std::int32_t AnimatedPath<Content>::nextGroup(std::int32_t index) const {
    std::int32_t other = index + 1;
    while (other < this->keyCount() && this->frameOf(other) == this->frameOf(index)) ++other;
    return other < this->keyCount() ? other : -1;
}

template <typename Content>
std::int32_t AnimatedPath<Content>::previousGroup(std::int32_t index) const {
    std::int32_t other = index - 1;
    while (other >= 0 && this->frameOf(other) == this->frameOf(index)) --other;
    return other;
}

template <typename Content>
Polyline AnimatedPath<Content>::flatten(std::int32_t left, std::int32_t right) const {
    return {this->storedAt(left), this->storedAt(right)};
}

template <typename Content>
DoublePair AnimatedPath<Content>::pointBetween(std::int32_t index, std::int32_t frame) const {
    const std::int32_t next = nextGroup(index);
    if (next < 0) return this->storedAt(index).point;  // keys out of order, after a change of time without resortKey
    const std::int32_t previous = previousGroup(index);
    const std::int32_t afterNext = nextGroup(next);
    const double frames = this->framesBetween(index, next);
    const Polyline line = flatten(index, next);
    const double speed = line.length / frames;

    const double sa = previous < 0 ? 1 / frames : 2 / this->framesBetween(previous, next);
    const double sb = afterNext < 0 ? 1 / frames : 2 / this->framesBetween(index, afterNext);
    const double timeFraction =
        this->evaluateKeySegment(this->frameOf(index), this->frameOf(next), frame, this->keyAt(index)->outHandle, 0.0,
                                 sa, this->keyAt(next)->inHandle, 1.0, sb);

    // The speed of the span between two keys of neighbouring groups, as a slope for the fraction of this one.
    const auto slope = [&](std::int32_t left, std::int32_t right) {
        const double neighbourSpeed = flatten(left, right).length / this->framesBetween(left, right);
        if (neighbourSpeed <= -1.0) return noNeighbour;
        return speed == 0.0 ? 1.0 : std::sqrt(neighbourSpeed / speed);
    };
    const double p = previous < 0 ? noNeighbour : slope(previous, previous + 1);
    const double q = afterNext < 0 ? noNeighbour : slope(afterNext - 1, afterNext);
    return line.at(easeFraction(p, q, timeFraction) * line.length);
}

template <typename Content>
void AnimatedPath<Content>::evaluate(std::int32_t frame, Content& out) const {
    const KeySpan span = this->findKeySpan(frame);
    if (span.exact) {
        out = this->storedAt(span.index);
    } else {
        DoublePair point = out.point;
        if (span.between) {
            point = pointBetween(span.index, frame);
        } else if (const ParameterValue* above = this->getParent()) {
            above->getDoubleXY(point.x, point.y);
        } else {
            point = {};
        }
        out = Content::at(point);
    }
}

template <typename Content>
void AnimatedPath<Content>::setDoubleXY(double x, double y) {
    addKeyDoubleXY(this->currentFrame(), x, y);
}

template <typename Content>
void AnimatedPath<Content>::getDoubleXY(double& outX, double& outY) const {
    valueAtFrameDoubleXY(this->currentFrame(), outX, outY);
}

template <typename Content>
void AnimatedPath<Content>::addKeyDoubleXY(std::int32_t frame, double x, double y) {
    this->addKey(frame, Content::at({x, y}));
}

template <typename Content>
void AnimatedPath<Content>::valueAtFrameDoubleXY(std::int32_t frame, double& outX, double& outY) const {
    Content value = Content::at({outX, outY});
    evaluate(frame, value);
    outX = value.point.x;
    outY = value.point.y;
}

template class AnimatedPath<PathPoint>;
template class AnimatedPath<SmoothPathPoint>;

ValuePointer AnimatedPosition::clone() const { return makeValue<AnimatedPosition>(parameter, undoable, clock); }

ValuePointer AnimatedPosition3d::clone() const { return makeValue<AnimatedPosition3d>(parameter, undoable, clock); }

void AnimatedPosition3d::addKey(std::int32_t frame, const SmoothPathPoint& value) {
    SmoothPathPoint fresh = SmoothPathPoint::at(value.point);
    if (const auto* old = static_cast<const Position3dKeyValuePair*>(keyOnFrame(frame))) {
        fresh = old->value;
        fresh.moveTo(value.point);
    }
    addKeyWithHandles(frame, fresh);
}

void AnimatedPosition3d::addKeyWithHandles(std::int32_t frame, const SmoothPathPoint& value) {
    insertKey(frame, makePair(value));
    smoothAll();
}

bool AnimatedPosition3d::readKeyValue(TextScanner& scanner, double time, double inHandle, double outHandle) {
    if (!AnimatedPath::readKeyValue(scanner, time, inHandle, outHandle)) return false;
    // KEEP: a first key that is read smooth stays so while it is alone, since others are to follow it.
    const std::int32_t last = keyCount() - 1;
    for (std::int32_t i = last - 1; last > 0 && i <= last; ++i)
        if (storedAt(i).smooth) smoothHandles(i);
    return true;
}

void AnimatedPosition3d::edit(std::int32_t index, const SmoothPathPoint& value) {
    Position3dKeyValuePair& key = pairAt(index);
    if (key.undoable) recordUndo<UndoAnimatedPosition3dValue>(key);
    key.value = value;
}

void AnimatedPosition3d::smoothAll() {
    for (std::int32_t i = 0; i < keyCount(); ++i)
        if (storedAt(i).smooth) smoothHandles(i);
}

void AnimatedPosition3d::smoothHandles(std::int32_t index) {
    if (!isIndex(index)) return;
    SmoothPathPoint value = storedAt(index);
    const std::int32_t last = keyCount() - 1;
    const DoublePair p = value.point;
    if (last == 0) {
        value = SmoothPathPoint::at(p);
        value.smooth = false;
    } else if (index == 0) {
        const DoublePair next = storedAt(1).point;
        value.out = {p.x + (next.x - p.x) / 3, p.y + (next.y - p.y) / 3};
    } else if (index == last) {
        const DoublePair previous = storedAt(index - 1).point;
        value.in = {p.x - (p.x - previous.x) / 3, p.y - (p.y - previous.y) / 3};
    } else {
        const DoublePair previous = storedAt(index - 1).point;
        const DoublePair next = storedAt(index + 1).point;
        const auto factor = [&](const DoublePair& neighbour) {
            const bool near = std::fabs(neighbour.x - p.x) < 0.0001 && std::fabs(neighbour.y - p.y) < 0.0001;
            return near ? 0.0 : 1.0 / 6;
        };
        const DoublePair d{next.x - previous.x, next.y - previous.y};
        value.in = {p.x - factor(previous) * d.x, p.y - factor(previous) * d.y};
        value.out = {p.x + factor(next) * d.x, p.y + factor(next) * d.y};
    }
    edit(index, value);
}

void AnimatedPosition3d::setSmooth(std::int32_t index) {
    if (!isIndex(index)) return;
    SmoothPathPoint value = storedAt(index);
    value.smooth = true;
    edit(index, value);
    smoothHandles(index);
}

void AnimatedPosition3d::setCorner(std::int32_t index) {
    if (!isIndex(index)) return;
    SmoothPathPoint value = SmoothPathPoint::at(storedAt(index).point);
    value.smooth = false;
    edit(index, value);
}

}  // namespace chalkpane
