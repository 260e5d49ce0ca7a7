#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "chalkpane/image/image.h"

// Pictures as plain tables of numbers, and sampling and halving of them in the most obvious way.
namespace reference {

struct Picture {
    int x0 = 0, y0 = 0, x1 = -1, y1 = -1;
    int channels = 4;
    bool deep = false;
    std::vector<int> values;  // bottom row first

    Picture(int left, int bottom, int width, int height, int channelCount, bool is14)
        : x0(left),
          y0(bottom),
          x1(left + width - 1),
          y1(bottom + height - 1),
          channels(channelCount),
          deep(is14),
          values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                 static_cast<std::size_t>(channelCount)) {}

    explicit Picture(const chalkpane::Image& image)
        : Picture(image.x0, image.y0, image.Width(), image.Height(), image.IsMask() ? 1 : 4,
                  image.GetDepth() == chalkpane::Depth::Fourteen) {
        for (int y = y0; y <= y1; ++y)
            for (int x = x0; x <= x1; ++x)
                for (int c = 0; c < channels; ++c) {
                    const std::byte* address = image.Address(x, y);
                    At(x, y, c) = deep ? reinterpret_cast<const std::uint16_t*>(address)[c]
                                       : reinterpret_cast<const std::uint8_t*>(address)[c];
                }
    }

    [[nodiscard]] int Width() const { return x1 - x0 + 1; }
    [[nodiscard]] int Height() const { return y1 - y0 + 1; }
    int& At(int x, int y, int c) {
        return values[static_cast<std::size_t>(((y - y0) * Width() + (x - x0)) * channels) +
                      static_cast<std::size_t>(c)];
    }
    [[nodiscard]] bool Has(int x, int y) const { return x >= x0 && x <= x1 && y >= y0 && y <= y1; }

    // The one with the same remainder: counts step by step instead of dividing.
    static int Around(int position, int low, int high, int edgeMode) {
        if (edgeMode == 4) return position < low ? low : position > high ? high : position;
        const int size = high - low + 1;
        if (edgeMode == 1) {
            if (size == 1) return low;
            while (position < low || position > high)
                position = position < low ? 2 * low - position : 2 * high - position;
            return position;
        }
        while (position < low) position += size;
        while (position > high) position -= size;
        return position;
    }
    [[nodiscard]] int Edge(int x, int y, int c, int edgeMode) const {
        if (edgeMode == 0 && !Has(x, y)) return 0;
        if (edgeMode != 0) {
            x = Around(x, x0, x1, edgeMode);
            y = Around(y, y0, y1, edgeMode);
        }
        return const_cast<Picture*>(this)->At(x, y, c);
    }

    [[nodiscard]] int Sample(double x, double y, int c, int edgeMode) const {
        const int ix = static_cast<int>(std::floor(x));
        const int iy = static_cast<int>(std::floor(y));
        const double fx = x - ix;
        const double fy = y - iy;
        const int p00 = Edge(ix, iy, c, edgeMode);
        if (channels == 1 && deep) return p00;
        const int p10 = Edge(ix + 1, iy, c, edgeMode);
        const int p01 = Edge(ix, iy + 1, c, edgeMode);
        const int p11 = Edge(ix + 1, iy + 1, c, edgeMode);
        if (channels == 1)
            return static_cast<int>((1 - fx) * (1 - fy) * p00 + fx * (1 - fy) * p10 + (1 - fx) * fy * p01 +
                                    fx * fy * p11 + 0.5);
        if (fx + fy < 1e-5) return p00;
        const auto w00 = static_cast<std::int64_t>((1 - fx) * (1 - fy) * 65536);
        const auto w10 = static_cast<std::int64_t>(fx * (1 - fy) * 65536);
        const auto w01 = static_cast<std::int64_t>((1 - fx) * fy * 65536);
        const auto w11 = static_cast<std::int64_t>(fx * fy * 65536);
        return static_cast<int>((w00 * p00 + w10 * p10 + w01 * p01 + w11 * p11 + 0x8000) >> 16);
    }
};

