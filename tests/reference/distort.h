#pragma once

#include <cstdint>

#include "chalkpane/image/sampling.h"
#include "tests/reference/neighbourhood.h"

// Plain references of the distortions: one pixel at a time through a function that says where to read.
namespace reference {

inline void PutSample(Image& result, int x, int y, const Image& source, float sx, float sy, int edgeMode, bool fast) {
    const auto ix = static_cast<int>(sx);
    const auto iy = static_cast<int>(sy);
    const auto put4 = [&](const auto& p) {
        Put(result, x, y, 0, p.blue);
        Put(result, x, y, 1, p.green);
        Put(result, x, y, 2, p.red);
        Put(result, x, y, 3, p.alpha);
    };
    if (source.IsMask() && source.GetDepth() == Depth::Eight)
        Put(result, x, y, 0,
            fast ? source.GetMaskEdge8(ix, iy, edgeMode) : chalkpane::SampleMaskBilinear8(source, sx, sy, edgeMode));
    else if (source.IsMask())
        Put(result, x, y, 0,
            fast ? source.GetMaskEdge14(ix, iy, edgeMode) : chalkpane::SampleMask14(source, sx, sy, edgeMode));
    else if (source.GetDepth() == Depth::Eight)
        put4(fast ? source.GetPixelEdge8(ix, iy, edgeMode) : chalkpane::SampleBilinear8(source, sx, sy, edgeMode));
    else
        put4(fast ? source.GetPixelEdge14(ix, iy, edgeMode) : chalkpane::SampleBilinear14(source, sx, sy, edgeMode));
}

// map(x, y, sx, sy)
template <typename Map>
Image Distort(const Image& source, const Rect* region, int grow, int edgeMode, bool fast, Map map) {
    Image result = Like(source, WorkArea(source, region, grow));
    for (int y = result.y0; y <= result.y1; ++y)
        for (int x = result.x0; x <= result.x1; ++x) {
            float sx = 0.0F;
            float sy = 0.0F;
            map(x, y, sx, sy);
            PutSample(result, x, y, source, sx, sy, edgeMode, fast);
        }
    return result;
}

}  // namespace reference
