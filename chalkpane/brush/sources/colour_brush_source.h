#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/brush/profiles/round_brush_profile.h"
#include "chalkpane/brush/small_dab_stretch.h"
#include "chalkpane/brush/sources/profiled_brush_source.h"
#include "chalkpane/composite/colour_dab.h"

namespace chalkpane {

enum class ColourUse : std::uint8_t { Paint, Erase };

// Dabs of one colour.
class ColourBrushSource final : public ProfiledBrushSource {
public:
    explicit ColourBrushSource(ColourUse use);

    bool MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                 std::unique_ptr<Image>& maskOut) override;
    void Prepare(std::int32_t margin, GraphValue* graph, const Matrix3& newMatrix) override;
    [[nodiscard]] bool CanErase() const override { return true; }
    [[nodiscard]] bool IsEraser() const override { return erasing; }
    void SetColour(const Colour& newColour) override;

    // True: a dab that is not rotated is no more than what `FindDab` tells, and keeps nothing.
    [[nodiscard]] bool HasPlainDabs() const { return roundProfile != nullptr && HoldsNothing(); }
    // False: its profile has no mask, so there is never a dab.
    [[nodiscard]] bool MakesDabs() const { return roundProfile == nullptr || roundProfile->BaseMask() != nullptr; }
    // The dab of `MakeDab` without rotation, on images that stay the source's. False: there is none.
    bool FindDab(double x, double y, ColourDab& dab);
    // The same of a dab small enough to be painted as a block. A mask of null: there is no dab.
    struct SmallDab {
        const SmallMask8* mask = nullptr;
        std::int32_t moveX = 0;  // of the mask's rectangle
        std::int32_t moveY = 0;
    };
    [[nodiscard]] bool HasSmallDabs() const { return hasSmallDabs; }
    [[nodiscard]] SmallDab FindSmallDab(double x, double y) const {
        const auto [copy, moveX, moveY] = roundProfile->FindCopy(x, y);
        if (copy < 0) return {};
        return {&smallMasks.ofCopy[static_cast<std::size_t>(copy)], moveX, moveY};
    }
    [[nodiscard]] const SmallMasks& AllSmallMasks() const { return smallMasks; }
    // Of a source that has plain dabs.
    [[nodiscard]] const CopyRects& DabRects() const { return dabRects; }
    // The colour as it lies in memory at 8 bits.
    [[nodiscard]] std::uint32_t Pixel8() const { return pixel8; }

private:
    void FillFor(const Image& mask);
    [[nodiscard]] std::unique_ptr<Image> ColourImage(const Image& mask);

    const RoundBrushProfile* roundProfile = nullptr;  // the profile, where it is one of that family

    void TakeSmallMasks();

    CopyRects dabRects;     // of the profile
    SmallMasks smallMasks;  // of the profile
    bool hasSmallDabs = false;

    Colour colour;
    std::uint32_t pixel8;
    bool erasing;
    // Filled with the colour once and shared by all dabs that it is large enough for; a new one takes its place when
    // the colour, the depth or the size asks for it, and what dabs hold of the old one stays as it is.
    std::unique_ptr<Image> filled;
};

}  // namespace chalkpane
