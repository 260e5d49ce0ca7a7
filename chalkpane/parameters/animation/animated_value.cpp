#include "chalkpane/parameters/animation/animated_value.h"

#include <cmath>

#include "chalkpane/parameters/animation/bezier.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane {

namespace {

class StandingClock final : public AnimationClock {
public:
    double frameToTime(std::int32_t frame) const override { return frame; }
    std::int32_t timeToFrame(double time) const override { return truncateToInteger(time); }
    std::int32_t currentFrame() const override { return 0; }
};
const StandingClock standingClock;

}  // namespace

AnimatedValue::AnimatedValue(const ParameterDef* definition, bool recordsUndo, const AnimationClock* givenClock)
    : ParameterValue(definition), clock(givenClock != nullptr ? givenClock : &standingClock), undoable(recordsUndo) {}

// The value goes, and with it every record of it: nothing is recorded any more.
AnimatedValue::~AnimatedValue() {
    for (Key* key : keys) delete key;
}

void AnimatedValue::reset() { clearKeys(); }

bool AnimatedValue::isAnimated() const { return true; }

std::int32_t AnimatedValue::keyCount() const { return static_cast<std::int32_t>(keys.size()); }

Key* AnimatedValue::keyAt(std::int32_t index) const {
    return isIndex(index) ? keys[static_cast<std::size_t>(index)] : nullptr;
}

std::int32_t AnimatedValue::frameOf(std::int32_t index) const { return keyAt(index)->frame(*clock); }

double AnimatedValue::framesBetween(std::int32_t from, std::int32_t to) const {
    return static_cast<double>(frameOf(to)) - static_cast<double>(frameOf(from));
}

void AnimatedValue::recordKeys() {
    if (undoable) recordUndo<UndoAnimatedValueData>(*this);
}

void AnimatedValue::disposeRange(std::size_t first, std::size_t end) {
    for (std::size_t i = first; i < end; ++i) disposeOfKey(keys[i]);
    keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(first), keys.begin() + static_cast<std::ptrdiff_t>(end));
}

void AnimatedValue::clearKeys() {
    recordKeys();
    disposeRange(0, keys.size());
}

void AnimatedValue::retimeKeys(const AnimationClock& oldClock) {
    for (Key* key : keys) key->retime(oldClock, *clock);
}

std::int32_t AnimatedValue::resortKey(std::int32_t index) {
    if (!isIndex(index)) return index;
    Key* const key = keyAt(index);
    std::int32_t place = index;
    while (place > 0 && key->time <= keyAt(place - 1)->time) --place;
    while (place < keyCount() - 1 && key->time > keyAt(place + 1)->time) ++place;
    if (place == index) return index;
    recordKeys();
    keys.erase(keys.begin() + index);
    keys.insert(keys.begin() + place, key);
    return place;
}

std::int32_t AnimatedValue::removeCoincidentKeys(std::int32_t index) {
    if (!isIndex(index)) return index;
    const std::int32_t frame = frameOf(index);
    std::int32_t first = index;
    std::int32_t last = index;
    while (first > 0 && frameOf(first - 1) == frame) --first;
    while (last < keyCount() - 1 && frameOf(last + 1) == frame) ++last;
    if (first == last) return index;
    recordKeys();
    disposeRange(static_cast<std::size_t>(index) + 1, static_cast<std::size_t>(last) + 1);
    disposeRange(static_cast<std::size_t>(first), static_cast<std::size_t>(index));
    return first;
}

void AnimatedValue::removeKey(std::int32_t index) {
    if (!isIndex(index)) return;
    const std::int32_t frame = frameOf(index);
    std::int32_t end = index + 1;
    while (end < keyCount() && frameOf(end) == frame) ++end;
    recordKeys();
    disposeRange(static_cast<std::size_t>(index), static_cast<std::size_t>(end));
}

Key* AnimatedValue::keyOnFrame(std::int32_t frame) const {
    for (Key* key : keys)
        if (key->frame(*clock) == frame) return key;
    return nullptr;
}

void AnimatedValue::insertKey(std::int32_t frame, Key* key) {
    recordKeys();
    key->time = clock->frameToTime(frame);
    isSet = true;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const std::int32_t other = keys[i]->frame(*clock);
        if (other == frame) {
            key->inHandle = keys[i]->inHandle;
            key->outHandle = keys[i]->outHandle;
            disposeOfKey(std::exchange(keys[i], key));
            std::size_t end = i + 1;
            while (end < keys.size() && keys[end]->frame(*clock) == frame) ++end;
            disposeRange(i + 1, end);
            return;
        }
        if (other > frame) {
            keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(i), key);
            return;
        }
    }
    keys.push_back(key);
}

