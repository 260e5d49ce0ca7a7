#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "chalkpane/filters/noise/grain_random.h"
#include "tests/reference/neighbourhood.h"

// Slow, plain references of the effects: one pixel at a time, everything looked up where it is needed.
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

// What point filters do around their pixels: alpha out before, and in again behind.
template <typename PixelFunction>
Image PointFiltered(const Image& source, const Rect* region, PixelFunction function) {
    Image result = Like(source, WorkArea(source, region, 0));
    CopyOfArea(source, result);
    if (source.IsMask()) return result;
    if (source.flag != 0) result.Unpremultiply(result);
    if (source.flag != 0 && source.GetDepth() == Depth::Fourteen)
        ForEachChannel(result, [&](int x, int y, int c) {  // no alpha at 14 bits counts as the smallest one
            if (c != 3 && Get(source, x, y, 3) == 0 && Get(source, x, y, c) != 0) Put(result, x, y, c, 16383);
        });
    for (int y = result.y0; y <= result.y1; ++y)
        for (int x = result.x0; x <= result.x1; ++x) function(result, x, y);
    if (source.flag != 0) result.Premultiply(result);
    return result;
}

// Truncated and limited; NaN is 0.
inline int Limited(float value, int max) {
    if (!(value > 0.0F)) return 0;
    return value >= static_cast<float>(max) ? max : static_cast<int>(value);
}

inline Image AddNoise(const Image& source, float level, bool uniform, bool rgb, int density, const Rect* region) {
    chalkpane::GrainRandom random(0);
    const float amp = level * (source.GetDepth() == Depth::Eight ? 255.0F : 32766.0F);
    const auto noise = [&] {
        return uniform ? static_cast<float>(random.Next() & 0x7fffu) / 32767.0F - 0.5F : random.Gauss();
    };
    return PointFiltered(source, region, [&](Image& image, int x, int y) {
        if (static_cast<int>(random.Next() % 100u) > density) return;
        float n = 0.0F;
        for (int c = 2; c >= 0; --c) {
            if (c == 2 || rgb) n = noise();
            Put(image, x, y, c, Limited(static_cast<float>(Get(image, x, y, c)) + n * amp, FullScale(image)));
        }
    });
}

// Point filters that see floats of 0 to 255: function(x, y, a, r, g, b).
template <typename FloatFunction>
Image FloatFiltered(const Image& source, const Rect* region, FloatFunction function) {
    const bool deep = source.GetDepth() == Depth::Fourteen;
    return PointFiltered(source, region, [&](Image& image, int x, int y) {
        std::array<float, 4> v{};
        for (int c = 0; c < 4; ++c) {
            const auto stored = static_cast<float>(Get(image, x, y, c));
            v[static_cast<std::size_t>(c)] = deep ? stored * 0.015564915F : stored;
        }
        function(x, y, v[3], v[2], v[1], v[0]);
        for (int c = 0; c < 4; ++c) {
            const float scaled = v[static_cast<std::size_t>(c)] * (deep ? 64.24706F : 1.0F);
            Put(image, x, y, c, Limited(scaled, FullScale(image)));
        }
    });
}

struct HalftoneSettings {
    int size = 10;
    float softness = 0.3F;
    int shape = 0;
    bool colour = false;
    std::array<float, 3> angles{};  // red, green, blue; degrees
};

inline std::vector<int> HalftoneTile(int size, int shape) {
    std::vector<float> values;
    for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i) {
            const float u = static_cast<float>(2 * i) / static_cast<float>(size) - 1.0F;
            const float v = static_cast<float>(2 * j) / static_cast<float>(size) - 1.0F;
            const float d = std::fabs(u) + std::fabs(v);
            if (shape == 0) values.push_back(std::fabs(v));
            if (shape == 1) values.push_back(1.0F - (u * u + v * v));
            if (shape == 2) values.push_back(1.0F - std::max(std::fabs(u), std::fabs(v)));
            if (shape == 3)
                values.push_back(d <= 1.0F ? 0.25F * (2.0F * d * d)
                                           : 0.25F * (2.0F * d * d - 4.0F * (d - 1.0F) * (d - 1.0F)));
        }
    std::vector<int> tile;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (shape != 1) {
            tile.push_back(static_cast<int>(values[i] * 254.0F));
            continue;
        }
        std::size_t rank = 0;
        for (std::size_t k = 0; k < values.size(); ++k)
            rank += values[k] > values[i] || (values[k] == values[i] && k < i) ? 1u : 0u;
        tile.push_back(static_cast<int>(rank * 255 / values.size()));
    }
    return tile;
}

