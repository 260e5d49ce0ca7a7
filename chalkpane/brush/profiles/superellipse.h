#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <numbers>
#include <utility>
#include <vector>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/brush/profiles/brush_profile.h"

namespace chalkpane {

// The outline that all computed profiles share, over a square of pixels: how far a pixel lies from the middle, where 1
// is the edge.
class Superellipse {
public:
    // extraSide: pixels added to the side, 0 or 1.
    Superellipse(const DabShape& shape, std::int32_t extraSide);

    // 0 when there is nothing to draw, or more than is drawn.
    [[nodiscard]] std::int32_t Side() const { return side; }

    // Calls `valueOf(u, v)`, which has to depend on the sizes of u and v alone and treat the two alike, for pixels in
    // canvas units from the middle, and returns its answers row by row, the bottom row first.
    //
    // The square is symmetric about its middle; a shape that is not rotated also about its axes, and one that is not
    // flattened either about its diagonals. Mirrored pixels get the very same sizes of u and v, so one of them is
    // computed and the others are copies, to the last bit.
    template <typename ValueOf>
    [[nodiscard]] std::vector<std::uint8_t> Map(ValueOf valueOf) const;

    // Distance by the formula of the superellipse, of which 1 is the edge.
    [[nodiscard]] double Distance(double u, double v) const {
        const double uPart = std::pow(std::abs(u) / edge, exponent);
        const double vPart = std::pow(std::abs(v) / edge, exponent);
        return std::pow(uPart + vPart, root);
    }
    // Plain distance.
    [[nodiscard]] double RoundDistance(double u, double v) const { return std::sqrt(u * u + v * v) / edge; }

private:
    struct Pixel {
        std::int32_t x;
        std::int32_t y;
        friend bool operator==(const Pixel&, const Pixel&) = default;
    };
    // Of the pixels that mirror one another, that which an iteration from the top right meets first.
    [[nodiscard]] Pixel FirstOfItsKind(std::int32_t x, std::int32_t y) const {
        const std::int32_t mirroredX = side - 1 - x;
        const std::int32_t mirroredY = side - 1 - y;
        if (!isUpright) {
            const bool comesFirst = y > mirroredY || (y == mirroredY && x >= mirroredX);
            return comesFirst ? Pixel{x, y} : Pixel{mirroredX, mirroredY};
        }
        const Pixel folded{std::max(x, mirroredX), std::max(y, mirroredY)};
        return isSquare && folded.x > folded.y ? Pixel{folded.y, folded.x} : folded;
    }
    [[nodiscard]] std::size_t Index(const Pixel& pixel) const {
        return static_cast<std::size_t>(pixel.y) * static_cast<std::size_t>(side) + static_cast<std::size_t>(pixel.x);
    }

    std::int32_t side;
    double centre;
    double edge;  // the radius at which the shape ends
    double cosine;
    double sine;
    double flatness;
    double exponent;
    double root;
    bool isUpright;  // not rotated
    bool isSquare;   // nor flattened
};

template <typename ValueOf>
std::vector<std::uint8_t> Superellipse::Map(ValueOf valueOf) const {
    std::vector<std::uint8_t> values(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (std::int32_t y = side - 1; y >= 0; --y) {
        for (std::int32_t x = side - 1; x >= 0; --x) {
            const Pixel pixel{x, y};
            const Pixel first = FirstOfItsKind(x, y);
            if (first == pixel) {
                const double xx = x - centre;
                const double yy = y - centre;
                const double u = yy * cosine - xx * sine;
                const double v = (xx * cosine + yy * sine) * flatness;
                values[Index(pixel)] = valueOf(u, v);
            } else {
                values[Index(pixel)] = values[Index(first)];
            }
        }
    }
    return values;
}

// A mask of `side` squared with its lower left pixel at (0, 0), from coverage in 8 bits, the bottom row first.
[[nodiscard]] std::unique_ptr<Image> MaskOfBytes(const std::vector<std::uint8_t>& values, std::int32_t side,
                                                 Depth depth);

// The mask of a shape whose pixels depend on their distance alone. Null where there is nothing to draw, or no memory.
template <typename ValueOf>
std::unique_ptr<Image> MaskOfShape(const Superellipse& shape, Depth depth, ValueOf valueOf) {
    if (shape.Side() < 1) return nullptr;
    try {
        return MaskOfBytes(shape.Map(valueOf), shape.Side(), depth);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        return nullptr;
    }
}

}  // namespace chalkpane
