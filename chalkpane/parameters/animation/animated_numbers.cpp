#include "chalkpane/parameters/animation/animated_numbers.h"

#include <cmath>

#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane {

namespace {

// What a curve editor draws and calls the components: the first red, the second green, the third blue.
constexpr Colour componentColours[] = {{12850, 0, 0}, {0, 12850, 0}, {0, 0, 12850}};

Colour colourOfComponent(std::int32_t component, std::int32_t count) {
    return component >= 0 && component < count ? componentColours[component] : Colour{};
}

}  // namespace

ValuePointer AnimatedDouble::clone() const { return makeValue<AnimatedDouble>(parameter, undoable, clock); }
void AnimatedDouble::setFloat(float number) { setDouble(number); }
void AnimatedDouble::setDouble(double number) { addKey(currentFrame(), number); }
void AnimatedDouble::getDouble(double& out) const { evaluate(currentFrame(), out); }
void AnimatedDouble::getStoredDouble(double& out) const { getDouble(out); }
void AnimatedDouble::addKeyDouble(std::int32_t frame, double number) { addKey(frame, number); }
void AnimatedDouble::valueAtFrameDouble(std::int32_t frame, double& out) const { evaluate(frame, out); }

ValuePointer AnimatedLogDouble::clone() const { return makeValue<AnimatedLogDouble>(parameter, undoable, clock); }

double AnimatedLogDouble::toLog(double value) const {
    double minimum = 0.01;
    double maximum = 0.0;
    if (parameter == nullptr || !parameter->getRange(minimum, maximum)) minimum = 0.01;
    if (value < minimum) value = minimum;
    return value <= 0.0 ? -10000.0 : std::log(value);
}

double AnimatedLogDouble::fromLog(double stored) { return stored < -9999.0 ? 0.0 : std::exp(stored); }

ValuePointer AnimatedFloat::clone() const { return makeValue<AnimatedFloat>(parameter, undoable, clock); }
void AnimatedFloat::setFloat(float number) { addKey(currentFrame(), number); }
void AnimatedFloat::setDouble(double number) { setFloat(toFloat(number)); }
void AnimatedFloat::getFloat(float& out) const { evaluate(currentFrame(), out); }
void AnimatedFloat::getDouble(double& out) const { valueAtFrameDouble(currentFrame(), out); }
void AnimatedFloat::getStoredDouble(double& out) const { getDouble(out); }
void AnimatedFloat::addKeyDouble(std::int32_t frame, double number) { addKey(frame, toFloat(number)); }
void AnimatedFloat::valueAtFrameDouble(std::int32_t frame, double& out) const {
    float narrow = toFloat(out);
    evaluate(frame, narrow);
    out = narrow;
}

ValuePointer AnimatedInt::clone() const { return makeValue<AnimatedInt>(parameter, undoable, clock); }
void AnimatedInt::setIntegerXY(std::int32_t x, std::int32_t y) { addKey(x, y); }
void AnimatedInt::setInteger(std::int32_t number) { addKey(currentFrame(), number); }
void AnimatedInt::getInteger(std::int32_t& out) const { evaluate(currentFrame(), out); }
void AnimatedInt::getStoredDouble(double& out) const {
    std::int32_t number = 0;
    getInteger(number);
    out = number;
}
void AnimatedInt::valueAtFrameInteger(std::int32_t frame, std::int32_t& out) const { evaluate(frame, out); }

ValuePointer AnimatedBoolean::clone() const { return makeValue<AnimatedBoolean>(parameter, undoable, clock); }
void AnimatedBoolean::evaluate(std::int32_t frame, bool& out) const {
    const KeySpan span = findKeySpan(frame);
    if (span.exact || span.between) {
        out = keyValue(span.index);
    } else {
        askParent(out);
    }
}
void AnimatedBoolean::setBoolean(bool boolean) { addKey(currentFrame(), boolean); }
void AnimatedBoolean::getBoolean(bool& out) const { evaluate(currentFrame(), out); }
void AnimatedBoolean::addKeyBoolean(std::int32_t frame, bool boolean) { addKey(frame, boolean); }
void AnimatedBoolean::valueAtFrameBoolean(std::int32_t frame, bool& out) const { evaluate(frame, out); }

ValuePointer AnimatedIntXY::clone() const { return makeValue<AnimatedIntXY>(parameter, undoable, clock); }
void AnimatedIntXY::setIntegerXY(std::int32_t x, std::int32_t y) { addKey(currentFrame(), {x, y}); }
void AnimatedIntXY::getIntegerXY(std::int32_t& outX, std::int32_t& outY) const {
    valueAtFrameIntegerXY(currentFrame(), outX, outY);
}
void AnimatedIntXY::addKeyIntegerXY(std::int32_t frame, std::int32_t x, std::int32_t y) { addKey(frame, {x, y}); }
void AnimatedIntXY::valueAtFrameIntegerXY(std::int32_t frame, std::int32_t& outX, std::int32_t& outY) const {
    IntegerPair pair{outX, outY};
    evaluate(frame, pair);
    outX = pair.x;
    outY = pair.y;
}

ValuePointer AnimatedDoubleXY::clone() const { return makeValue<AnimatedDoubleXY>(parameter, undoable, clock); }
void AnimatedDoubleXY::setDoubleXY(double x, double y) { addKey(currentFrame(), {x, y}); }
void AnimatedDoubleXY::getDoubleXY(double& outX, double& outY) const {
    valueAtFrameDoubleXY(currentFrame(), outX, outY);
}
void AnimatedDoubleXY::addKeyDoubleXY(std::int32_t frame, double x, double y) { addKey(frame, {x, y}); }
void AnimatedDoubleXY::valueAtFrameDoubleXY(std::int32_t frame, double& outX, double& outY) const {
    DoublePair pair{outX, outY};
    evaluate(frame, pair);
    outX = pair.x;
    outY = pair.y;
}
void AnimatedDoubleXY::componentColour(Colour& out, std::int32_t component) const {
    out = colourOfComponent(component, 2);
}
void AnimatedDoubleXY::componentName(std::string& out, std::int32_t component) const {
    out.assign(1, component == 0 ? 'X' : 'Y');
}

ValuePointer AnimatedColour::clone() const { return makeValue<AnimatedColour>(parameter, undoable, clock); }
void AnimatedColour::setColour(const Colour& colour) { addKey(currentFrame(), colour); }
void AnimatedColour::getColour(Colour& out) const { evaluate(currentFrame(), out); }
void AnimatedColour::addKeyColour(std::int32_t frame, const Colour& colour) { addKey(frame, colour); }
void AnimatedColour::valueAtFrameColour(std::int32_t frame, Colour& out) const { evaluate(frame, out); }
void AnimatedColour::componentColour(Colour& out, std::int32_t component) const {
    out = colourOfComponent(component, 3);
}
void AnimatedColour::componentName(std::string& out, std::int32_t component) const {
    out = component == 0 ? "Red" : component == 1 ? "Green" : "Blue";
}

}  // namespace chalkpane
