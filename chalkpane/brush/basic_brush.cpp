#include "chalkpane/brush/basic_brush.h"

#include <algorithm>
#include <new>
#include <utility>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/brush/profiles/profile_cache.h"
#include "chalkpane/brush/profiles/profile_preset.h"
#include "chalkpane/brush/sources/colour_brush_source.h"
#include "chalkpane/brush/sources/source_types.h"
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

}  // namespace

BasicBrush::BasicBrush(std::string_view brushName)
    : values(NewValues(ClassParameters())),
      profileCache(ProfileCache::Shared()),
      sourceValues(NewValues(BrushSource::ClassParameters())) {
    FilterRegistry::Instance();
    SharedPaster();
    SharedEraser();
    if (ParameterValue* const value = Value(BrushParameter::Name)) value->setString(std::string(brushName));
    BasicBrush::Update();
}

BasicBrush::~BasicBrush() = default;

ParameterValue* BasicBrush::Value(BrushParameter code) const { return values->findValue(parameters->find(code)); }

ParameterValue* BasicBrush::SourceValue(SourceParameter code) const {
    return sourceValues->findValue(BrushSource::ClassParameters().find(code));
}

void BasicBrush::Update() {
    ++revision;
    for (auto& value : extraValues) values->addValue(std::move(value));
    extraValues.clear();
    StoreProfile();
    for (const auto& value : *values) setParameter(value.get());
    RebuildSource();
}

// A profile's name stands for its type, so the name is looked up each time and the type is what the source reads.
void BasicBrush::StoreProfile() {
    ParameterValue* const typeValue = SourceValue(SourceParameter::ProfileType);
    std::string profileName;
    if (const ParameterValue* const value = SourceValue(SourceParameter::ProfileName)) value->getString(profileName);
    const auto& presets = ProfilePresets();
    const auto preset = std::find_if(presets.begin(), presets.end(),
                                     [&](const ProfilePreset& candidate) { return candidate.name == profileName; });
    if (preset == presets.end()) {
        if (typeValue == nullptr) return;
        std::uint8_t type = 0;
        typeValue->getEnumeration(type);
        if (const auto named = ProfileTypeOfName(profileName)) type = static_cast<std::uint8_t>(*named);
        typeValue->setEnumeration(type);
        return;
    }
    if (typeValue != nullptr) typeValue->setEnumeration(static_cast<std::uint8_t>(preset->type));
    if (preset->type == ProfileType::Image)
        if (auto* const mask = dynamic_cast<FileNameValue*>(SourceValue(SourceParameter::ProfileMask)))
            mask->setFileName(preset->mask);
    if (preset->type == ProfileType::Graph)
        if (ParameterValue* const graph = Value(BrushParameter::ProfileGraph)) graph->setParent(preset->graph);
}

void BasicBrush::RebuildSource() {
    source.reset();
    colourSource = nullptr;
    sourceDepth = target != nullptr ? target->GetDepth() : Depth::Eight;
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
        colourSource = dynamic_cast<ColourBrushSource*>(source.get());
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        source.reset();  // a brush without a source paints nothing
    }
}

void BasicBrush::SetTarget(Image* image) {
    ++revision;
    target = image;
    if (target != nullptr && target->GetDepth() != sourceDepth) RebuildSource();
}

void BasicBrush::SetSize(std::int32_t radius) {
    if (ParameterValue* const value = SourceValue(SourceParameter::Size)) value->setInteger(radius);
    Update();
}

void BasicBrush::SetSourceType(std::int32_t type) {
    if (ParameterValue* const value = Value(BrushParameter::SourceType))
        value->setEnumeration(static_cast<std::uint8_t>(type));
}

void BasicBrush::SetBlendMode(std::int32_t mode) {
    if (ParameterValue* const value = Value(BrushParameter::BlendMode))
        value->setEnumeration(static_cast<std::uint8_t>(mode));
}

void BasicBrush::SetSpacing(double fraction, std::int32_t type) {
    if (ParameterValue* const value = Value(BrushParameter::Spacing)) value->setDouble(fraction);
    if (ParameterValue* const value = Value(BrushParameter::SpacingType))
        value->setEnumeration(static_cast<std::uint8_t>(type));
}

void BasicBrush::SetMatchPath(bool on) {
    if (ParameterValue* const value = Value(BrushParameter::MatchPath)) value->setBoolean(on);
}

void BasicBrush::SetColour(const Colour& newColour) {
    ++revision;
    colour = newColour;
    currentPaintColour = newColour;
    paintPlaneOn = true;
    paintEraserFlag = maskPlaneOn = maskPlaneClips = straightSegments = false;
    maskValue = 0;
    if (source) source->SetColour(colour);
}

void BasicBrush::SetCutoutImage(const Image* image, bool use) {
    ++revision;
    cutoutImage.reset();
    if (image == nullptr) return;
    cutoutImage = std::make_unique<Image>(*image);
    useCutoutImage = use;
}

}  // namespace chalkpane
