#include "apps/chalkpane/curves/curve_series.h"

#include <algorithm>
#include <cmath>
#include <typeinfo>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_numbers.h"
#include "chalkpane/parameters/animation/animated_position.h"
#include "chalkpane/parameters/parameter_def.h"
#include "chalkpane/parameters/parameter_table.h"

namespace chalkpane::app {
namespace {

using enum ParameterType;

enum class Shape : std::uint8_t { None, Number, Whole, Flag, Choice, Pair, WholePair, Colours, File };

Shape ShapeOf(const ParameterValue& value) {
    switch (value.getParameter()->type) {
        case integer:
        case plainInteger:
            return Shape::Whole;
        case real:
        case logarithmic:
        case float32:
        case angle0To360:
        case angle720:
        case angle360:
            return Shape::Number;
        case boolean:
            return Shape::Flag;
        case enumeration:
            return Shape::Choice;
        case colour:
            return Shape::Colours;
        case integerPair:
            return Shape::WholePair;
        case doublePair:
        case position:
        case mappedPair:
        case position3d:
        case scaledPosition:
            return Shape::Pair;
        case fileName:
            return Shape::File;
        default:
            return Shape::None;
    }
}

// Hands the value to `visit` as what it is; false where it is none of these classes.
template <typename... Classes, typename Visit>
bool VisitAs(const ParameterValue& value, const Visit& visit) {
    const auto attempt = [&](const auto* as) {
        if (as != nullptr) visit(*as);
        return as != nullptr;
    };
    return (attempt(dynamic_cast<const Classes*>(&value)) || ...);
}

// The number that a curve runs on, which for a logarithmic value is not the one it answers.
struct Scale {
    bool isLogarithmic = false;
    [[nodiscard]] double ToCurve(const ParameterValue& value, double plain) const {
        return isLogarithmic ? dynamic_cast<const AnimatedLogDouble&>(value).toLog(plain) : plain;
    }
    [[nodiscard]] double ToPlain(double number) const {
        return isLogarithmic ? AnimatedLogDouble::fromLog(number) : number;
    }
};

bool RunsOnHandles(const ParameterValue& value) {
    const auto ignore = [](const auto&) {};
    return VisitAs<AnimatedDouble, AnimatedFloat, AnimatedInt, AnimatedIntXY, AnimatedColour>(value, ignore) ||
           typeid(value) == typeid(AnimatedDoubleXY);
}

}  // namespace

std::vector<std::string> SeriesNames(const ParameterValue& value) {
    switch (ShapeOf(value)) {
        case Shape::None:
            return {};
        case Shape::Pair:
        case Shape::WholePair:
            return {"x", "y"};
        case Shape::Colours:
            return {"red", "green", "blue"};
        case Shape::File:
            return {"weight"};
        default:
            return {"value"};
    }
}

std::vector<double> SeriesAt(const ParameterValue& value, const AnimationClock& clock) {
    double number = 0.0;
    double second = 0.0;
    std::int32_t whole = 0;
    std::int32_t wholeSecond = 0;
    std::uint8_t index = 0;
    float narrow = 0.0F;
    bool flag = false;
    Colour paint;
    switch (ShapeOf(value)) {
        case Shape::None:
            return {};
        case Shape::Number:
            value.getFloat(narrow);  // answered by floats alone, as the wide number is by doubles
            number = narrow;
            value.getDouble(number);
            return {number};
        case Shape::Whole:
            value.getInteger(whole);
            return {static_cast<double>(whole)};
        case Shape::Flag:
            value.getBoolean(flag);
            return {flag ? 1.0 : 0.0};
        case Shape::Choice:
            value.getEnumeration(index);
            return {static_cast<double>(index)};
        case Shape::Pair:
            value.getDoubleXY(number, second);
            return {number, second};
        case Shape::WholePair:
            value.getIntegerXY(whole, wholeSecond);
            return {static_cast<double>(whole), static_cast<double>(wholeSecond)};
        case Shape::Colours:
            value.getColour(paint);
            return {static_cast<double>(paint.red), static_cast<double>(paint.green), static_cast<double>(paint.blue)};
        case Shape::File:
            break;
    }
    const auto* const name = dynamic_cast<const AnimatedFileName*>(&value);
    return {name != nullptr ? name->blendAt(clock.currentFrame()).weight : 1.0};
}

std::vector<std::string> TextsAt(const ParameterValue& value, const AnimationClock& clock) {
    if (ShapeOf(value) != Shape::File) return {};
    if (const auto* const animated = dynamic_cast<const AnimatedFileName*>(&value)) {
        const FileNameBlend blend = animated->blendAt(clock.currentFrame());
        return {blend.nameA.string(), blend.nameB.string()};
    }
    FileName name;
    readFileName(value, name);
    return {name.string(), ""};
}

double KeyNumber(const ParameterValue& value, std::int32_t index, std::size_t component) {
    double number = 0.0;
    VisitAs<AnimatedDouble, AnimatedFloat, AnimatedInt, AnimatedBoolean, AnimatedIntXY, AnimatedDoubleXY,
            AnimatedColour, AnimatedPosition, AnimatedPosition3d>(value, [&](const auto& as) {
        number = getComponent(as.keyValue(index), static_cast<std::int32_t>(component));
    });
    return dynamic_cast<const AnimatedFileName*>(&value) != nullptr ? 1.0 : number;
}

std::vector<HandleEnd> HandleEnds(const ParameterValue& value, std::size_t component, const AnimationClock& clock) {
    std::vector<HandleEnd> ends;
    if (!RunsOnHandles(value)) return ends;
    const Scale scale{dynamic_cast<const AnimatedLogDouble*>(&value) != nullptr};
    const std::int32_t last = value.keyCount() - 1;
    const auto frame = [&](std::int32_t i) { return static_cast<double>(value.keyAt(i)->frame(clock)); };
    const auto number = [&](std::int32_t i) { return scale.ToCurve(value, KeyNumber(value, i, component)); };
    // The slope at a key runs from its neighbour on the left to that on the right, as far as there are any.
    const auto slope = [&](std::int32_t i) {
        const std::int32_t before = std::max(i - 1, 0);
        const std::int32_t after = std::min(i + 1, last);
        return (number(after) - number(before)) / (frame(after) - frame(before));
    };
    // A positive handle is flat, a negative one runs along the slope.
    const auto add = [&](std::int32_t i, double handle, double span, double direction) {
        const double length = std::fabs(handle) * span * direction;
        const double rise = handle < 0.0 ? slope(i) * length : 0.0;
        ends.push_back({{frame(i), scale.ToPlain(number(i))}, {frame(i) + length, scale.ToPlain(number(i) + rise)}});
    };
    for (std::int32_t i = 0; i < last; ++i) {
        const double span = frame(i + 1) - frame(i);
        const double out = value.keyAt(i)->outHandle;
        const double in = value.keyAt(i + 1)->inHandle;
        if (span <= 0.0 || (out == 0.0 && in == 0.0)) continue;
        if (out != 0.0) add(i, out, span, 1.0);
        if (in != 0.0) add(i + 1, in, span, -1.0);
    }
    return ends;
}

}  // namespace chalkpane::app
