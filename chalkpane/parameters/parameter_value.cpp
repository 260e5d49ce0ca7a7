#include "chalkpane/parameters/parameter_value.h"

#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane {

ParameterValue::~ParameterValue() = default;

void ParameterValue::destroy() { delete this; }

const ParameterDef* ParameterValue::getParameter() const { return parameter; }

void ParameterValue::setParent(ParameterValue* newParent) { parent = newParent; }

ParameterValue* ParameterValue::getParent() const {
    if (parent != nullptr) return parent;
    return parameter != nullptr ? parameter->defaultValue.get() : nullptr;
}

void ParameterValue::reset() { clearSet(); }
bool ParameterValue::isSetLocally() const { return isSet; }
void ParameterValue::clearSet() { isSet = false; }

void ParameterValue::setGraph(const ShapePointList&) {}
void ParameterValue::setString(const std::string&) {}
void ParameterValue::setRect(const Rect&) {}
void ParameterValue::setFont(Font*) {}
void ParameterValue::setDoubleXY(double, double) {}
void ParameterValue::setIntegerXY(std::int32_t, std::int32_t) {}
void ParameterValue::setColourSpline(const ColourSpline&) {}
void ParameterValue::setColour(const Colour&) {}
void ParameterValue::setBoolean(bool) {}
void ParameterValue::setFloat(float) {}
void ParameterValue::setDouble(double) {}
void ParameterValue::setInteger(std::int32_t) {}
void ParameterValue::setEnumeration(std::uint8_t) {}

void ParameterValue::getGraph(ShapePointList&) const {}
void ParameterValue::getString(std::string&) const {}
void ParameterValue::getRect(Rect&) const {}
void ParameterValue::getFont(Font*&) const {}
void ParameterValue::getDoubleXY(double&, double&) const {}
void ParameterValue::getIntegerXY(std::int32_t&, std::int32_t&) const {}
void ParameterValue::getColourSpline(ColourSpline&) const {}
void ParameterValue::getColour(Colour&) const {}
void ParameterValue::getBoolean(bool&) const {}
void ParameterValue::getFloat(float&) const {}
void ParameterValue::getDouble(double&) const {}
void ParameterValue::getInteger(std::int32_t&) const {}
void ParameterValue::getEnumeration(std::uint8_t&) const {}
void ParameterValue::getStoredDouble(double&) const {}

bool ParameterValue::isAnimated() const { return false; }
std::int32_t ParameterValue::keyCount() const { return 0; }
Key* ParameterValue::keyAt(std::int32_t) const { return nullptr; }
void ParameterValue::clearKeys() {}
void ParameterValue::retimeKeys(const AnimationClock&) {}
std::int32_t ParameterValue::resortKey(std::int32_t index) { return index; }
std::int32_t ParameterValue::removeCoincidentKeys(std::int32_t) { return 0; }

void ParameterValue::appendText(std::string&) const {}
void ParameterValue::writeToStream(TextSink&) const {}
bool ParameterValue::readText(TextScanner&) { return true; }

void ParameterValue::markChanged() { changed = true; }
bool ParameterValue::isChanged() const { return changed; }

bool ParameterValue::getCurveLocked() const { return false; }
void ParameterValue::setCurveLocked(bool) {}
std::int32_t ParameterValue::getCurveRange() const { return 0; }
void ParameterValue::setCurveRange(std::int32_t) {}
void ParameterValue::setCurveScale(float) {}
double ParameterValue::getCurveScale() const { return 1.0; }
bool ParameterValue::isEditable() const { return true; }
void ParameterValue::clearValue() { clearSet(); }
std::int32_t ParameterValue::componentCount() const { return 1; }
void ParameterValue::componentColour(Colour& out, std::int32_t) const { out = Colour(); }
void ParameterValue::componentName(std::string& out, std::int32_t) const {
    if (parameter != nullptr) out = parameter->label;
}
double ParameterValue::normalisedValue(std::int32_t) const { return 0.0; }
double ParameterValue::normalisedKeyValue(std::int32_t, std::int32_t) const { return 0.0; }
void ParameterValue::setNormalisedKeyValue(std::int32_t, double, std::int32_t) {}
bool ParameterValue::isDiscrete() const { return true; }

}  // namespace chalkpane
