#pragma once

#include <cstdint>
#include <memory>

#include "chalkpane/brush/sources/profiled_brush_source.h"

namespace chalkpane {

enum class ColourUse : std::uint8_t { Paint, Erase };

// Dabs of one colour.
class ColourBrushSource final : public ProfiledBrushSource {
public:
    explicit ColourBrushSource(ColourUse use) : erasing(use == ColourUse::Erase) {}

    bool MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                 std::unique_ptr<Image>& maskOut) override;
    [[nodiscard]] bool CanErase() const override { return true; }
    [[nodiscard]] bool IsEraser() const override { return erasing; }
    void SetColour(const Colour& newColour) override;

private:
    [[nodiscard]] std::unique_ptr<Image> ColourImage(const Image& mask);

    Colour colour;
    bool erasing;
    // Filled with the colour once and shared by all dabs that it is large enough for; a new one takes its place when
    // the colour, the depth or the size asks for it, and what dabs hold of the old one stays as it is.
    std::unique_ptr<Image> filled;
};

}  // namespace chalkpane