inline Image Halftone(const Image& source, const HalftoneSettings& s, const Rect* region) {
    const auto tile = HalftoneTile(s.size, s.shape);
    const int h = static_cast<int>(s.softness * 127.0F);
    const auto size = static_cast<float>(s.size);
    const auto screened = [&](float level, int x, int y, float angle) {
        const float sine = std::sin(angle * 0.017453292F);
        const float cosine = std::cos(angle * 0.017453292F);
        const auto place = [&](float p) {
            p -= size * static_cast<float>(static_cast<int>(p / size));
            if (p < 0.0F) p += size;
            return static_cast<int>(p) % s.size;
        };
        const int i = place(static_cast<float>(x) * cosine + static_cast<float>(y) * sine);
        const int j = place(static_cast<float>(y) * cosine - static_cast<float>(x) * sine);
        const int cell = j * s.size + i;
        const int t = tile[static_cast<std::size_t>(cell)];
        if (static_cast<float>(t + h) < level) return 255.0F;
        if (level < static_cast<float>(t - h)) return 0.0F;
        return (level - static_cast<float>(t)) * 255.0F / static_cast<float>(2 * h);
    };
    return FloatFiltered(source, region, [&](int x, int y, float& /*a*/, float& r, float& g, float& b) {
        if (s.colour) {
            r = screened(r, x, y, s.angles[0]);
            g = screened(g, x, y, s.angles[1]);
            b = screened(b, x, y, s.angles[2]);
        } else {
            const int luma = static_cast<int>(r * 0.299F + g * 0.587F + b * 0.114F);
            r = g = b = screened(static_cast<float>(luma), x, y, s.angles[0]);
        }
    });
}

// Keeps the picture's cells by grid row for as long as it likes, and asks for those of one output row in the order of
// the ring's slots.
inline Image Voronoi(const Image& source, double s, double q, double edges, const Rect* region) {
    Image result = Like(source, WorkArea(source, region, 0));
    if (source.IsMask()) {
        CopyOfArea(source, result);
        return result;
    }
    struct Point {
        float x, y;
    };
    const double rowH = std::sqrt(3.0) * s * 0.5;
    const int m = static_cast<int>(std::ceil((2 * q + rowH) / rowH));
    const int cols = static_cast<int>(std::ceil((2 * q + result.Width()) / s + 4));
    const int ring = 2 * m + 1;
    const double jitter = s * q;
    const double reach2 = (s + jitter) * (s + jitter);
    const double edge = edges * s;
    chalkpane::GrainRandom random(190423);
    const auto shift = [&random] { return (random.Next() & 0x7fffu) / 16384.0; };
    const auto gridRow = [&](int y) { return static_cast<int>(std::floor(y / rowH)) + m; };
    std::map<int, std::vector<Point>> grid;
    const auto makeRow = [&](int k) {
        double x = (k % 2 == 0 ? s * 0.5 : 0.0) - 2 * s;
        for (int i = 0; i < cols; ++i, x += s) {
            const double u = shift();
            const double v = shift();
            grid[k].push_back(
                {static_cast<float>(u * jitter + x + result.x0), static_cast<float>(v * jitter + k * rowH)});
        }
    };
    std::map<int, std::array<int, 4>> colours;  // by column, from row to row
    for (int x = result.x0; x <= result.x1; ++x) colours[x] = {};
    for (int y = result.y0; y <= result.y1; ++y) {
        std::map<int, float> best;
        std::map<int, float> second;
        for (int x = result.x0; x <= result.x1; ++x) best[x] = second[x] = 1e9F;
        std::map<int, int> slots;
        for (int k = gridRow(y) - 2 * m; k <= gridRow(y); ++k) {
            if (grid.count(k) == 0) makeRow(k);
            slots[(k + 10000) % ring] = k;
        }
        for (const auto& [slot, k] : slots)
            for (const Point& p : grid[k]) {
                const float dy2 = (p.y - static_cast<float>(y)) * (p.y - static_cast<float>(y));
                if (dy2 > reach2) continue;
                const double w = std::sqrt(reach2 - dy2);
                const int first = std::max(static_cast<int>(std::floor(p.x - w)), result.x0);
                const int last = std::min(static_cast<int>(std::ceil(p.x + w)), result.x1);
                float d = (p.x - static_cast<float>(first)) * (p.x - static_cast<float>(first)) + dy2;
                float delta = 1.0F - 2.0F * (p.x - static_cast<float>(first));
                for (int x = first; x <= last; ++x) {
                    if (d < best[x]) {
                        second[x] = best[x];
                        best[x] = d;
                        for (int c = 0; c < 4; ++c)
                            colours[x][static_cast<std::size_t>(c)] = GetClamped(
                                source, static_cast<int>(std::floor(p.x)), static_cast<int>(std::floor(p.y)), c);
                    } else if (d < second[x]) {
                        second[x] = d;
                    }
                    d += delta;
                    if (d < 0.0F) d = 0.0F;
                    delta += 2.0F;
                }
            }
        const int full = source.GetDepth() == Depth::Eight ? 256 : 16384;
        for (int x = result.x0; x <= result.x1; ++x) {
            int weight = full;
            const float diff = std::sqrt(second[x]) - std::sqrt(best[x]);
            if (edge > 0 && diff < edge - 1)
                weight = 0;
            else if (edge > 0 && diff < edge)
                weight = static_cast<int>((diff - (edge - 1)) * full);
            for (int c = 0; c < 3; ++c) Put(result, x, y, c, colours[x][static_cast<std::size_t>(c)] * weight / full);
            Put(result, x, y, 3, colours[x][3]);
        }
    }
    return result;
}

