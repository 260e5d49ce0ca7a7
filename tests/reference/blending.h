#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

// Blending one pixel at a time, the slow and plain way: one function per depth, written out mode by mode.
namespace reference {

using Channels = std::array<int, 4>;  // blue, green, red, alpha

// The generator of speckled alpha, from its formula.
struct Generator {
    std::uint32_t state;
    int Draw() {
        state = state * 214013u + 2531011u;
        return static_cast<int>((state >> 16) & 0x7fffu);
    }
};

inline int RoundedProduct8(int a, int b) {
    const int t = a * b + 128;
    return (t + (t >> 8)) >> 8;
}

inline int RoundedProduct14(int a, int b) {
    const int t = a * b + 8192;
    return (t + (t >> 14)) >> 14;
}

inline int Colour8(int mode, int s, int d) {
    switch (mode) {
        case 0:
            return s;
        case 1:
            return s + d > 255 ? 255 : s + d;
        case 2:
            return d - s < 0 ? 0 : d - s;
        case 3:
            return std::abs(s - d);
        case 4:
            return RoundedProduct8(s, d);
        case 5:
            return s < d ? s : d;
        case 6:
            return d == 255 ? s : std::clamp(((s - 255) * 256) / (d + 1) + 255, 0, 255);
        case 7:
            return s == 0 ? 0 : std::max(((d - 255) * 256) / s + 255, 0);
        case 8:
            return 255 - RoundedProduct8(255 - s, 255 - d);
        case 9:
            return s > d ? s : d;
        case 10:
            return std::min((s * 256) / (256 - d), 255);
        case 11:
            return s == 255 ? 255 : std::min((d * 256) / (255 - s), 255);
        case 16:
            return d < 128 ? 2 * RoundedProduct8(s, d) : 255 - 2 * RoundedProduct8(255 - s, 255 - d);
        case 17: {
            const int m = RoundedProduct8(d, s);
            const int c = 255 - RoundedProduct8(255 - d, 255 - s);
            return m + RoundedProduct8(c - m, d);
        }
        case 18:
            return s > 127 ? 255 - 2 * RoundedProduct8(255 - d, 255 - s) : 2 * RoundedProduct8(d, s);
        case 19:
            return s > 127 ? std::max(s, d) : std::min(s, d);
        case 20:
            return d + RoundedProduct8(255 - 2 * d, s);
        case 21:
            return 255 - std::abs(255 - s - d);
        default:
            return d;
    }
}

// The low 32 bits of a whole number, as a signed one.
inline std::int64_t Wrapped(std::int64_t value) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value & 0xffffffff));
}

inline int SoftLight14(std::int64_t s, std::int64_t d) {
    const std::int64_t m = RoundedProduct14(static_cast<int>(d), static_cast<int>(s));
    const std::int64_t t = (16383 - d) * (16383 - s) + 128;
    const std::int64_t u = (t + (t >> 8)) >> 8;
    const std::int64_t p = Wrapped((16383 - u - m) * d + 8192);
    const std::int64_t scaled = Wrapped(p + (p >> 14)) >> 14;
    return static_cast<int>((m + scaled) & 0xffff);
}

inline int Colour14(int mode, int s, int d) {
    switch (mode) {
        case 0:
            return s;
        case 1:
            return s + d > 16383 ? 16383 : s + d;
        case 2:
            return d - s < 0 ? 0 : d - s;
        case 3:
            return std::abs(s - d);
        case 4:
            return RoundedProduct14(s, d);
        case 5:
            return s < d ? s : d;
        case 6:
            return std::clamp(((s - 16383) * 16384) / (d + 1) + 16383, 0, 16383);
        case 7:
            return s == 0 ? 0 : std::max(((d - 16383) * 16384) / s + 16383, 0);
        case 8:
            return 16383 - RoundedProduct14(16383 - s, 16383 - d);
        case 9:
            return s > d ? s : d;
        case 10:
            return std::min((s * 16384) / (16384 - d), 16383);
        case 11:
            return s == 16383 ? 16383 : std::min((d * 16384) / (16383 - s), 16383);
        case 16:
            return d < 8192 ? 2 * RoundedProduct14(s, d) : 16383 - 2 * RoundedProduct14(16383 - s, 16383 - d);
        case 17:
            return SoftLight14(s, d);
        case 18:
            return s > 8191 ? 16383 - 2 * RoundedProduct14(16383 - d, 16383 - s) : 2 * RoundedProduct14(d, s);
        case 19:
            return s > 8191 ? std::max(s, d) : std::min(s, d);
        case 20:
            return d + RoundedProduct14(16383 - 2 * d, s);
        case 21:
            return 16383 - std::abs(16383 - s - d);
        default:
            return d;
    }
}

