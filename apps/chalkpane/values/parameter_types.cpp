#include "apps/chalkpane/values/parameter_types.h"

#include <algorithm>
#include <cmath>

#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/parameter_table.h"
#include "chalkpane/parameters/string_value.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using enum ParameterType;
using cli::Error;
using cli::Quoted;

bool IsFloat(ParameterType type) {
    return type == float32 || type == angle0To360 || type == angle720 || type == angle360;
}

template <typename Number>
std::string TextOfAny(Number number) {
    if constexpr (std::is_integral_v<Number>)
        return std::to_string(number);
    else
        return TextOfNumber(number);
}

void CheckRange(const ParameterDef& definition, double number) {
    double low = 0.0;
    double high = 0.0;
    if (!definition.getRange(low, high) || (number >= low && number <= high)) return;
    throw Error(TextOfLimit(definition.type, number) + " lies outside " + TextOfLimit(definition.type, low) + " .. " +
                TextOfLimit(definition.type, high));
}

float ParseFloat(std::string_view text) {
    const float number = toFloat(ParseNumber(text));
    if (!std::isfinite(number)) throw Error(Quoted(text) + " is too large");
    return number;
}

// The accessors of one family of numbers. Floats are read, compared with their range and told as floats: 0.1 lies at
// the limit that was declared as 0.1.
template <typename Number>
struct Family;
template <>
struct Family<std::int32_t> {
    static constexpr auto parse = ParseInteger;
    static constexpr auto get = &ParameterValue::getInteger;
    static constexpr auto set = &ParameterValue::setInteger;
};
template <>
struct Family<float> {
    static constexpr auto parse = ParseFloat;
    static constexpr auto get = &ParameterValue::getFloat;
    static constexpr auto set = &ParameterValue::setFloat;
};
template <>
struct Family<double> {
    static constexpr auto parse = ParseNumber;
    static constexpr auto get = &ParameterValue::getDouble;
    static constexpr auto set = &ParameterValue::setDouble;
};

template <typename Number>
bool IsDefault(const ParameterDef& definition, Number number) {
    if (!definition.defaultValue) return false;
    Number standard{};
    (definition.defaultValue.get()->*Family<Number>::get)(standard);
    return number == standard;
}

template <typename Number>
void SetNumber(ParameterValue& value, std::string_view text, const Reading& reading) {
    const Number number = Family<Number>::parse(text);
    if (!IsDefault(reading.definition, number)) CheckRange(reading.definition, number);
    (value.*Family<Number>::set)(number);
}
template <typename Number>
std::string TellNumber(const ParameterValue& value, const Reading&) {
    Number number{};
    (value.*Family<Number>::get)(number);
    return TextOfAny(number);
}

void SetBoolean(ParameterValue& value, std::string_view text, const Reading&) { value.setBoolean(ParseBoolean(text)); }
std::string TellBoolean(const ParameterValue& value, const Reading&) {
    bool flag = false;
    value.getBoolean(flag);
    return flag ? "true" : "false";
}

void SetChoice(ParameterValue& value, std::string_view text, const Reading& reading) {
    const auto& words = reading.choices;
    const std::string_view word = Trimmed(text);
    const auto found =
        std::ranges::find_if(words, [word](const std::string& choice) { return SameName(choice, word); });
    if (found != words.end()) {
        value.setEnumeration(static_cast<std::uint8_t>(found - words.begin()));
        return;
    }
    const bool isNumber = !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
    if (!words.empty() && !isNumber) throw Error("there is no choice " + Quoted(word) + cli::NearestHint(word, words));
    const std::int32_t number = ParseInteger(word);
    const std::int32_t last = words.empty() ? 255 : static_cast<std::int32_t>(words.size()) - 1;
    if (number < 0 || number > last) throw Error(Quoted(word) + " lies outside 0 .. " + std::to_string(last));
    value.setEnumeration(static_cast<std::uint8_t>(number));
}
std::string TellChoice(const ParameterValue& value, const Reading& reading) {
    std::uint8_t index = 0;
    value.getEnumeration(index);
    return index < reading.choices.size() ? reading.choices[index] : std::to_string(index);
}

void SetColour(ParameterValue& value, std::string_view text, const Reading&) {
    const ColourText colour = ParseColour(text);
    if (colour.alpha) throw Error(Quoted(text) + " has an alpha, which this color does not");
    value.setColour(colour.colour);
}
std::string TellColour(const ParameterValue& value, const Reading&) {
    Colour colour;
    value.getColour(colour);
    return TextOfColour(colour);
}

void SetIntegerPair(ParameterValue& value, std::string_view text, const Reading& reading) {
    const auto numbers = ParseIntegers(text, 2);
    for (const std::int32_t number : numbers) CheckRange(reading.definition, number);
    value.setIntegerXY(numbers[0], numbers[1]);
}
void SetPair(ParameterValue& value, std::string_view text, const Reading& reading) {
    const auto numbers = ParseNumbers(text, 2);
    for (const double number : numbers) CheckRange(reading.definition, number);
    value.setDoubleXY(numbers[0], numbers[1]);
}
template <typename Number, void (ParameterValue::*get)(Number&, Number&) const>
std::string TellPair(const ParameterValue& value, const Reading&) {
    Number x{};
    Number y{};
    (value.*get)(x, y);
    return TextOfAny(x) + ',' + TextOfAny(y);
}

