#include "tools/parameter_text.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "parameters/animated_file_name.h"
#include "parameters/number_conversion.h"
#include "parameters/parameter_table.h"
#include "parameters/string_value.h"
#include "shared/error.h"
#include "shared/nearest_name.h"
#include "tools/value_parsing.h"

namespace chalkpane::tools {
namespace {

using enum ParameterType;
using shared::Error;
using shared::Quoted;

// What a text is read against.
struct Reading {
    const ParameterDef& definition;
    const std::vector<std::string>& choices;
};

// How the values of one type are told and read. Floats are read, compared with their range and told as floats: 0.1 lies
// at the limit that was declared as 0.1.
struct TypeText {
    ParameterType type;
    const char* word;
    void (*set)(ParameterValue& value, std::string_view text, const Reading& reading);
    std::string (*tell)(const ParameterValue& value, const Reading& reading);
};

bool IsFloat(ParameterType type) {
    return type == float32 || type == angle0To360 || type == angle720 || type == angle360;
}

std::string LimitText(ParameterType type, double limit) {
    return IsFloat(type) ? TextOfNumber(static_cast<float>(limit)) : TextOfNumber(limit);
}

// The number that `getter` reads from the default, where there is one.
template <typename Number>
bool IsDefault(const ParameterDef& definition, Number number, void (ParameterValue::*getter)(Number&) const) {
    if (!definition.defaultValue) return false;
    Number standard{};
    (definition.defaultValue.get()->*getter)(standard);
    return number == standard;
}

void CheckRange(const ParameterDef& definition, double number) {
    double low = 0.0;
    double high = 0.0;
    if (!definition.getRange(low, high) || (number >= low && number <= high)) return;
    throw Error(LimitText(definition.type, number) + " lies outside " + LimitText(definition.type, low) + " .. " +
                LimitText(definition.type, high));
}

void SetInteger(ParameterValue& value, std::string_view text, const Reading& reading) {
    const std::int32_t number = ParseInteger(text);
    if (!IsDefault(reading.definition, number, &ParameterValue::getInteger)) CheckRange(reading.definition, number);
    value.setInteger(number);
}
std::string TellInteger(const ParameterValue& value, const Reading&) {
    std::int32_t number = 0;
    value.getInteger(number);
    return std::to_string(number);
}

void SetDouble(ParameterValue& value, std::string_view text, const Reading& reading) {
    const double number = ParseNumber(text);
    if (!IsDefault(reading.definition, number, &ParameterValue::getDouble)) CheckRange(reading.definition, number);
    value.setDouble(number);
}
std::string TellDouble(const ParameterValue& value, const Reading&) {
    double number = 0.0;
    value.getDouble(number);
    return TextOfNumber(number);
}

void SetFloat(ParameterValue& value, std::string_view text, const Reading& reading) {
    const float number = toFloat(ParseNumber(text));
    if (!std::isfinite(number)) throw Error(Quoted(text) + " is too large");
    if (!IsDefault(reading.definition, number, &ParameterValue::getFloat)) CheckRange(reading.definition, number);
    value.setFloat(number);
}
std::string TellFloat(const ParameterValue& value, const Reading&) {
    float number = 0.0F;
    value.getFloat(number);
    return TextOfNumber(number);
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
    if (!words.empty() && !isNumber)
        throw Error("there is no choice " + Quoted(word) + shared::NearestHint(word, words));
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
std::string TellIntegerPair(const ParameterValue& value, const Reading&) {
    IntegerPair pair;
    value.getIntegerXY(pair.x, pair.y);
    return std::to_string(pair.x) + ',' + std::to_string(pair.y);
}

void SetPair(ParameterValue& value, std::string_view text, const Reading& reading) {
    const auto numbers = ParseNumbers(text, 2);
    for (const double number : numbers) CheckRange(reading.definition, number);
    value.setDoubleXY(numbers[0], numbers[1]);
}
std::string TellPair(const ParameterValue& value, const Reading&) {
    DoublePair pair;
    value.getDoubleXY(pair.x, pair.y);
    return TextOfNumber(pair.x) + ',' + TextOfNumber(pair.y);
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

constexpr TypeText typeTexts[] = {
    {integer, "integer", SetInteger, TellInteger},
    {real, "number", SetDouble, TellDouble},
    {boolean, "boolean", SetBoolean, TellBoolean},
    {colour, "color", SetColour, TellColour},
    {integerPair, "integer pair", SetIntegerPair, TellIntegerPair},
    {doublePair, "pair", SetPair, TellPair},
    {position, "position", SetPair, TellPair},
    {graph, "graph", SetGraph, TellGraph},
    {enumeration, "choice", SetChoice, TellChoice},
    {font, "font", RefuseFont, TellNothing},
    {rectangle, "rectangle", SetRectangle, TellRectangle},
    {string, "string", SetString, TellString},
    {path, "path", SetString, TellString},
    {logarithmic, "number", SetDouble, TellDouble},
    {mappedPair, "pair", SetPair, TellPair},
    {colourSpline, "color spline", SetSpline, TellSpline},
    {float32, "number", SetFloat, TellFloat},
    {fileName, "file", SetFile, TellFile},
    {position3d, "position", SetPair, TellPair},
    {angle0To360, "angle", SetFloat, TellFloat},
    {angle720, "angle", SetFloat, TellFloat},
    {angle360, "angle", SetFloat, TellFloat},
    {scaledPosition, "position", SetPair, TellPair},
    {layer, "layer", SetString, TellString},
    {plainInteger, "integer", SetInteger, TellInteger},
};

// Null for what has no value, as the begin and the end of a group.
const TypeText* TextOfType(ParameterType type) {
    const auto* const found = std::ranges::find(typeTexts, type, &TypeText::type);
    return found != std::end(typeTexts) ? found : nullptr;
}

}  // namespace

ParameterTexts::ParameterTexts(std::string where, const ParameterList& list, Choices choices)
    : m_where(std::move(where)), m_list(&list), m_choices(std::move(choices)) {}

std::vector<std::string> ParameterTexts::ChoicesOf(const ParameterDef& definition) const {
    if (!m_choices || definition.type != enumeration) return {};
    return m_choices(definition);
}

const ParameterDef& ParameterTexts::Find(std::string_view name) const {
    const std::string_view wanted = Trimmed(name);
    std::vector<std::string> labels;
    const ParameterDef* byKey = nullptr;
    for (const auto& definition : *m_list) {
        if (TextOfType(definition->type) == nullptr) continue;
        if (SameName(definition->label, wanted)) return *definition;
        if (byKey == nullptr && SameName(definition->name, wanted)) byKey = definition.get();
        labels.push_back(definition->label);
    }
    if (byKey != nullptr) return *byKey;
    const std::string hint = labels.empty() ? "; there are none" : shared::NearestHint(wanted, labels);
    throw Error(m_where, {}, "there is no parameter " + Quoted(wanted) + hint);
}

void ParameterTexts::SetText(ParameterValue& value, std::string_view text) const {
    const ParameterDef& definition = *value.getParameter();
    const auto choices = ChoicesOf(definition);
    try {
        if (const TypeText* const type = TextOfType(definition.type)) type->set(value, text, {definition, choices});
    } catch (const Error& error) {
        throw Error(m_where, definition.label, error.what());
    }
}

std::string ParameterTexts::TextOf(const ParameterValue& value) const {
    const ParameterDef& definition = *value.getParameter();
    const auto choices = ChoicesOf(definition);
    const TypeText* const type = TextOfType(definition.type);
    return type != nullptr ? type->tell(value, {definition, choices}) : std::string();
}

ParameterDescription ParameterTexts::Describe(const ParameterDef& definition) const {
    const TypeText* const type = TextOfType(definition.type);
    ParameterDescription description{
        &definition, definition.label,     definition.name, type != nullptr ? type->word : "", {}, {},
        {},          ChoicesOf(definition)};
    double low = 0.0;
    double high = 0.0;
    if (definition.getRange(low, high)) {
        description.minimum = LimitText(definition.type, low);
        description.maximum = LimitText(definition.type, high);
    }
    // A fresh value answers the default, or zero where none is declared.
    if (const ValuePointer fresh = DataSet::createValue(&definition, false, nullptr))
        description.defaultText = TextOf(*fresh);
    return description;
}

std::vector<ParameterDescription> ParameterTexts::Describe() const {
    std::vector<ParameterDescription> descriptions;
    for (const auto& definition : *m_list)
        if (TextOfType(definition->type) != nullptr) descriptions.push_back(Describe(*definition));
    return descriptions;
}

ParameterValue& ParameterTexts::Set(DataSet& values, std::string_view name, std::string_view text) const {
    const ParameterDef& definition = Find(name);
    ParameterValue* value = values.findValue(&definition);
    if (value == nullptr) value = values.addParameter(&definition, false, nullptr);
    if (value == nullptr) throw Error(m_where, definition.label, "has no value that a text could set");
    SetText(*value, text);
    return *value;
}

}  // namespace chalkpane::tools
