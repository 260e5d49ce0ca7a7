#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>

#include "chalkpane/image/image.h"

namespace chalkpane {

class GraphValue;

// What a dab is made of, as its source has it.
struct DabShape {
    std::int32_t radius = 20;  // pixels; the side of the mask is 2 * (radius + margin) + 1
    double flatness = 1.0;     // ratio of the two axes: above 1 the dab is narrower along its rotated axis
    double rotation = 0.0;     // degrees
    double roundness = 1.0;    // 1 is an ellipse, towards 0 a rectangle, 2 a rhombus; below 0.01 counts as 0.01
    std::int32_t margin = 0;   // pixels added around the shape
};

// Makes the masks of dabs: images of one channel that hold coverage, placed in the plane of the target.
//
// Positions are canvas pixels as real numbers, angles degrees. The masks belong to the caller, but share their pixels
// with the profile and with other masks: they are for reading. Null: there is no mask, because the profile could
// not be built, or because the position is NaN or too far away to be placed.
// A profile is immutable once built. Thread: its brush's.
class BrushProfile {
public:
    // Above this radius, margin included, no mask is built: it takes 65 images of that size, and the canvas is smaller.
    static constexpr std::int32_t maximumRadius = 1024;

    BrushProfile(const BrushProfile&) = delete;
    BrushProfile& operator=(const BrushProfile&) = delete;

    virtual ~BrushProfile() = default;
    // Not owned; null in all but `GraphBrushProfile`.
    [[nodiscard]] virtual GraphValue* GetGraph() const { return nullptr; }
    // Of the base mask; the empty rectangle when there is none.
    virtual void GetRect(Rect& out) const = 0;
    // For a dab at (x, y), rotated.
    [[nodiscard]] virtual std::unique_ptr<Image> GetMask(double x, double y, double angle) = 0;
    // For a dab at (x, y) that is neither rotated nor placed between pixels.
    [[nodiscard]] virtual std::unique_ptr<Image> GetMaskFast(double x, double y) = 0;

protected:
    BrushProfile() = default;

    static void RectOf(const Image* mask, Rect& out) { out = mask != nullptr ? mask->Bounds() : Rect(); }
};

// False for a coordinate that is NaN or beyond 2 to the 30.
[[nodiscard]] inline bool IsPlaceable(double coordinate) { return std::abs(coordinate) < 1 << 30; }

// Whole pixels of a coordinate, towards zero; nothing when it is not placeable.
[[nodiscard]] inline std::optional<std::int32_t> WholePixels(double coordinate) {
    if (!IsPlaceable(coordinate)) return std::nullopt;
    return static_cast<std::int32_t>(coordinate);
}

// An image that shares the pixels of `image`, with its rectangle moved by whole pixels of (dx, dy); null without an
// image, or when the move is not one that can be made.
[[nodiscard]] std::unique_ptr<Image> MovedShare(const Image* image, double dx, double dy);

// The 8 bits that are stored for a computed coverage: truncated, the low byte of what lies outside 0 .. 255, and 0 for
// NaN and for what is no integer of 32 bits.
[[nodiscard]] std::uint8_t CoverageByte(double value);

}  // namespace chalkpane