struct GrainSettings {
    std::array<float, 3> levels{};  // red, green, blue
    std::array<float, 3> sizes{1.0F, 1.0F, 1.0F};
    int seed = 0;
};

// The grain of frame `frame`, drawn for the picture that it lies on.
inline Image FilmGrain(const Image& source, const GrainSettings& s, int frame) {
    Image result = Like(source, source.Bounds());
    CopyOfArea(source, result);
    if (source.IsMask()) return result;
    chalkpane::GrainRandom random(static_cast<std::uint32_t>(frame) * 65537u + static_cast<std::uint32_t>(s.seed));
    std::vector<int> table(65536);
    for (int& value : table) value = static_cast<std::int16_t>(random.Next() & 0xffffu);
    const int grow = static_cast<int>(*std::max_element(s.sizes.begin(), s.sizes.end()));
    Rect area = source.Bounds();
    area.Inflate(grow);
    std::array<std::map<int, int>, 3> start;
    std::array<std::map<int, int>, 3> step;
    for (std::size_t k = 0; k < 3; ++k)
        for (int y = area.y0; y <= area.y1; ++y) {
            start[k][y] = static_cast<int>(random.Next() & 0xffffu);
            step[k][y] = static_cast<int>((random.Next() & 0x7ff0u) + 0x2005u);
        }
    const int mid = source.GetDepth() == Depth::Eight ? 128 : 8192;
    for (std::size_t k = 0; k < 3; ++k) {
        if (s.levels[k] < 0.001F) continue;
        const float amp = std::sqrt(s.sizes[k]) * s.levels[k];
        const float f = std::min(amp, 1.0F);
        const float scale = f * 127.0F / 32768.0F;
        const float gain = amp / f;
        Image grain = Image::Mask(area, source.GetDepth());
        ForEachChannel(grain, [&](int x, int y, int c) {
            const auto place = static_cast<std::uint16_t>(start[k][y] + x * step[k][y]);
            const float value =
                static_cast<float>(table[place]) * scale * (source.GetDepth() == Depth::Eight ? 1.0F : 64.0F);
            Put(grain, x, y, c, static_cast<int>(std::floor(value + 0.5F)) + mid);
        });
        if (s.sizes[k] > 1.0F) grain = SuperSoften(grain, s.sizes[k], 3, nullptr, false);
        ForEachChannel(result, [&](int x, int y, int c) {
            if (c != 2 - static_cast<int>(k)) return;
            const int g = Get(grain, x, y, 0);
            const int value = Get(result, x, y, c);
            const int more = gain >= 1.001F ? ((mid - g) * static_cast<int>(gain * 256.0F)) >> 8 : mid - g;
            Put(result, x, y, c, std::clamp(value + more, 0, FullScale(source)));
        });
    }
    return result;
}

}  // namespace reference
