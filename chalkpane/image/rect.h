#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace chalkpane {

// A rectangle of pixels in the integer plane, inclusive at both ends: `x0` .. `x1`, `y0` .. `y1`, y growing upward.
//
// The empty rectangle is (0, 0, -1, -1). A rectangle counts as empty only when both x1 < x0 and y1 < y0: one that is
// reversed on a single axis is valid, has no pixels, and a loop over it does nothing.
// Sides at the ends of the 32-bit range are clamped to it (`Translate`, `Inflate`), so no operation overflows.
struct Rect {
    std::int32_t x0 = 0;
    std::int32_t y0 = 0;
    std::int32_t x1 = -1;
    std::int32_t y1 = -1;

    constexpr Rect() = default;
    constexpr Rect(std::int32_t left, std::int32_t bottom, std::int32_t right, std::int32_t top)
        : x0(left), y0(bottom), x1(right), y1(top) {}

    friend constexpr bool operator==(const Rect&, const Rect&) = default;

    constexpr void Set(std::int32_t left, std::int32_t bottom, std::int32_t right, std::int32_t top) {
        *this = Rect(left, bottom, right, top);
    }
    // (0, 0, width - 1, height - 1).
    constexpr void SetSize(std::int32_t width, std::int32_t height) {
        *this = Rect(0, 0, Saturate(std::int64_t{width} - 1), Saturate(std::int64_t{height} - 1));
    }
    constexpr void SetEmpty() { *this = Rect(); }

    // Inclusive sizes; 0 or negative where a side is reversed. Saturated at the 32-bit range.
    [[nodiscard]] constexpr std::int32_t Width() const { return Saturate(std::int64_t{x1} - x0 + 1); }
    [[nodiscard]] constexpr std::int32_t Height() const { return Saturate(std::int64_t{y1} - y0 + 1); }

    // True unless both sides are reversed: a dirty rectangle relies on the `or`.
    [[nodiscard]] constexpr bool IsValid() const { return x1 >= x0 || y1 >= y0; }

    // The smallest rectangle holding both; the empty rectangle adds nothing.
    [[nodiscard]] constexpr Rect Union(const Rect& other) const {
        if (!IsValid()) return other;
        if (!other.IsValid()) return *this;
        return {std::min(x0, other.x0), std::min(y0, other.y0), std::max(x1, other.x1), std::max(y1, other.y1)};
    }
    // True when the two share at least one pixel.
    [[nodiscard]] constexpr bool Intersects(const Rect& other) const {
        return std::max(x0, other.x0) <= std::min(x1, other.x1) && std::max(y0, other.y0) <= std::min(y1, other.y1);
    }
    // The overlap, or the empty rectangle.
    [[nodiscard]] constexpr Rect Intersection(const Rect& other) const {
        if (!Intersects(other)) return {};
        return {std::max(x0, other.x0), std::max(y0, other.y0), std::min(x1, other.x1), std::min(y1, other.y1)};
    }
    constexpr void Translate(std::int32_t dx, std::int32_t dy) {
        x0 = Saturate(std::int64_t{x0} + dx);
        x1 = Saturate(std::int64_t{x1} + dx);
        y0 = Saturate(std::int64_t{y0} + dy);
        y1 = Saturate(std::int64_t{y1} + dy);
    }
    // Puts the lower left corner at (x, y) and keeps the size.
    constexpr void MoveTo(std::int32_t x, std::int32_t y) {
        x1 = Saturate(std::int64_t{x} + x1 - x0);
        y1 = Saturate(std::int64_t{y} + y1 - y0);
        x0 = x;
        y0 = y;
    }
    // The empty rectangle becomes the single point; any other grows to contain it.
    constexpr void ExtendTo(std::int32_t x, std::int32_t y) {
        if (!IsValid()) {
            *this = Rect(x, y, x, y);
            return;
        }
        *this = Rect(std::min(x0, x), std::min(y0, y), std::max(x1, x), std::max(y1, y));
    }
    // Moves all four sides by n pixels, on a valid rectangle only.
    constexpr void Inflate(std::int32_t n) {
        if (!IsValid()) return;
        x0 = Saturate(std::int64_t{x0} - n);
        x1 = Saturate(std::int64_t{x1} + n);
        InflateY(n);
    }
    constexpr void Deflate(std::int32_t n) {
        if (!IsValid()) return;
        x0 = Saturate(std::int64_t{x0} + n);
        x1 = Saturate(std::int64_t{x1} - n);
        DeflateY(n);
    }
    // On y alone, whether the rectangle is valid or not.
    constexpr void InflateY(std::int32_t n) {
        y0 = Saturate(std::int64_t{y0} - n);
        y1 = Saturate(std::int64_t{y1} + n);
    }
    constexpr void DeflateY(std::int32_t n) {
        y0 = Saturate(std::int64_t{y0} + n);
        y1 = Saturate(std::int64_t{y1} - n);
    }
    [[nodiscard]] constexpr bool Contains(std::int32_t x, std::int32_t y) const {
        return x >= x0 && x <= x1 && y >= y0 && y <= y1;
    }
    [[nodiscard]] constexpr bool Contains(const Rect& other) const {
        return other.x0 >= x0 && other.x1 <= x1 && other.y0 >= y0 && other.y1 <= y1;
    }

private:
    static constexpr std::int32_t Saturate(std::int64_t value) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                                  std::numeric_limits<std::int32_t>::max()));
    }
};

}  // namespace chalkpane
