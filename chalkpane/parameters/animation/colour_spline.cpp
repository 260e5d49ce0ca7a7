#include "chalkpane/parameters/animation/colour_spline.h"

namespace chalkpane {

void ColourSplineValue::getColourSpline(ColourSpline& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getColourSpline(out);
    out = value;
}

}  // namespace chalkpane
