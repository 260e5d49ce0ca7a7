#include "chalkpane/filters/filter.h"

#include <string>

#include "chalkpane/filters/filter_tool_factory.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/string_value.h"

namespace chalkpane {
namespace {

// A position in per cent of `rect` becomes one in pixels.
void PlaceWithin(ParameterValue& value, const Rect& rect) {
    double x = 0.0;
    double y = 0.0;
    value.getDoubleXY(x, y);
    value.setDoubleXY(rect.x0 + rect.Width() * x / 100.0, rect.y0 + rect.Height() * y / 100.0);
}

}  // namespace

Filter::Filter() = default;
Filter::Filter(const Filter& other) : ParameterisedObject(other), ImageChannels() {}
Filter::~Filter() = default;

void Filter::ApplyMasked(const Image& source, std::unique_ptr<Image>& result, const Image* /*mask*/, bool fast,
                         const Rect* region, bool expand) {
    Apply(source, result, fast, region, expand);
}

Rect Filter::RegionOnOutput(const Rect& rect, const Rect& region, bool /*expand*/) const {
    return InputRegion(rect, region);
}
Rect Filter::InputRegion(const Rect& /*rect*/, const Rect& region) const { return region; }
Rect Filter::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return region; }

std::int32_t Filter::ParameterCount() const {
    return parameters == nullptr ? 0 : static_cast<std::int32_t>(parameters->size());
}

ParameterValue* Filter::AddValue(DataSet& values, const ParameterDef& definition, bool animated,
                                 const AnimationClock* clock, const LayerProvider* layers) const {
    if (definition.type != ParameterType::layer) return values.addParameter(&definition, animated, clock);
    auto value = makeValue<LayerValue>(&definition, layers);
    ParameterValue* const added = value.get();
    values.addValue(std::move(value));
    return added;
}

std::int32_t Filter::EnumCount(const ParameterDef& /*definition*/) const { return 0; }
std::string_view Filter::EnumLabel(const ParameterDef& /*definition*/, std::int32_t /*index*/) const { return ""; }

std::int32_t Filter::LayerQuery(const ParameterDef& definition) const {
    return FilterToolFactory::Instance().LayerQuery(*this, definition);
}

void Filter::Advance(const Image* /*image*/, std::int32_t /*frame*/, std::int32_t /*c*/, std::int32_t /*d*/,
                     std::int32_t /*e*/, std::int32_t /*f*/) {}

void Filter::Attach(const Image* image, std::int32_t frame, double time, const Rect* rect) {
    if (m_values) Detach();
    m_time = time;
    m_frame = frame;
    m_image = image;
    m_active = true;
    const Rect* const reference = rect != nullptr || image == nullptr ? rect : &image->Bounds();
    if (reference == nullptr || !m_values || parameters == nullptr) return;
    for (const auto& definition : *parameters) {
        if (definition->type != ParameterType::scaledPosition) continue;
        ParameterValue* const value = m_values->findValue(definition.get());
        if (value != nullptr && !value->getCurveLocked() && !value->isAnimated()) PlaceWithin(*value, *reference);
    }
}

void Filter::Detach() {
    m_image = nullptr;
    m_frame = 0;
}

DataSet* Filter::MakeValues(bool animated, const AnimationClock* clock, const LayerProvider* layers) {
    auto made = std::make_unique<DataSet>();
    if (parameters != nullptr)
        for (const auto& definition : *parameters) AddValue(*made, *definition, animated, clock, layers);
    m_values = std::move(made);
    return m_values.get();
}

}  // namespace chalkpane
