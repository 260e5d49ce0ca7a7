#include "apps/chalkpane/presets/preset.h"

#include <array>
#include <system_error>

#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

void AddAll(DataSet& values, const ParameterList& list) {
    for (const auto& definition : list) values.addParameter(definition.get(), false, nullptr);
}

// Each value of one set takes the place of the other's.
void ExchangeValues(DataSet& left, DataSet& right, const ParameterList& list) {
    for (const auto& definition : list) {
        ValuePointer placeholder = DataSet::createValue(definition.get(), false, nullptr);
        if (!placeholder || left.findValue(definition.get()) == nullptr) continue;
        if (right.findValue(definition.get()) == nullptr) continue;
        ValuePointer fromLeft = left.replaceValue(std::move(placeholder));
        placeholder = left.replaceValue(right.replaceValue(std::move(fromLeft)));
    }
}

std::vector<const Filter*> Borrowed(const std::vector<std::unique_ptr<Filter>>& filters) {
    std::vector<const Filter*> borrowed;
    borrowed.reserve(filters.size());
    for (const auto& filter : filters) borrowed.push_back(filter.get());
    return borrowed;
}

}  // namespace

const ParameterList& PaintParameters() {
    static const ParameterList& list = *[] {
        auto* made = new ParameterList;  // never freed, like every declaration
        made->addColour("Brush Color", "Color", Colour::fromIndex(3), 0);
        return made;
    }();
    return list;
}

BrushSettings::BrushSettings() {
    AddAll(brush, BasicBrush::ClassParameters());
    AddAll(source, BrushSource::ClassParameters());
    AddAll(paint, PaintParameters());
}

std::string_view WordOf(PresetKind kind) {
    constexpr std::array<std::string_view, 3> words = {"filter", "chain", "brush"};
    return words[static_cast<std::size_t>(kind)];
}

PresetView ViewOf(const Preset& preset) {
    PresetView view{preset.kind, preset.name, {}, Borrowed(preset.filters)};
    if (preset.brush) view.values = {&preset.brush->brush, &preset.brush->source, &preset.brush->paint};
    return view;
}

PresetView ViewOf(const std::vector<std::unique_ptr<Filter>>& filters, std::string chainName) {
    if (filters.size() == 1) return {PresetKind::Filter, std::string(filters.front()->Name()), {}, Borrowed(filters)};
    return {PresetKind::Chain, std::move(chainName), {}, Borrowed(filters)};
}

PresetView ViewOf(BasicBrush& brush, const DataSet* paint) {
    PresetView view{PresetKind::Brush, {}, {&brush.Values(), &brush.SourceValues()}, Borrowed(brush.Filters())};
    if (paint != nullptr) view.values.push_back(paint);
    if (const ParameterValue* const name = brush.Value(BrushParameter::Name)) name->getString(view.name);
    return view;
}

bool IsNothingOrPreset(const std::filesystem::path& file) {
    std::error_code failure;
    if (!std::filesystem::exists(file, failure) || std::filesystem::file_size(file, failure) == 0) return true;
    try {
        (void)ReadPreset(file, FrameRateClock());
        return true;
    } catch (const cli::Error&) {
        return false;
    }
}

std::vector<std::unique_ptr<Filter>> FiltersOfPreset(const std::filesystem::path& file, const AnimationClock& clock) {
    Preset preset = ReadPreset(file, clock);
    if (preset.kind == PresetKind::Brush)
        throw cli::Error(file.string(), {}, "is the preset of a brush; pictures go through filters");
    return std::move(preset.filters);
}

void Exchange(BasicBrush& brush, Preset& preset) {
    if (!preset.brush) return;
    ExchangeValues(brush.Values(), preset.brush->brush, BasicBrush::ClassParameters());
    ExchangeValues(brush.SourceValues(), preset.brush->source, BrushSource::ClassParameters());
    brush.Filters().swap(preset.filters);
}

}  // namespace chalkpane::app
