#include "chalkpane/parameters/compound_values.h"

namespace chalkpane {

void IntegerXYValue::getIntegerXY(std::int32_t& outX, std::int32_t& outY) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getIntegerXY(outX, outY);
    outX = value.x;
    outY = value.y;
}

void DoubleXYValue::getDoubleXY(double& outX, double& outY) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getDoubleXY(outX, outY);
    outX = value.x;
    outY = value.y;
}

void ColourValue::getColour(Colour& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getColour(out);
    out = value;
}

void RectValue::getRect(Rect& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getRect(out);
    out = value;
}

}  // namespace chalkpane
