#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/filters/filter.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/parameter_list.h"

namespace chalkpane {
class BasicBrush;
}

namespace chalkpane::app {

enum class PresetKind : std::uint8_t { Filter, Chain, Brush };

// All that can be set on a brush: its own values, those of its source, and those that a program hands to it.
struct BrushSettings {
    BrushSettings();  // as a fresh brush has them

    DataSet brush;
    DataSet source;
    DataSet paint;  // of PaintParameters
};

// What a brush is told from outside and has no parameter for: "Brush Color".
[[nodiscard]] const ParameterList& PaintParameters();

// One object as a preset file holds it: its values, with keys where they have some, and the filters of its chain.
// Values with keys refer to the clock that the preset was read with.
struct Preset {
    PresetKind kind = PresetKind::Filter;
    std::string name;                      // of a filter: its class's
    std::unique_ptr<BrushSettings> brush;  // null unless the kind is Brush
    // Each with its values and whether it is active; one for the kind Filter.
    std::vector<std::unique_ptr<Filter>> filters;
};

// An object to be written. Borrows all it names; a filter must have its values (`MakeValues`).
struct PresetView {
    PresetKind kind = PresetKind::Filter;
    std::string name;
    std::vector<const DataSet*> values;
    std::vector<const Filter*> filters;
};
[[nodiscard]] PresetView ViewOf(const Preset& preset);
// One filter by itself, several as a chain of that name.
[[nodiscard]] PresetView ViewOf(const std::vector<std::unique_ptr<Filter>>& filters, std::string chainName);
// paint: null where the program has told the brush nothing
[[nodiscard]] PresetView ViewOf(BasicBrush& brush, const DataSet* paint);

// Reads a preset. Throws cli::Error with file, line and the reason of the first thing that is wrong; whatever was to
// take the preset on is as it was then.
//
//   clock   not owned; of the values that have keys
//
// Relative names of files are told from the preset's folder and come out absolute.
[[nodiscard]] Preset ReadPreset(const std::filesystem::path& file, const AnimationClock& clock);
// shownName: what messages call the text; folder: absolute, or empty to leave names of files as they are
[[nodiscard]] Preset ReadPresetText(const std::string& text, const std::string& shownName,
                                    const std::filesystem::path& folder, const AnimationClock& clock);

// True: there is no such file, or it is empty, or it is a preset.
[[nodiscard]] bool IsNothingOrPreset(const std::filesystem::path& file);

// The filters of a preset, one or a chain. Throws cli::Error for that of a brush too.
[[nodiscard]] std::vector<std::unique_ptr<Filter>> FiltersOfPreset(const std::filesystem::path& file,
                                                                   const AnimationClock& clock);

// The text of a preset. A value is written so that it reads back exactly. Throws cli::Error for a value that is no
// number, and for a text with bytes that are none.
[[nodiscard]] std::string TextOfPreset(const PresetView& object, const std::filesystem::path& folder);
// The same for a file of that name, from whose folder other files are told.
[[nodiscard]] std::string TextForFile(const PresetView& object, const std::filesystem::path& file);

// Gives a brush the values and filters of a preset of the kind Brush, and the preset what the brush had. Takes hold
// with the brush's next `Update`; until then the preset must live. The values of `paint` stay for the caller.
void Exchange(BasicBrush& brush, Preset& preset);

// The word that a file opens with: "filter", "chain" or "brush".
[[nodiscard]] std::string_view WordOf(PresetKind kind);

}  // namespace chalkpane::app
