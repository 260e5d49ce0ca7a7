#include "chalkpane/parameters/parameter_def.h"

#include <utility>

#include "chalkpane/parameters/compound_values.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"

namespace chalkpane {

namespace {

std::int32_t nextId = 0;  // of the next record of the module

bool isFloat(ParameterType type) {
    using enum ParameterType;
    return type == float32 || type == angle0To360 || type == angle720 || type == angle360;
}

// Types whose limits are doubles in whatever form they come.
bool hasDoubleLimits(ParameterType type) {
    using enum ParameterType;
    return type == real || type == position || type == position3d || type == scaledPosition || type == doublePair;
}

bool isInteger(ParameterType type) { return type == ParameterType::integer || type == ParameterType::integerPair; }

template <typename Value, typename Number>
void setBoth(ParameterDef& definition, Number low, Number high) {
    definition.minimum = makeValue<Value>(low);
    definition.maximum = makeValue<Value>(high);
}

}  // namespace

ParameterDef::ParameterDef(std::string longName, std::string shortLabel, ParameterType valueType,
                           std::uint8_t classCode)
    : name(std::move(longName)), label(std::move(shortLabel)), type(valueType), code(classCode), id(nextId++) {}

void ParameterDef::setLimits(std::int32_t low, std::int32_t high, std::uint32_t mode) {
    clampMode = mode;
    minimum.reset();
    maximum.reset();
    if (isInteger(type)) {
        setBoth<IntegerValue>(*this, low, high);
    } else if (isFloat(type)) {
        setBoth<FloatValue>(*this, static_cast<float>(low), static_cast<float>(high));
    } else if (hasDoubleLimits(type) || type == ParameterType::mappedPair) {
        setBoth<DoubleValue>(*this, static_cast<double>(low), static_cast<double>(high));
    }
}

// KEEP: whole numbers fit a mapped pair and not a logarithmic double, doubles the other way round, floats neither.
void ParameterDef::setLimits(double low, double high, std::uint32_t mode) {
    clampMode = mode;
    minimum.reset();
    maximum.reset();
    if (isInteger(type)) {
        setBoth<IntegerValue>(*this, truncateToInteger(low), truncateToInteger(high));
    } else if (isFloat(type)) {
        setBoth<FloatValue>(*this, toFloat(low), toFloat(high));
    } else if (hasDoubleLimits(type) || type == ParameterType::logarithmic) {
        setBoth<DoubleValue>(*this, low, high);
    }
}

void ParameterDef::setLimits(float low, float high, std::uint32_t mode) {
    if (type == ParameterType::logarithmic) {
        clampMode = mode;
        minimum.reset();
        maximum.reset();
    } else {
        setLimits(static_cast<double>(low), static_cast<double>(high), mode);
    }
}

void ParameterDef::setDefault(std::int32_t value) {
    if (type == ParameterType::integer || type == ParameterType::plainInteger) {
        defaultValue = makeValue<IntegerValue>(value);
    } else {
        setDefault(static_cast<double>(value));
    }
}

void ParameterDef::setDefault(double value) {
    if (isFloat(type)) {
        defaultValue = makeValue<FloatValue>(toFloat(value));
    } else if (type == ParameterType::real) {
        defaultValue = makeValue<DoubleValue>(value);
    }
}

void ParameterDef::setDefault(float value) { setDefault(static_cast<double>(value)); }

void ParameterDef::setDefault(bool value) {
    if (type == ParameterType::boolean) defaultValue = makeValue<BooleanValue>(value);
}

void ParameterDef::setDefault(std::uint8_t index) {
    if (type == ParameterType::enumeration) defaultValue = makeValue<EnumerationValue>(index);
}

void ParameterDef::setDefault(const Colour& value) {
    if (type == ParameterType::colour) defaultValue = makeValue<ColourValue>(value);
}

void ParameterDef::setDefault(const DoublePair& value) {
    using enum ParameterType;
    if (type == doublePair || type == position || type == scaledPosition || type == mappedPair)
        defaultValue = makeValue<DoubleXYValue>(value.x, value.y);
}

void ParameterDef::setDefault(std::string_view value) {
    if (type == ParameterType::string || type == ParameterType::path) {
        defaultValue = makeValue<StringValue>(std::string(value));
    } else if (type == ParameterType::fileName) {
        defaultValue = makeValue<FileNameValue>(FileName(value));
    }
}

bool ParameterDef::getRange(double& low, double& high) const {
    using enum ParameterType;
    if (!minimum || !maximum) {
        if (type == angle0To360) return low = 0.0, high = 360.0, true;
        if (type == angle720) return low = -720.0, high = 720.0, true;
        if (type == angle360) return low = -360.0, high = 360.0, true;
        return false;
    }
    const auto read = [&]<typename Number>(Number first, void (ParameterValue::*getter)(Number&) const) {
        Number second = first;
        ((*minimum).*getter)(first);
        ((*maximum).*getter)(second);
        low = first;
        high = second;
        return true;
    };
    if (isInteger(type)) return read(std::int32_t{}, &ParameterValue::getInteger);
    if (isFloat(type)) return read(float{}, &ParameterValue::getFloat);
    if (hasDoubleLimits(type) || type == logarithmic || type == mappedPair)
        return read(double{}, &ParameterValue::getDouble);
    if (type != colour) return false;
    Colour first;
    Colour second;
    minimum->getColour(first);
    maximum->getColour(second);
    low = first.red;
    high = second.red;
    return true;
}

double ParameterDef::normalise(double value, double scale) const {
    double low = 0.0;
    double high = 0.0;
    if (!getRange(low, high)) return value;
    return (value - low / scale) / (high / scale - low / scale);
}

double ParameterDef::denormalise(double value, double scale) const {
    double low = 0.0;
    double high = 0.0;
    if (!getRange(low, high)) return value;
    const double result = low / scale + (high / scale - low / scale) * value;
    // KEEP: limited by the range as declared although the interpolation runs in the scaled one.
    if ((clampMode == 1 || clampMode == 3) && result < low) return low;
    if ((clampMode == 2 || clampMode == 3) && result > high) return high;
    return result;
}

}  // namespace chalkpane
