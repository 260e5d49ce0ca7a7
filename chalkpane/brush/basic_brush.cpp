#include "chalkpane/brush/basic_brush.h"

#include <algorithm>
#include <new>
#include <utility>

#include "chalkpane/brush/profiles/profile_cache.h"
#include "chalkpane/brush/profiles/profile_preset.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/filters/filter_chain.h"
#include "chalkpane/filters/filter_registry.h"
#include "chalkpane/filters/paint_colour.h"

namespace chalkpane {
namespace {

std::unique_ptr<DataSet> NewValues(const ParameterList& list) {
    auto values = std::make_unique<DataSet>();
    for (const auto& definition : list) values->addParameter(definition.get(), false, nullptr);
    return values;
}

// The value of that code; null when an owner has taken it out of the set.
ParameterValue* ValueOf(const DataSet& values, const ParameterList& list, std::uint8_t code) {
    return values.findValue(list.find(code));
}

}  // namespace

BasicBrush::BasicBrush(std::string_view brushName)
    : values(NewValues(ClassParameters())),
      profileCache(ProfileCache::Shared()),
      sourceValues(NewValues(BrushSource::ClassParameters())) {
    FilterRegistry::Instance();
    SharedPaster();
    SharedEraser();
    if (ParameterValue* const value = ValueOf(*values, *parameters, 0)) value->setString(std::string(brushName));
    BasicBrush::Update();
}

BasicBrush::~BasicBrush() = default;

void BasicBrush::Update() {
    for (auto& value : extraValues) values->addValue(std::move(value));
    extraValues.clear();
    StoreProfile();
    for (const auto& value : *values) setParameter(value.get());
    RebuildSource();
}

// A profile's name stands for its type, so the name is looked up each time and the type is what the source reads.
void BasicBrush::StoreProfile() {
    const ParameterList& list = BrushSource::ClassParameters();
    ParameterValue* const typeValue = ValueOf(*sourceValues, list, 9);
    std::string profileName;
    if (const ParameterValue* const value = ValueOf(*sourceValues, list, 0)) value->getString(profileName);
    const auto& presets = ProfilePresets();
    const auto preset = std::find_if(presets.begin(), presets.end(),
                                     [&](const ProfilePreset& candidate) { return candidate.name == profileName; });
    if (preset == presets.end()) {
        std::uint8_t type = 0;
        if (typeValue == nullptr) return;
        typeValue->getEnumeration(type);
        typeValue->setEnumeration(ProfileTypeOfName(profileName, type));
        return;
    }
    if (typeValue != nullptr) typeValue->setEnumeration(preset->type);
    if (preset->type == 1)
        if (auto* const mask = dynamic_cast<FileNameValue*>(ValueOf(*sourceValues, list, 1)))
            mask->setFileName(preset->mask);
    if (preset->type == 0)
        if (ParameterValue* const graph = ValueOf(*values, *parameters, 10)) graph->setParent(preset->graph);
}

void BasicBrush::RebuildSource() {
    source.reset();
    sourceDepth = target != nullptr ? target->depth : 0;
    try {
        auto made = cutoutImage && useCutoutImage ? MakeCutoutSource(*cutoutImage, sourceDepth)
                                                  : MakeBrushSource(sourceType, cutoutFile, sourceDepth);
        for (const auto& value : *sourceValues) made->setParameter(value.get());
        made->SetColour(colour);
        made->Prepare(0, profileGraph, matrix);
        Rect area;
        made->GetDabRect(area);
        made->SetDabArea(area);
        made->SetTargetArea(FilteredArea(filters, area));
        source = std::move(made);
    } catch (const std::bad_alloc&) {
        source.reset();  // a brush without a source paints nothing
    }
}

void BasicBrush::SetTarget(Image* image) {
    target = image;
    if (target != nullptr && (target->depth != 0) != (sourceDepth != 0)) RebuildSource();
}

void BasicBrush::SetSize(std::int32_t radius) {
    if (ParameterValue* const value = ValueOf(*sourceValues, BrushSource::ClassParameters(), 2))
        value->setInteger(radius);
    Update();
}

void BasicBrush::SetSourceType(std::int32_t type) {
    if (ParameterValue* const value = ValueOf(*values, *parameters, 1))
        value->setEnumeration(static_cast<std::uint8_t>(type));
}

void BasicBrush::SetBlendMode(std::int32_t mode) {
    if (ParameterValue* const value = ValueOf(*values, *parameters, 12))
        value->setEnumeration(static_cast<std::uint8_t>(mode));
}

void BasicBrush::SetSpacing(double fraction, std::int32_t type) {
    if (ParameterValue* const value = ValueOf(*values, *parameters, 5)) value->setDouble(fraction);
    if (ParameterValue* const value = ValueOf(*values, *parameters, 7))
        value->setEnumeration(static_cast<std::uint8_t>(type));
}

void BasicBrush::SetMatchPath(bool on) {
    if (ParameterValue* const value = ValueOf(*values, *parameters, 8)) value->setBoolean(on);
}

void BasicBrush::SetColour(const Colour& newColour) {
    colour = newColour;
    currentPaintColour = newColour;
    paintPlaneOn = true;
    paintEraserFlag = maskPlaneOn = maskPlaneClips = straightSegments = false;
    maskValue = 0;
    if (source) source->SetColour(colour);
}

void BasicBrush::SetCutoutImage(const Image* image, bool use) {
    cutoutImage.reset();
    if (image == nullptr) return;
    cutoutImage = std::make_unique<Image>(*image);
    useCutoutImage = use;
}

}  // namespace chalkpane
