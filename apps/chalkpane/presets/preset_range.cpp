#include "apps/chalkpane/presets/preset_range.h"

#include "apps/chalkpane/curves/curve_series.h"
#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/parameters/colour.h"
#include "chalkpane/parameters/parameter_def.h"

namespace chalkpane::app {
namespace {

bool FindRange(const ParameterDef& definition, double& low, double& high) {
    if (definition.getRange(low, high)) return true;
    high = Colour::full;
    return definition.type == ParameterType::colour;
}

bool IsDefault(const ParameterDef& definition, double number) {
    if (!definition.defaultValue) return false;
    double wide = 0.0;
    float narrow = 0.0F;
    std::int32_t whole = 0;
    definition.defaultValue->getFloat(narrow);
    definition.defaultValue->getInteger(whole);
    wide = narrow != 0.0F ? double{narrow} : static_cast<double>(whole);
    definition.defaultValue->getDouble(wide);
    return number == wide;
}

// All that the value holds, one after the other.
std::vector<double> NumbersOf(const ParameterValue& value) {
    if (!value.isAnimated()) return value.isSetLocally() ? SeriesAt(value, FrameRateClock()) : std::vector<double>();
    std::vector<double> numbers;
    for (std::int32_t key = 0; key < value.keyCount(); ++key)
        for (std::size_t i = 0; i < SeriesNames(value).size(); ++i) numbers.push_back(KeyNumber(value, key, i));
    return numbers;
}

std::string TextOf(const ParameterDef& definition, double number) {
    switch (definition.type) {
        case ParameterType::float32:
        case ParameterType::angle0To360:
        case ParameterType::angle720:
        case ParameterType::angle360:
            return TextOfNumber(static_cast<float>(number));
        default:
            return TextOfNumber(number);
    }
}

}  // namespace

std::optional<std::string> RangeFault(const ParameterValue& value) {
    const ParameterDef& definition = *value.getParameter();
    double low = 0.0;
    double high = 0.0;
    if (!FindRange(definition, low, high)) return std::nullopt;
    for (const double number : NumbersOf(value))
        if (!(number >= low && number <= high) && !IsDefault(definition, number))
            return TextOf(definition, number) + " lies outside " + TextOf(definition, low) + " .. " +
                   TextOf(definition, high);
    return std::nullopt;
}

}  // namespace chalkpane::app
