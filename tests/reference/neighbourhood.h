#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "chalkpane/image/image.h"

// Slow, plain references of the blurs and neighbourhood filters: one channel of one pixel at a time, in the order in
// which one would say it.
namespace reference {

using chalkpane::Depth;
using chalkpane::Image;
using chalkpane::Rect;

inline int FullScale(const Image& image) { return image.GetDepth() == Depth::Eight ? 255 : 16383; }
inline int Channels(const Image& image) { return image.IsMask() ? 1 : 4; }

inline int Get(const Image& image, int x, int y, int c) {
    const std::byte* p = image.Address(x, y);
    return image.GetDepth() == Depth::Eight ? reinterpret_cast<const std::uint8_t*>(p)[c]
                                            : reinterpret_cast<const std::uint16_t*>(p)[c];
}
inline int GetOrZero(const Image& image, int x, int y, int c) { return image.Contains(x, y) ? Get(image, x, y, c) : 0; }
inline int GetClamped(const Image& image, int x, int y, int c) {
    return Get(image, std::clamp(x, image.x0, image.x1), std::clamp(y, image.y0, image.y1), c);
}
inline void Put(Image& image, int x, int y, int c, int value) {
    std::byte* p = image.Address(x, y);
    if (image.GetDepth() == Depth::Eight)
        reinterpret_cast<std::uint8_t*>(p)[c] = static_cast<std::uint8_t>(value);
    else
        reinterpret_cast<std::uint16_t*>(p)[c] = static_cast<std::uint16_t>(value);
}

inline Rect WorkArea(const Image& source, const Rect* region, int grow) {
    Rect work(source.x0 - grow, source.y0 - grow, source.x1 + grow, source.y1 + grow);
    return region == nullptr ? work : work.Intersection(*region);
}

inline Image Like(const Image& source, const Rect& bounds) { return Image(bounds, source); }

template <typename Function>
void ForEachChannel(const Image& image, Function function) {
    for (int y = image.y0; y <= image.y1; ++y)
        for (int x = image.x0; x <= image.x1; ++x)
            for (int c = 0; c < Channels(image); ++c) function(x, y, c);
}

inline Image Blur(const Image& source, double softness, const Rect* region, bool expand) {
    const int r = static_cast<int>(std::ceil(softness));
    const int total = source.GetDepth() == Depth::Eight ? 256 : 16384;
    const int shift = source.GetDepth() == Depth::Eight ? 8 : 14;
    std::vector<int> taps;
    double sum = 0.0;
    for (int i = 0; i <= 2 * r; ++i) {
        const double t = std::abs(i - r) / softness;
        sum += std::exp(-4.0 * t * t);
    }
    int given = 0;
    for (int i = 0; i <= 2 * r; ++i) {
        const double t = std::abs(i - r) / softness;
        taps.push_back(static_cast<int>(total * std::exp(-4.0 * t * t) / sum + 0.5));
        given += taps.back();
    }
    taps[static_cast<std::size_t>(r)] += total - given;

    const Rect work = WorkArea(source, region, expand ? r : 0);
    Image between = Like(source, work);
    ForEachChannel(between, [&](int x, int y, int c) {
        int value = 1 << (shift - 1);
        for (int k = 0; k <= 2 * r; ++k)
            value += taps[static_cast<std::size_t>(k)] * GetOrZero(source, x, y + k - r, c);
        Put(between, x, y, c, value >> shift);
    });
    Image result = Like(source, work);
    ForEachChannel(result, [&](int x, int y, int c) {
        int value = 1 << (shift - 1);
        for (int k = 0; k <= 2 * r; ++k)
            value += taps[static_cast<std::size_t>(k)] * GetOrZero(between, x + k - r, y, c);
        Put(result, x, y, c, value >> shift);
    });
    return result;
}

// One line of the soft blur: values from `start` on, with as much room on both sides as the support radius of the
// passes.
inline std::vector<float> SoftLine(std::vector<float> line, double softness, int passes, float& gain) {
    const auto at = [](const std::vector<float>& v, int i) {
        return i >= 0 && i < static_cast<int>(v.size()) ? v[static_cast<std::size_t>(i)] : 0.0F;
    };
    gain = 1.0F;
    for (int pass = 0; pass < passes; ++pass) {
        const int r = static_cast<int>((pass + softness) / passes);
        if (r == 0) continue;
        std::vector<float> out;
        float sum = 0.0F;
        for (int i = -r; i <= r; ++i) sum += at(line, i);
        for (int i = 0; i < static_cast<int>(line.size()); ++i) {
            out.push_back(sum);
            sum = sum + at(line, i + r + 1);
            sum = sum - at(line, i - r);
        }
        line = out;
        gain *= static_cast<float>(2 * r + 1);
    }
    const double fraction = softness - std::floor(softness);
    if (passes >= 3 && fraction >= 0.01) {
        std::vector<float> out;
        for (int i = 0; i < static_cast<int>(line.size()); ++i) {
            const float sides = at(line, i - 1) + at(line, i + 1);
            out.push_back(static_cast<float>(sides * fraction + at(line, i)));
        }
        line = out;
        gain = static_cast<float>(gain * (2 * fraction + 1));
    }
    return line;
}

inline Image SuperSoften(const Image& source, double softness, int passes, const Rect* region, bool expand) {
    const Rect work = WorkArea(source, region, expand ? static_cast<int>(std::ceil(softness)) : 0);
    const int room = static_cast<int>(softness) * 2 + 2 * passes + 4;
    const auto soften = [&](const Image& from, Image& to, bool alongX) {
        const int low = (alongX ? std::min(from.x0, to.x0) : std::min(from.y0, to.y0)) - room;
        const int high = (alongX ? std::max(from.x1, to.x1) : std::max(from.y1, to.y1)) + room;
        const int firstLine = alongX ? to.y0 : to.x0;
        const int lastLine = alongX ? to.y1 : to.x1;
        for (int other = firstLine; other <= lastLine; ++other) {
            for (int c = 0; c < Channels(from); ++c) {
                std::vector<float> line;
                for (int p = low; p <= high; ++p)
                    line.push_back(
                        static_cast<float>(alongX ? GetOrZero(from, p, other, c) : GetOrZero(from, other, p, c)));
                float gain = 1.0F;
                line = SoftLine(line, softness, passes, gain);
                for (int p = alongX ? to.x0 : to.y0; p <= (alongX ? to.x1 : to.y1); ++p) {
                    const float rounded = line[static_cast<std::size_t>(p - low)] / gain + 0.5F;
                    const int value = std::clamp(static_cast<int>(rounded), 0, FullScale(from));
                    alongX ? Put(to, p, other, c, value) : Put(to, other, p, c, value);
                }
            }
        }
    };
    Image between = Like(source, Rect(work.x0, source.y0, work.x1, source.y1));
    Image result = Like(source, work);
    soften(source, between, true);
    soften(between, result, false);
    return result;
}

inline Image Median(const Image& source, int radius, const Rect* region, bool expand) {
    Image result = Like(source, WorkArea(source, region, expand ? radius : 0));
    ForEachChannel(result, [&](int x, int y, int c) {
        std::vector<int> fine(256);
        std::vector<int> coarse(16);
        for (int dy = -radius; dy <= radius; ++dy) {
            for (int dx = -radius; dx <= radius; ++dx) {
                const int value = GetClamped(source, x + dx, y + dy, c);
                ++fine[static_cast<std::size_t>(value)];
                ++coarse[static_cast<std::size_t>(value >> 4)];
            }
        }
        int count = -((2 * radius + 1) * (2 * radius + 1) / 2);
        std::size_t group = 0;
        for (;; ++group) {
            count += coarse[group];
            if (count >= 0) break;
        }
        std::size_t bin = group * 16 + 15;
        while (count > 0) {
            count -= fine[bin];
            if (count <= 0) break;
            --bin;
        }
        Put(result, x, y, c, static_cast<int>(bin));
    });
    return result;
}

inline Image EdgeDetect(const Image& source, double brightness, const Rect* region, bool expand) {
    const double factor = brightness * 0.1;
    Image result = Like(source, WorkArea(source, region, expand ? 1 : 0));
    ForEachChannel(result, [&](int x, int y, int c) {
        if (c == 3) return Put(result, x, y, c, GetClamped(source, x, y, 3));
        const auto b = [&](int dx, int dy) { return GetClamped(source, x + dx, y + dy, c); };
        const int gx = (b(-1, 1) + 2 * b(-1, 0) + b(-1, -1)) - (b(1, 1) + 2 * b(1, 0) + b(1, -1));
        const int gy = (b(-1, 1) + 2 * b(0, 1) + b(1, 1)) - (b(-1, -1) + 2 * b(0, -1) + b(1, -1));
        const bool inside = x > source.x0 && x < source.x1 && y > source.y0 && y < source.y1;
        const int horizontal = inside ? std::max(gx, 0) : std::abs(gx);
        int value = std::min(static_cast<int>(std::max(horizontal, std::abs(gy)) * factor), FullScale(source));
        if (!source.IsMask() && source.flag != 0) value = std::min(value, GetClamped(source, x, y, 3));
        Put(result, x, y, c, value);
    });
    return result;
}

}  // namespace reference
