#include "chalkpane/parameters/data_set.h"

#include <algorithm>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_position.h"
#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/font_value.h"
#include "chalkpane/parameters/graph_value.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"

namespace chalkpane {

namespace {

using Maker = ValuePointer (*)(const ParameterDef* definition, const AnimationClock* clock);

template <typename Value>
ValuePointer plain(const ParameterDef* definition, const AnimationClock*) {
    return makeValue<Value>(definition);
}

template <typename Value>
ValuePointer animated(const ParameterDef* definition, const AnimationClock* clock) {
    return makeValue<Value>(definition, true, clock);
}

struct ValueClasses {
    ParameterType type;
    Maker plainMaker;
    Maker animatedMaker;
};

using enum ParameterType;
constexpr ValueClasses valueClasses[] = {
    {integer, plain<IntegerValue>, animated<AnimatedInt>},
    {real, plain<DoubleValue>, animated<AnimatedDouble>},
    {boolean, plain<BooleanValue>, animated<AnimatedBoolean>},
    {colour, plain<ColourValue>, animated<AnimatedColour>},
    {integerPair, plain<IntegerXYValue>, animated<AnimatedIntXY>},
    {doublePair, plain<DoubleXYValue>, animated<AnimatedDoubleXY>},
    {position, plain<DoubleXYValue>, animated<AnimatedPosition>},
    {graph, plain<GraphValue>, plain<GraphValue>},
    {enumeration, plain<EnumerationValue>, plain<EnumerationValue>},
    {font, plain<FontValue>, nullptr},
    {rectangle, plain<RectValue>, nullptr},
    {string, plain<StringValue>, nullptr},
    {path, plain<PathValue>, nullptr},
    {logarithmic, plain<DoubleValue>, animated<AnimatedLogDouble>},
    {mappedPair, plain<DoubleXYValue>, animated<AnimatedMapXY>},
    {colourSpline, plain<ColourSplineValue>, plain<ColourSplineValue>},
    {float32, plain<FloatValue>, animated<AnimatedFloat>},
    {fileName, plain<FileNameValue>, animated<AnimatedFileName>},
    {position3d, nullptr, animated<AnimatedPosition3d>},
    {angle0To360, plain<FloatValue>, animated<AnimatedFloat>},
    {angle720, plain<FloatValue>, animated<AnimatedFloat>},
    {angle360, plain<FloatValue>, animated<AnimatedFloat>},
    {scaledPosition, plain<DoubleXYValue>, animated<AnimatedPosition>},
    {plainInteger, plain<IntegerValue>, plain<IntegerValue>},
};

}  // namespace

DataSet::~DataSet() {
    for (ValuePointer& value : values) value.reset();
}

std::size_t DataSet::indexOf(const ParameterDef* definition) const {
    if (definition == nullptr) return values.size();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::int32_t id = values[i]->getParameter()->id;
        if (id == definition->id) return i;
        if (id > definition->id) break;
    }
    return values.size();
}

bool DataSet::removeValue(const ParameterDef* definition) {
    const std::size_t index = indexOf(definition);
    if (index == values.size()) return false;
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

void DataSet::addValue(ValuePointer value) {
    if (!value || value->getParameter() == nullptr) return;
    const std::int32_t id = value->getParameter()->id;
    const auto place = std::find_if(values.begin(), values.end(),
                                    [id](const ValuePointer& other) { return other->getParameter()->id > id; });
    values.insert(place, std::move(value));
}

ValuePointer DataSet::replaceValue(ValuePointer value) {
    if (!value) return value;
    const std::size_t index = indexOf(value->getParameter());
    if (index != values.size()) std::swap(values[index], value);
    return value;
}

ValuePointer DataSet::createValue(const ParameterDef* definition, bool animated, const AnimationClock* clock) {
    if (definition == nullptr) return nullptr;
    for (const ValueClasses& classes : valueClasses) {
        if (classes.type != definition->type) continue;
        const Maker make = animated ? classes.animatedMaker : classes.plainMaker;
        return make != nullptr ? make(definition, clock) : nullptr;
    }
    return nullptr;
}

ParameterValue* DataSet::addParameter(const ParameterDef* definition, bool animated, const AnimationClock* clock) {
    ValuePointer value = createValue(definition, animated, clock);
    ParameterValue* const added = value.get();
    if (value) addValue(std::move(value));
    return added;
}

ParameterValue* DataSet::findValue(const ParameterDef* definition) const {
    const std::size_t index = indexOf(definition);
    return index != values.size() ? values[index].get() : nullptr;
}

}  // namespace chalkpane
