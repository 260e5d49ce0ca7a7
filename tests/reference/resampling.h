#pragma once

#include <cmath>

#include "chalkpane/transform/matrix3.h"
#include "tests/reference/picture.h"

// Bilinear resampling, every neighbour looked up at every pixel.
namespace reference {

inline std::int64_t Fixed(double value) { return static_cast<std::int64_t>(value * 65536.0); }

// Zero beyond the area, and beyond the picture.
inline int Neighbour(const Picture& source, const chalkpane::Rect& area, std::int64_t x, std::int64_t y, int c) {
    if (x < area.x0 || x > area.x1 || y < area.y0 || y > area.y1) return 0;
    return source.Edge(static_cast<int>(x), static_cast<int>(y), c, 0);
}

inline int Blend(const Picture& source, const chalkpane::Rect& area, std::int64_t u, std::int64_t v, int c) {
    const std::int64_t x = u >> 16;
    const std::int64_t y = v >> 16;
    const std::int64_t fx = (u >> 8) & 255;
    const std::int64_t fy = (v >> 8) & 255;
    const std::int64_t p00 = Neighbour(source, area, x, y, c);
    const std::int64_t p10 = Neighbour(source, area, x + 1, y, c);
    const std::int64_t p01 = Neighbour(source, area, x, y + 1, c);
    const std::int64_t p11 = Neighbour(source, area, x + 1, y + 1, c);
    const std::int64_t sum = ((256 - fx) * p00 + fx * p10) * (256 - fy) + (fx * p11 + (256 - fx) * p01) * fy;
    if (!source.deep) return static_cast<int>(sum >> 16);
    return std::min(16383, static_cast<int>(static_cast<double>(sum) / 65535.0 + 0.5));
}

// `wanted` of the target, as the source seen through `inverse`; the iteration begins at the lower left pixel of
// `wanted`.
inline void ResampleInto(const Picture& source, const chalkpane::Rect& area, const chalkpane::Matrix3& inverse,
                         const chalkpane::Rect& wanted, Picture& target) {
    const auto& m = inverse.rows;
    const double cx = wanted.x0 + 0.5;
    const double cy = wanted.y0 + 0.5;
    const std::int64_t startU = Fixed(cx * m[0][0] + cy * m[1][0] + m[2][0]) - 0x8000;
    const std::int64_t startV = Fixed(cx * m[0][1] + cy * m[1][1] + m[2][1]) - 0x8000;
    for (int y = target.y0; y <= target.y1; ++y)
        for (int x = target.x0; x <= target.x1; ++x) {
            if (!wanted.Contains(x, y)) continue;
            const std::int64_t dx = std::int64_t{x} - wanted.x0;
            const std::int64_t dy = std::int64_t{y} - wanted.y0;
            const std::int64_t u = startU + dx * Fixed(m[0][0]) + dy * Fixed(m[1][0]);
            const std::int64_t v = startV + dx * Fixed(m[0][1]) + dy * Fixed(m[1][1]);
            for (int c = 0; c < target.channels; ++c) target.At(x, y, c) = Blend(source, area, u, v, c);
        }
}

}  // namespace reference
