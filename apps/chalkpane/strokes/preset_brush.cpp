#include "apps/chalkpane/strokes/preset_brush.h"

#include <algorithm>
#include <utility>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/strokes/brush_builder.h"
#include "chalkpane/filters/filter.h"
#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/compound_values.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;

Preset Checked(Preset preset, const std::string& shownName) {
    if (preset.kind != PresetKind::Brush)
        throw Error(shownName, {},
                    "is the preset of a " + std::string(WordOf(preset.kind)) + "; strokes are painted with a brush");
    return preset;
}

// All that the value of a file's name ever answers.
std::vector<FileName> NamesIn(const ParameterValue& value) {
    std::vector<FileName> names;
    if (const auto* const keyed = dynamic_cast<const AnimatedFileName*>(&value)) {
        for (std::int32_t i = 0; i < keyed->keyCount(); ++i) names.push_back(keyed->keyValue(i));
    } else {
        readFileName(value, names.emplace_back());
    }
    std::erase_if(names, [](const FileName& name) { return name.empty(); });
    return names;
}

ParameterValue& ColourOf(const Preset& preset) { return **preset.brush->paint.begin(); }

}  // namespace

PresetBrush::PresetBrush(Preset preset, std::string shownName)
    : m_preset(Checked(std::move(preset), shownName)), m_shownName(std::move(shownName)), m_brush(m_preset.name) {
    Exchange(m_brush, m_preset);
    m_brush.Update();
}

PresetView PresetBrush::View() { return ViewOf(m_brush, &m_preset.brush->paint); }

void PresetBrush::ReadPictures(PictureFiles& pictures) {
    for (const DataSet* values : {&m_brush.Values(), &m_brush.SourceValues()}) {
        for (const ValuePointer& value : *values) {
            if (value->getParameter()->type != ParameterType::fileName) continue;
            const std::string place = m_shownName + ": " + value->getParameter()->name;
            const bool isCutout = values == &m_brush.Values();
            for (const FileName& name : NamesIn(*value)) {
                const auto file = pictures.FileOf(name.string());
                (void)(isCutout ? pictures.Colours(file, place) : pictures.Mask(file, place));
            }
        }
    }
}

void PresetBrush::TakeFrame(StrokesFile& file, const Image& canvas, std::int32_t frame) {
    for (const auto& filter : m_brush.Filters()) {
        const bool isActive = filter->m_active;
        filter->Attach(&canvas, frame, frame, nullptr);
        filter->m_active = isActive;
        TakeValues(*filter);
    }
    const ParameterValue& value = ColourOf(m_preset);
    if (!value.isSetLocally()) return;
    Colour colour;
    value.getColour(colour);
    for (BrushDescription& brush : file.brushes) brush.colour = colour;
}

Preset PresetOfStrokes(const StrokesFile& file, Image& canvas, PictureFiles& pictures) {
    const auto isAnother = [&](const Stroke& stroke) { return stroke.brush != file.strokes.front().brush; };
    const auto other = std::ranges::find_if(file.strokes, isAnother);
    if (other != file.strokes.end()) throw Error(other->place, {}, "has another brush; a preset holds a single one");
    const BrushDescription description =
        file.strokes.empty() ? BrushDescription() : file.brushes[file.strokes.front().brush];
    const auto brush = MakeBrush(description, {canvas, pictures});
    brush->Update();  // which looks up the type of a profile's name, so that reading and writing again changes nothing
    Preset preset;
    preset.kind = PresetKind::Brush;
    preset.name = ViewOf(*brush, nullptr).name;
    preset.brush = std::make_unique<BrushSettings>();
    Exchange(*brush, preset);
    // Past the setter, to which white is the default and nothing set.
    if (description.colour) static_cast<ColourValue&>(ColourOf(preset)).store(*description.colour, true);
    return preset;
}

}  // namespace chalkpane::app