inline Picture Halved(const Picture& source) {
    Picture half(source.x0 / 2, source.y0 / 2, (source.Width() + 1) / 2, (source.Height() + 1) / 2, source.channels,
                 source.deep);
    for (int y = half.y0; y <= half.y1; ++y)
        for (int x = half.x0; x <= half.x1; ++x)
            for (int c = 0; c < source.channels; ++c) {
                const int sx = 2 * x;
                const int sy = 2 * y;
                if (!source.Has(sx - 1, sy - 1) || !source.Has(sx + 1, sy + 1)) {
                    half.At(x, y, c) = source.Sample(sx + 0.5, sy + 0.5, c, 0);
                    continue;
                }
                int sum = 0;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx)
                        sum += (2 - std::abs(dx)) * (2 - std::abs(dy)) * source.Edge(sx + dx, sy + dy, c, 0);
                half.At(x, y, c) = sum >> 4;
            }
    return half;
}

// Between the source and its half.
inline Picture Blended(const Picture& source, double blend) {
    const Picture half = Halved(source);
    Picture result = source;
    const int k = static_cast<int>((1 - blend) * 256);
    for (int y = source.y0; y <= source.y1; ++y)
        for (int x = source.x0; x <= source.x1; ++x)
            for (int c = 0; c < source.channels; ++c) {
                const int s = source.Edge(x, y, c, 0);
                const int hx = static_cast<int>(std::floor(x / 2.0));
                const int hy = static_cast<int>(std::floor(y / 2.0));
                const int right = hx + (x % 2 != 0 ? 1 : 0);
                const int next = hy + (y % 2 != 0 ? 1 : 0);
                if (x == source.x1 || y == source.y1 || !half.Has(hx, hy) || !half.Has(right, next)) {
                    const int sample = half.Sample(x / 2.0, y / 2.0, c, 4);
                    result.At(x, y, c) = static_cast<int>(s + (sample - s) * (1 - blend) + (source.deep ? 0.5 : 0.0));
                    continue;
                }
                int n = 1;
                int sum = half.Edge(hx, hy, c, 0);
                if (right != hx) {
                    n *= 2;
                    sum += half.Edge(right, hy, c, 0);
                }
                if (next != hy) {
                    n *= 2;
                    sum += half.Edge(hx, next, c, 0);
                }
                if (n == 4) sum += half.Edge(right, next, c, 0);
                if (source.deep) {
                    const double value = ((sum - n * s) * (1 - blend) + n * s) / n + 0.5;
                    const int limit = n == 4 ? 0x4000 : 0x3fff;
                    result.At(x, y, c) = value < 0 ? 0 : value > limit ? limit : static_cast<int>(value);
                } else {
                    result.At(x, y, c) = ((sum - n * s) * k + s * 256 * n) / (256 * n);
                }
            }
    return result;
}

// Noise up to full scale; a 14-bit picture takes 14 bits.
inline void FillWithNoise(chalkpane::Image& image, std::uint32_t seed) {
    std::mt19937 random(seed);
    for (std::int64_t line = image.y0; line <= image.y1; ++line) {
        const auto y = static_cast<std::int32_t>(line);
        if (image.GetDepth() == chalkpane::Depth::Eight)
            for (auto& channel : image.Row8(y)) channel = static_cast<std::uint8_t>(random());
        else
            for (auto& channel : image.Row14(y)) channel = static_cast<std::uint16_t>(random() & 0x3fff);
    }
}

inline bool Same(const Picture& a, const Picture& b) {
    return a.x0 == b.x0 && a.y0 == b.y0 && a.x1 == b.x1 && a.y1 == b.y1 && a.channels == b.channels &&
           a.deep == b.deep && a.values == b.values;
}

}  // namespace reference