// Hue, saturation, value of 14-bit red, green, blue; `scale` 255 or 16383.
inline std::array<int, 3> HsvOf(int red, int green, int blue, int scale) {
    const int max = std::max(red, std::max(green, blue));
    const int min = std::min(red, std::min(green, blue));
    const int value = scale == 255 ? max >> 6 : max;
    if (value == 0) return {0, 0, 0};
    const double delta = max - min;
    const int saturation = static_cast<int>((delta / max) * scale + 0.5);
    double hue = 0.0;
    if (delta != 0) {
        if (red == max) {
            hue = ((green - blue) / 6.0) / delta;
            if (hue < 0) hue += 1;
        } else if (green == max) {
            hue = ((blue - red) / delta + 2) / 6;
        } else {
            hue = ((red - green) / delta + 4) / 6;
        }
    }
    return {static_cast<int>(hue * scale + 0.5), saturation, value};
}

// 14-bit red, green, blue again.
inline std::array<int, 3> RgbOf(int hue, int saturation, int value, int scale) {
    const double x = (static_cast<double>(hue) / scale) * 6;
    const int i = static_cast<int>(std::floor(x));
    const double f = x - i;
    const double s = static_cast<double>(saturation) / scale;
    const double v = static_cast<double>(value) / scale;
    const double p = v * (1 - s);
    const double q = v * (1 - s * f);
    const double t = v * (1 - s * (1 - f));
    const double rows[7][3] = {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}, {v, v, v}};
    const double* row = rows[std::min(i, 6)];
    return {static_cast<int>(row[0] * 16383 + 0.5), static_cast<int>(row[1] * 16383 + 0.5),
            static_cast<int>(row[2] * 16383 + 0.5)};
}

inline Channels HsvPixel(int mode, const Channels& s, const Channels& d, bool deep) {
    const int scale = deep ? 16383 : 255;
    const auto hsv = [&](const Channels& pixel) {
        Channels words = pixel;
        if (!deep)
            for (int& word : words) word = word * 64 + (word >> 2);
        return HsvOf(words[2], words[1], words[0], scale);
    };
    const auto above = hsv(s);
    const auto below = hsv(d);
    const bool hue = mode == 12 || mode == 15;
    const bool saturation = mode == 13 || mode == 15;
    const bool value = mode == 14;
    auto rgb = RgbOf(hue ? above[0] : below[0], saturation ? above[1] : below[1], value ? above[2] : below[2], scale);
    if (!deep)
        for (int& word : rgb) word >>= 6;
    return {rgb[2], rgb[1], rgb[0], s[3]};
}

inline Channels BlendPixel(int mode, const Channels& s, const Channels& d, bool deep, Generator& random) {
    if (mode >= 12 && mode <= 15) return HsvPixel(mode, s, d, deep);
    const int luma = deep ? (9666 * s[1] + 4915 * s[2] + 1802 * s[0]) >> 14 : (151 * s[1] + 77 * s[2] + 28 * s[0]) >> 8;
    Channels out{};
    for (std::size_t i = 0; i < 3; ++i) out[i] = deep ? Colour14(mode, s[i], d[i]) : Colour8(mode, s[i], d[i]);
    out[3] = s[3];
    if (mode == 22) {
        for (std::size_t i = 0; i < 3; ++i) out[i] = s[i];
        const bool shown = s[3] != 0 && s[3] >= (random.Draw() & (deep ? 0x3fff : 0xff));
        out[3] = shown ? (deep ? 16383 : 255) : 0;
    }
    if (mode == 23) out[3] = d[3];
    if (mode == 25) out[3] = luma;
    if (mode == 26) out[3] = 255 - s[3];
    if (mode == 27) out[3] = 255 - luma;
    for (int& channel : out) channel &= deep ? 0xffff : 0xff;
    return out;
}

}  // namespace reference