void AnimatedValue::appendKey(Key* key) {
    keys.push_back(key);
    isSet = true;
}

void AnimatedValue::replaceKey(std::int32_t index, Key* key) {
    recordKeys();
    Key*& place = keys[static_cast<std::size_t>(index)];
    key->time = place->time;
    key->inHandle = place->inHandle;
    key->outHandle = place->outHandle;
    disposeOfKey(std::exchange(place, key));
}

KeySpan AnimatedValue::findKeySpan(std::int32_t frame) const {
    const std::int32_t count = keyCount();
    if (count == 0) return {};
    if (frame > frameOf(count - 1)) return {true, false, count - 1};
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t other = frameOf(i);
        if (other == frame) return {true, false, i};
        if (frame < other) return i == 0 ? KeySpan{true, false, 0} : KeySpan{false, true, i - 1};
    }
    return {};  // only keys out of order, after a change of time without resortKey, come here
}

double AnimatedValue::evaluateKeySegment(double t0, double t1, double at, double a, double va, double sa, double b,
                                         double vb, double sb) const {
    if (a == 0.0 && b == 0.0) {
        if (curveDisabled != 0) return -9999000000000.0;
        return va + (vb - va) * (std::trunc(at) - t0) / (t1 - t0);
    }
    if (curveDisabled != 0) return -99999000000000.0;
    const double dt = t1 - t0;
    const double u = solveBezierParameter(t0, t0 + std::fabs(a) * dt, t1 - std::fabs(b) * dt, t1, at);
    const double y1 = a < 0.0 ? va - a * sa * dt : va;
    const double y2 = b < 0.0 ? vb + b * sb * dt : vb;
    return bezierAt(u, va, y1, y2, vb);
}

double AnimatedValue::normaliseComponent(double number) const {
    return parameter != nullptr ? parameter->normalise(number, curveScale) : number;
}

double AnimatedValue::denormaliseComponent(double number) const {
    return parameter != nullptr ? parameter->denormalise(number, curveScale) : number;
}

bool AnimatedValue::getCurveLocked() const { return curveLocked; }
void AnimatedValue::setCurveLocked(bool locked) { curveLocked = locked; }
std::int32_t AnimatedValue::getCurveRange() const { return curveRange; }
void AnimatedValue::setCurveRange(std::int32_t range) { curveRange = range; }
void AnimatedValue::setCurveScale(float scale) { curveScale = scale; }
double AnimatedValue::getCurveScale() const { return curveScale; }
bool AnimatedValue::isEditable() const { return true; }
void AnimatedValue::clearValue() { clearSet(); }
bool AnimatedValue::isDiscrete() const { return false; }

void AnimatedValue::addKeyDoubleXY(std::int32_t, double, double) {}
void AnimatedValue::addKeyIntegerXY(std::int32_t, std::int32_t, std::int32_t) {}
void AnimatedValue::addKeyColour(std::int32_t, const Colour&) {}
void AnimatedValue::addKeyBoolean(std::int32_t, bool) {}
void AnimatedValue::addKeyDouble(std::int32_t, double) {}
void AnimatedValue::valueAtFrameDoubleXY(std::int32_t, double&, double&) const {}
void AnimatedValue::valueAtFrameIntegerXY(std::int32_t, std::int32_t&, std::int32_t&) const {}
void AnimatedValue::valueAtFrameColour(std::int32_t, Colour&) const {}
void AnimatedValue::valueAtFrameBoolean(std::int32_t, bool&) const {}
void AnimatedValue::valueAtFrameDouble(std::int32_t, double&) const {}
void AnimatedValue::valueAtFrameInteger(std::int32_t, std::int32_t&) const {}
void AnimatedValue::addKeyAtFrame(std::int32_t) {}
ValuePointer AnimatedValue::clone() const { return nullptr; }
void AnimatedValue::copyKeysFrom(const AnimatedValue&) {}
void AnimatedValue::appendValueText(std::string&, const Key&) const {}
void AnimatedValue::writeValueToStream(TextSink&, const Key&) const {}
bool AnimatedValue::readKeyValue(TextScanner&, double, double, double) { return false; }

}  // namespace chalkpane
