#include "chalkpane/parameters/scalar_values.h"

#include "chalkpane/parameters/number_conversion.h"

namespace chalkpane {

void BooleanValue::getBoolean(bool& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getBoolean(out);
    out = value;
}

void IntegerValue::getInteger(std::int32_t& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getInteger(out);
    out = value;
}

void IntegerValue::getStoredDouble(double& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getDouble(out);
    out = value;
}

void EnumerationValue::getEnumeration(std::uint8_t& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getEnumeration(out);
    out = value;
}

void FloatValue::setDouble(double number) { set(toFloat(number)); }

void FloatValue::getFloat(float& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getFloat(out);
    out = value;
}

void FloatValue::getDouble(double& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getDouble(out);
    out = value;
}

void DoubleValue::getDouble(double& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getDouble(out);
    out = value;
}

}  // namespace chalkpane