void SetRectangle(ParameterValue& value, std::string_view text, const Reading&) {
    const auto numbers = ParseIntegers(text, 4);
    value.setRect(Rect(numbers[0], numbers[1], numbers[2], numbers[3]));
}
std::string TellRectangle(const ParameterValue& value, const Reading&) {
    Rect rect;
    value.getRect(rect);
    return std::to_string(rect.x0) + ',' + std::to_string(rect.y0) + ',' + std::to_string(rect.x1) + ',' +
           std::to_string(rect.y1);
}

void SetGraph(ParameterValue& value, std::string_view text, const Reading&) { value.setGraph(ParseGraph(text)); }
std::string TellGraph(const ParameterValue& value, const Reading&) {
    ShapePointList graph;
    value.getGraph(graph);
    return TextOfGraph(graph);
}

void SetSpline(ParameterValue& value, std::string_view text, const Reading&) {
    value.setColourSpline(Trimmed(text).empty() ? ColourSpline() : ParseColourSpline(text));
}
std::string TellSpline(const ParameterValue& value, const Reading&) {
    ColourSpline spline;
    value.getColourSpline(spline);
    return TextOfColourSpline(spline);
}

void SetString(ParameterValue& value, std::string_view text, const Reading&) { value.setString(std::string(text)); }
std::string TellString(const ParameterValue& value, const Reading&) {
    std::string text;
    value.getString(text);
    return text;
}

// Names of files are kept with backslashes and told with slashes.
void SetFile(ParameterValue& value, std::string_view text, const Reading&) {
    if (auto* const animated = dynamic_cast<AnimatedFileName*>(&value))
        animated->setFileName(FileName(text));
    else if (auto* const plain = dynamic_cast<FileNameValue*>(&value))
        plain->setFileName(FileName(text));
}
std::string TellFile(const ParameterValue& value, const Reading&) {
    FileName name;
    readFileName(value, name);
    std::string text = name.string();
    std::ranges::replace(text, '\\', '/');
    return text;
}

void RefuseFont(ParameterValue&, std::string_view, const Reading&) { throw Error("a font cannot be set from text"); }
std::string TellNothing(const ParameterValue&, const Reading&) { return {}; }

constexpr ParameterTypeText typeTexts[] = {
    {integer, "integer", SetNumber<std::int32_t>, TellNumber<std::int32_t>},
    {real, "number", SetNumber<double>, TellNumber<double>},
    {boolean, "boolean", SetBoolean, TellBoolean},
    {colour, "color", SetColour, TellColour},
    {integerPair, "integer pair", SetIntegerPair, TellPair<std::int32_t, &ParameterValue::getIntegerXY>},
    {doublePair, "pair", SetPair, TellPair<double, &ParameterValue::getDoubleXY>},
    {position, "position", SetPair, TellPair<double, &ParameterValue::getDoubleXY>},
    {graph, "graph", SetGraph, TellGraph},
    {enumeration, "choice", SetChoice, TellChoice},
    {font, "font", RefuseFont, TellNothing},
    {rectangle, "rectangle", SetRectangle, TellRectangle},
    {string, "string", SetString, TellString},
    {path, "path", SetString, TellString},
    {logarithmic, "number", SetNumber<double>, TellNumber<double>},
    {mappedPair, "pair", SetPair, TellPair<double, &ParameterValue::getDoubleXY>},
    {colourSpline, "color spline", SetSpline, TellSpline},
    {float32, "number", SetNumber<float>, TellNumber<float>},
    {fileName, "file", SetFile, TellFile},
    {position3d, "position", SetPair, TellPair<double, &ParameterValue::getDoubleXY>},
    {angle0To360, "angle", SetNumber<float>, TellNumber<float>},
    {angle720, "angle", SetNumber<float>, TellNumber<float>},
    {angle360, "angle", SetNumber<float>, TellNumber<float>},
    {scaledPosition, "position", SetPair, TellPair<double, &ParameterValue::getDoubleXY>},
    {layer, "layer", SetString, TellString},
    {plainInteger, "integer", SetNumber<std::int32_t>, TellNumber<std::int32_t>},
};

}  // namespace

std::string TextOfLimit(ParameterType type, double limit) {
    return IsFloat(type) ? TextOfNumber(static_cast<float>(limit)) : TextOfNumber(limit);
}

const ParameterTypeText* TextOfType(ParameterType type) {
    const auto* const found = std::ranges::find(typeTexts, type, &ParameterTypeText::type);
    return found != std::end(typeTexts) ? found : nullptr;
}

}  // namespace chalkpane::app
