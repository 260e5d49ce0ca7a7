#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "tests/reference/neighbourhood.h"

// Slow, plain twins of the effects: one pixel at a time, everything looked up where it is needed.
namespace reference {

inline int CopyOfArea(const Image& source, Image& result) {
    ForEachChannel(result, [&](int x, int y, int c) { Put(result, x, y, c, Get(source, x, y, c)); });
    return 0;
}

inline int FloorMultiple(int value, int size) {
    return static_cast<int>(std::floor(static_cast<double>(value) / size)) * size;
}

inline Image Pixellate(const Image& source, int size, const Rect* region) {
    Image result = Like(source, WorkArea(source, region, 0));
    ForEachChannel(result, [&](int x, int y, int c) {
        const int left = FloorMultiple(x, size);
        const int bottom = FloorMultiple(y, size);
        int sum = 0;
        int count = 0;
        for (int v = bottom; v < bottom + size; ++v)
            for (int u = left; u < left + size; ++u)
                if (source.Contains(u, v)) {
                    sum += Get(source, u, v, c);
                    ++count;
                }
        Put(result, x, y, c, (sum + count / 2) / count);
    });
    return result;
}

struct EmbossSettings {
    float direction = 90.0F;
    float elevation = 30.0F;
    float bump = 0.5F;
    std::array<int, 3> bgr{};  // 14 bits
    float mix = 0.0F;
};

inline Image Emboss(const Image& source, const EmbossSettings& s, const Rect* region) {
    Image result = Like(source, WorkArea(source, region, 0));
    if (source.IsMask()) {
        CopyOfArea(source, result);
        return result;
    }
    const int max = FullScale(source);
    const float d = s.direction * 0.017453292F;
    const float e = s.elevation * 0.017453292F;
    const float length = static_cast<float>(max) + 0.9F;
    const long long lx = static_cast<int>(std::cos(d) * std::cos(e) * length);
    const long long ly = static_cast<int>(std::sin(d) * std::cos(e) * length);
    const long long lz = static_cast<int>(std::sin(e) * length);
    const long long nz = s.bump == 0.0F ? 0 : static_cast<long long>(static_cast<float>(6 * max) / (3.0F * s.bump));
    const auto sum = [&](int x, int y) { return Get(source, x, y, 0) + Get(source, x, y, 1) + Get(source, x, y, 2); };
    const auto shadeAt = [&](int x, int y) {
        if (s.bump == 0.0F || x == source.x0 || x == source.x1 || y == source.y0 || y == source.y1)
            return static_cast<int>(lz);
        int dx = 0;
        int dy = 0;
        for (int i = -1; i <= 1; ++i) {
            dx += sum(x - 1, y + i) - sum(x + 1, y + i);
            dy += sum(x + i, y - 1) - sum(x + i, y + 1);
        }
        const long long nx = static_cast<int>(0.33333F * static_cast<float>(dx));
        const long long ny = static_cast<int>(0.33333F * static_cast<float>(dy));
        if (nx == 0 && ny == 0) return static_cast<int>(lz);
        const long long dot = nx * lx + ny * ly + nz * lz;
        if (dot < 0) return 0;
        return static_cast<int>(static_cast<float>(dot) / std::sqrt(static_cast<float>(nx * nx + ny * ny + nz * nz)));
    };
    ForEachChannel(result, [&](int x, int y, int c) {
        const int alpha = Get(source, x, y, 3);
        if (c == 3) return Put(result, x, y, c, alpha);
        if (alpha == 0) return Put(result, x, y, c, 0);
        int shade = shadeAt(x, y);
        if (source.flag != 0 && alpha < max) shade = shade * alpha / max;
        const float f = std::min(std::max(static_cast<float>(shade) / static_cast<float>(max), 0.0F), 1.0F);
        const int colour = s.bgr[static_cast<std::size_t>(c)] >> (max == 255 ? 6 : 0);
        const float mixed =
            static_cast<float>(Get(source, x, y, c)) * s.mix + static_cast<float>(colour) * (1.0F - s.mix);
        Put(result, x, y, c, std::clamp(static_cast<int>(mixed * f), 0, max));
    });
    return result;
}

// 8 bits only.
inline Image Oil(const Image& source, int radius, int levels, bool useIntensity, const Rect* region) {
    Image result = Like(source, WorkArea(source, region, 0));
    if (source.IsMask()) {
        CopyOfArea(source, result);
        return result;
    }
    const auto read = source.Clone();
    if (source.flag != 0) read->Unpremultiply(*read);
    struct Tone {
        int count = 0;
        std::array<int, 3> sum{};
    };
    const auto mean = [](const std::map<int, Tone>& tones, int c) {
        Tone best;
        for (const auto& [bin, tone] : tones)
            if (tone.count > best.count) best = tone;
        return best.sum[static_cast<std::size_t>(c)] / best.count;
    };
    ForEachChannel(result, [&](int x, int y, int c) {
        if (c == 3) return Put(result, x, y, c, Get(source, x, y, c));
        std::map<int, Tone> tones;
        for (int v = y - radius; v <= y + radius; ++v)
            for (int u = x - radius; u <= x + radius; ++u) {
                const int b = GetClamped(*read, u, v, 0);
                const int g = GetClamped(*read, u, v, 1);
                const int r = GetClamped(*read, u, v, 2);
                const int own = GetClamped(*read, u, v, c);
                const int bin = useIntensity ? ((77 * r + 151 * g + 28 * b + 128) * levels) >> 16 : (own * levels) >> 8;
                ++tones[bin].count;
                tones[bin].sum[static_cast<std::size_t>(c)] += own;
            }
        Put(result, x, y, c, mean(tones, c));
    });
    if (source.flag != 0) result.Premultiply(result);
    return result;
}

}  // namespace reference
