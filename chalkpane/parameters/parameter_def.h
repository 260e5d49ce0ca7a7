#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "chalkpane/parameters/number_pair.h"
#include "chalkpane/parameters/parameter_value.h"

namespace chalkpane {

// What a parameter holds; decides the class of its values (see DataSet::createValue).
enum class ParameterType : std::uint32_t {
    integer = 0,
    real = 1,  // a 64-bit float
    boolean = 2,
    colour = 3,
    integerPair = 4,
    doublePair = 5,
    position = 6,  // on the image
    graph = 7,
    enumeration = 8,
    font = 9,
    rectangle = 10,
    string = 11,
    path = 12,
    logarithmic = 13,
    mappedPair = 14,
    colourSpline = 15,
    float32 = 16,
    fileName = 17,
    groupBegin = 19,  // declared without a value, as is the end
    groupEnd = 20,
    position3d = 22,
    angle0To360 = 23,
    angle720 = 24,  // -720 .. 720
    angle360 = 25,  // -360 .. 360
    scaledPosition = 26,
    layer = 27,
    plainInteger = 28,  // never animated
};

// One declared parameter of a class, shared by all its objects. Belongs to the ParameterList and lives as long as it.
struct ParameterDef {
    // Takes the next `id` of the module-wide count, so records sort by the order in which they were made.
    ParameterDef(std::string longName, std::string shortLabel, ParameterType valueType, std::uint8_t classCode);

    std::string name;   // long and unique: "Brush Opacity"
    std::string label;  // shown to the operator: "Opacity"
    ParameterType type;
    std::uint8_t code;  // by which the class recognises the parameter; small, unique within the class
    std::uint8_t flagB = 0;
    std::int32_t id;
    ValuePointer minimum;  // of the class that fits the type, or null; advice to a control, setters do not clamp
    ValuePointer maximum;
    ValuePointer defaultValue;
    std::uint32_t clampMode = 3;  // for `denormalise`; bit 0: at the minimum, bit 1: at the maximum
    std::uint8_t flagA = 0;
    bool inherits = true;    // false: a value once set counts as set even when it equals what it would inherit
    std::uint8_t flagC = 0;  // 1: shown as a slider, in per cent

    // Build the limits in the class that fits the type. A form that does not fit leaves both limits null.
    void setLimits(std::int32_t low, std::int32_t high, std::uint32_t mode = 3);
    void setLimits(double low, double high, std::uint32_t mode = 3);
    void setLimits(float low, float high, std::uint32_t mode = 3);

    // Build the default likewise. A form that does not fit the type leaves the default as it was.
    void setDefault(std::int32_t value);
    void setDefault(double value);
    void setDefault(float value);
    void setDefault(bool value);
    void setDefault(std::uint8_t index);
    void setDefault(const Colour& value);
    void setDefault(const DoublePair& value);
    void setDefault(std::string_view value);  // of a string or a path, or the name of a file
    void setDefault(const char* value) { setDefault(std::string_view(value)); }

    // True when there is a range, given in the numbers that the type is read by (a colour by its red); false leaves the
    // outputs. The angle types have one without declared limits.
    bool getRange(double& low, double& high) const;
    // To and from 0 .. 1 across the range divided by `scale`; without a range both answer `value` unchanged.
    double normalise(double value, double scale) const;
    double denormalise(double value, double scale) const;
};

}  // namespace chalkpane
