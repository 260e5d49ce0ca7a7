#include "chalkpane/parameters/font_value.h"

namespace chalkpane {

Font* findFont(const std::string&, bool, bool) { return nullptr; }

void FontValue::getFont(Font*& out) const {
    if (const ParameterValue* above = inheritedFrom()) return above->getFont(out);
    out = value;
}

}  // namespace chalkpane
