#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "chalkpane/brush/brush_choices.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/composite/paste_record.h"

namespace chalkpane {

// What a source has to be given beside the parameters that all have.
enum class SourceNeeds : std::uint8_t {
    Nothing,
    Picture,     // `BrushSource::SetSourceImage`
    CutoutFile,  // parameter "Cutout File", or `BasicBrush::SetCutoutImage`
};

struct SourceTypeRow {
    SourceType type;
    std::string_view name;  // what an operator reads and types; empty: chosen by number alone
    SourceNeeds needs;
    PasteBehaviour behaviour;  // of the paster; an eraser uses none
    std::unique_ptr<BrushSource> (*make)(const FileName& cutoutFile, Depth targetDepth);
};

// All source types in the order of their values, without a gap.
[[nodiscard]] std::span<const SourceTypeRow> SourceTypes();
// The row of a stored value; any value without one paints colour.
[[nodiscard]] const SourceTypeRow& SourceTypeOf(std::uint8_t stored);

// The source of a stored type. Never null. Throws std::bad_alloc.
[[nodiscard]] std::unique_ptr<BrushSource> MakeBrushSource(std::uint8_t sourceType, const FileName& cutoutFile,
                                                           Depth targetDepth);
[[nodiscard]] inline std::unique_ptr<BrushSource> MakeBrushSource(SourceType type, const FileName& cutoutFile,
                                                                  Depth targetDepth) {
    return MakeBrushSource(static_cast<std::uint8_t>(type), cutoutFile, targetDepth);
}
// A cutout around an image, whose pixels it shares where the depth is the target's.
[[nodiscard]] std::unique_ptr<BrushSource> MakeCutoutSource(const Image& cutout, Depth targetDepth);

}  // namespace chalkpane
