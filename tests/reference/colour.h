#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "tests/reference/effects.h"

// Slow, plain references of the colour correctors: every pixel by itself, every number worked out where it is needed.
namespace reference {

using Bgr = std::array<int, 3>;

inline int LumaByteOf(const Bgr& c) { return (77 * c[2] + 151 * c[1] + 28 * c[0]) >> 8; }
inline int LumaWordOf(const Bgr& c) { return (4915 * c[2] + 9666 * c[1] + 1802 * c[0]) >> 14; }
inline int LumaAt(const Image& image, const Bgr& c) {
    return image.GetDepth() == Depth::Eight ? LumaByteOf(c) : LumaWordOf(c);
}

// A point filter on colours: function(image, colour, alpha) changes the colour.
template <typename ColourFunction>
Image ColourFiltered(const Image& source, const Rect* region, ColourFunction function) {
    return PointFiltered(source, region, [&](Image& image, int x, int y) {
        Bgr colour{Get(image, x, y, 0), Get(image, x, y, 1), Get(image, x, y, 2)};
        function(image, colour, Get(image, x, y, 3));
        for (int c = 0; c < 3; ++c) Put(image, x, y, c, colour[static_cast<std::size_t>(c)]);
    });
}

// The same on each channel by itself: function(channel, full scale).
template <typename ChannelFunction>
Image EachChannel(const Image& source, const Rect* region, ChannelFunction function) {
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        for (int& c : colour) c = function(c, FullScale(image));
    });
}

inline Image BlackWhite(const Image& source, const Rect* region) {
    return ColourFiltered(source, region,
                          [](const Image& image, Bgr& c, int /*alpha*/) { c[0] = c[1] = c[2] = LumaAt(image, c); });
}

inline Image Chroma(const Image& source, float setting, const Rect* region) {
    const float scale = setting * 0.01F;
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const auto largest = static_cast<float>(*std::max_element(colour.begin(), colour.end()));
        for (int& c : colour) c = Limited((static_cast<float>(c) - largest) * scale + largest, FullScale(image));
    });
}

inline Image Subtract(const Image& source, const Bgr& words, float add, const Rect* region) {
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const float part = image.GetDepth() == Depth::Eight ? add * 0.015564915F : add;
        for (std::size_t c = 0; c < 3; ++c)
            colour[c] =
                std::clamp(colour[c] + static_cast<int>(part * static_cast<float>(words[c])), 0, FullScale(image));
    });
}

inline Image ChannelMixer(const Image& source, int component, const std::array<float, 3>& bgrInputs,
                          const Rect* region) {
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const float sum = static_cast<float>(colour[0]) * bgrInputs[0] + static_cast<float>(colour[2]) * bgrInputs[2] +
                          static_cast<float>(colour[1]) * bgrInputs[1];
        const int wrapped = static_cast<int>(sum) & (image.GetDepth() == Depth::Eight ? 0xff : 0xffff);
        colour[static_cast<std::size_t>(2 - component)] = wrapped;
    });
}

struct BrightnessSettings {
    double brightness, contrast, gamma, saturation;
};

inline Image Brightness(const Image& source, const BrightnessSettings& s, const Rect* region) {
    const auto percent = [](double setting) { return static_cast<int>((setting + 1) * 100 + 0.5); };
    const double g = s.gamma > -1 ? s.gamma + 1 : 0.001;
    const auto mapped = [&](int i, int max) {
        const double part = static_cast<double>(i) / max;
        double v = ((part * (percent(s.brightness) / 100.0) - 0.5) * percent(s.contrast)) / 100 + 0.5;
        v = v < 0 ? 0 : (v > 1 ? 1 : std::pow(v, 1 / g));
        return static_cast<int>(v * max + 0.5);
    };
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const int max = FullScale(image);
        const int bits = max == 255 ? 8 : 14;
        const int k = (percent(s.saturation) - 100) * (max + 1) / 100;
        const int before = LumaWordOf(colour);
        for (int& c : colour) c = mapped(c, max);
        if (percent(s.saturation) == 100) return;
        const int luma = max == 255 ? LumaByteOf(colour) : before;
        for (int& c : colour) c = std::clamp(c + (((c - luma) * k) >> bits), 0, max);
    });
}

// entries: what the curve makes of each luma, in whole numbers.
inline Image LumaCurve(const Image& source, const std::vector<int>& entries, const Rect* region) {
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const int luma = LumaWordOf(colour);
        const auto entry = static_cast<float>(entries[static_cast<std::size_t>(luma)]);
        const float ratio = luma == 0 ? entry : entry / static_cast<float>(luma);
        for (int& c : colour) c = Limited(static_cast<float>(c) * ratio, FullScale(image));
    });
}

inline Image AutoEqualise(const Image& source, const Rect* region) {
    const int max = FullScale(source);
    std::vector<int> counts(static_cast<std::size_t>(max) + 1);
    const Rect work = WorkArea(source, region, 0);
    const auto brightest = [&](int x, int y) {
        return std::max({Get(source, x, y, 0), Get(source, x, y, 1), Get(source, x, y, 2)});
    };
    for (int y = work.y0; y <= work.y1; ++y)
        for (int x = work.x0; x <= work.x1; ++x)
            if (!source.IsMask()) ++counts[static_cast<std::size_t>(brightest(x, y))];
    const int n = work.Width() * work.Height();
    const int tail = std::max(n / 20, 1);
    int low = -1;
    int high = -1;
    int median = -1;
    int sum = 0;
    for (int v = 0; v <= max; ++v) {
        sum += counts[static_cast<std::size_t>(v)];
        if (low < 0 && sum >= tail) low = v;
        if (median < 0 && sum >= n / 2) median = v;
    }
    sum = 0;
    for (int v = max; v >= 0; --v) {
        sum += counts[static_cast<std::size_t>(v)];
        if (high < 0 && sum >= tail) high = v;
    }
    const double span = high - low;
    const double power = low < median && median < high ? std::log(0.5) / std::log((median - low) / span) : 1.0;
    return ColourFiltered(source, region, [&](const Image& /*image*/, Bgr& colour, int /*alpha*/) {
        const int v = *std::max_element(colour.begin(), colour.end());
        if (v == 0 || v < low || v >= high || high <= low) return;
        const auto gain = static_cast<float>((std::pow((v - low) / span, power) * span + low) / v);
        for (int& c : colour) c = static_cast<int>(gain * static_cast<float>(c));
    });
}

// Turns hues by turn(value), value being the largest component in 0 .. 1.
template <typename Turn>
Image RotatedHues(const Image& source, const Rect* region, Turn turn) {
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const bool bytes = image.GetDepth() == Depth::Eight;
        const auto unit = [&](int c) { return static_cast<float>(bytes ? c * 64 + (c >> 2) : c) * 6.103888e-05F; };
        const float b = unit(colour[0]);
        const float g = unit(colour[1]);
        const float r = unit(colour[2]);
        const float v = std::max({r, g, b});
        const float d = v - std::min({r, g, b});
        float h = 0.0F;
        float s = 0.0F;
        if (v != 0.0F && d != 0.0F) {
            s = d / v;
            const float k = 1.0F / d;
            if (v == r) {
                h = (g - b) * 0.16666667F * k;
                if (h < 0.0F) h += 1.0F;
            } else if (v == g) {
                h = ((b - r) * k + 2.0F) * 0.16666667F;
            } else {
                h = ((r - g) * k + 4.0F) * 0.16666667F;
            }
        }
        h = turn(h, v);
        h -= std::floor(h);
        const int sextant = static_cast<int>(h * 6.0F);
        const float f = h * 6.0F - std::floor(h * 6.0F);
        const float p = (1.0F - s) * v;
        const float q = (1.0F - f * s) * v;
        const float t = (1.0F - (1.0F - f) * s) * v;
        const std::array<std::array<float, 3>, 7> rgb{
            {{v, t, p}, {q, v, p}, {p, v, t}, {p, q, v}, {t, p, v}, {v, p, q}, {v, t, p}}};
        for (std::size_t c = 0; c < 3; ++c) {
            const int word = static_cast<int>(rgb[static_cast<std::size_t>(sextant)][2 - c] * 16383.0F + 0.5F);
            colour[c] = bytes ? word >> 6 : word;
        }
    });
}

struct HueSettings {
    float hue = 0.0F, shadow = 0.0F, midtone = 0.0F, highlight = 0.0F;
};

inline Image HueRotated(const Image& source, const HueSettings& s, const Rect* region) {
    const int n = source.GetDepth() == Depth::Eight ? 256 : 16384;
    const auto size = static_cast<float>(n);
    const auto part = [](float peak) { return std::max(0.0F, peak / 360.0F); };
    return RotatedHues(source, region, [&](float h, float v) {
        const float rotated = h + s.hue / 360.0F * 0.01F;
        if (s.shadow == 0.0F && s.midtone == 0.0F && s.highlight == 0.0F) return rotated;
        const int i = static_cast<int>(v * static_cast<float>(n - 1));
        const float shadow = part(1.0F - static_cast<float>(2 * i) / size);
        const int aboveMiddle = i - n / 2;
        const float midtone = part(1.0F - static_cast<float>(std::abs(2 * aboveMiddle)) / size);
        const float highlight = part(static_cast<float>(2 * aboveMiddle) / size);
        return rotated + (shadow * s.shadow + midtone * s.midtone + highlight * s.highlight);
    });
}

struct TintSettings {
    std::array<Bgr, 4> colours{};  // main, shadow, midtone, highlight; 14 bits
    std::array<float, 4> amounts{};
    float keep = 0.0F;
};

inline int TintedChannel(const Bgr& words, float keep, int luma, int max, std::size_t channel) {
    const int own = LumaByteOf(words);
    Bgr entry{};
    for (std::size_t c = 0; c < 3; ++c) {
        const float wanted = own == 0 ? 0.0F : static_cast<float>(words[c]);
        entry[c] = std::min(
            static_cast<int>(static_cast<float>(luma) * wanted / static_cast<float>(std::max(own, 1)) + 0.5F), max);
    }
    const int reached = LumaByteOf(entry);
    if (reached >= luma) return entry[channel];
    const float f = static_cast<float>(luma - reached) / static_cast<float>(max - reached) * keep;
    const float room = static_cast<float>(max) + 0.49F - static_cast<float>(entry[channel]);
    return entry[channel] + static_cast<int>(f * room + 0.5F);
}

inline Image Tinted(const Image& source, const TintSettings& s, const Rect* region) {
    const int max = FullScale(source);
    const int n = max + 1;
    const bool onlyMain = s.amounts[1] < 0.001F && s.amounts[2] < 0.001F && s.amounts[3] < 0.001F;
    const auto weight = [&](std::size_t range, int i) {
        const auto luma = static_cast<float>(i);
        const auto size = static_cast<float>(n);
        const float amount = s.amounts[range];
        if (range == 0) return static_cast<int>(amount * 256.0F);
        float part = 1.0F - 2.0F * luma / size;
        if (range == 2) part = 1.0F - 2.0F * std::fabs(luma - size / 2.0F) / size;
        if (range == 3) part = 2.0F * (luma - size / 2.0F) / size;
        return static_cast<int>(std::max(0.0F, part * amount) * 255.0F);
    };
    return ColourFiltered(source, region, [&](const Image& /*image*/, Bgr& colour, int alpha) {
        const Bgr before = colour;
        colour = {};
        if (alpha == 0) return;
        const bool direct = onlyMain && s.amounts[0] > 0.999F;
        const int rounded = (77 * before[2] + 151 * before[1] + 28 * before[0] + 128) >> 8;
        const int luma = max != 255 ? LumaWordOf(before) : (direct ? LumaByteOf(before) : rounded);
        for (std::size_t c = 0; c < 3; ++c) {
            if (direct) {
                colour[c] = TintedChannel(s.colours[0], s.keep, luma, max, c);
                continue;
            }
            int sum = max == 255 ? 128 : 0;
            for (std::size_t range = 0; range < 4; ++range)
                if (s.amounts[range] >= 0.001F)
                    sum += (TintedChannel(s.colours[range], s.keep, luma, max, c) - before[c]) * weight(range, luma);
            colour[c] = std::clamp(before[c] + (sum >> 8), 0, max);
        }
    });
}

struct DodgeSettings {
    Bgr words{};
    float amount = 0.0F;
    int mode = 1;
    int range = 0;
};

inline float DodgeMode(int mode, float c, float s) {
    const float u = 0.8F * s;
    if (mode == 0) return s;
    if (mode == 1) return c / (1.0F - u);
    if (mode == 2) return 1.0F - (1.0F - c) / (1.0F - u);
    if (mode == 3) return c + u >= 1.0F ? 1.0F - (1.0F - u) * 0.5F / c : c * 0.5F / (1.0F - u);
    if (mode == 4) return c + u >= 1.0F ? 1.0F - (1.0F - c) * 0.5F / u : (s * 0.5F * 0.8F) / (1.0F - c);
    return mode == 5 ? std::max(c, s) : std::min(c, s);
}

inline Image Dodged(const Image& source, const DodgeSettings& s, const Rect* region) {
    const int max = FullScale(source);
    const int bits = max == 255 ? 8 : 14;
    return ColourFiltered(source, region, [&](const Image& image, Bgr& colour, int /*alpha*/) {
        const int luma = LumaAt(image, colour);
        const std::array<int, 4> weights{max, max - 2 * luma, max - 2 * std::abs(luma - (max + 1) / 2),
                                         2 * luma - (max + 1)};
        const int weight = std::max(weights[static_cast<std::size_t>(s.range)], 0);
        const int scale = weight + (weight >> (bits - 1));
        for (std::size_t i = 0; i < 3; ++i) {
            const float c = static_cast<float>(colour[i]) / static_cast<float>(max);
            const float wanted = DodgeMode(s.mode, c, static_cast<float>(s.words[i]) / 16383.0F);
            const float v = c + std::pow(s.amount, 1.5F) * (wanted - c);
            const int entry = v < 0.0F ? 0 : (v > 1.0F ? max : static_cast<int>(v * static_cast<float>(max)));
            colour[i] += ((entry - colour[i]) * scale) >> bits;
        }
    });
}

inline Image Solarised(const Image& source, float amount, const Rect* region) {
    return EachChannel(source, region, [&](int c, int max) {
        const int threshold = static_cast<int>(amount * static_cast<float>(max));
        if (c > threshold) return Limited(static_cast<float>(c - threshold) * (1.0F / (1.0F - amount)), max);
        return Limited(static_cast<float>(threshold - c) * (1.0F / amount), max);
    });
}

inline Image Posterised(const Image& source, int levels, const Rect* region) {
    return EachChannel(source, region,
                       [&](int c, int max) { return ((levels * c) >> (max == 255 ? 8 : 14)) * max / (levels - 1); });
}

// curve: what it makes of each channel value, in floats. Component in the order of the filter's choices.
inline Image ComponentCorrected(const Image& source, const std::vector<float>& curve, int component,
                                const Rect* region) {
    Image result = Like(source, WorkArea(source, region, 0));
    CopyOfArea(source, result);
    if (source.IsMask()) return result;
    const int max = FullScale(source);
    const auto at = [&](float value) {
        return curve[static_cast<std::size_t>(std::clamp(static_cast<int>(value), 0, max))];
    };
    for (int y = result.y0; y <= result.y1; ++y) {
        for (int x = result.x0; x <= result.x1; ++x) {
            const int alpha = Get(source, x, y, 3);
            const bool divides = source.flag != 0 && alpha < max;
            const float a = divides ? static_cast<float>(alpha) / static_cast<float>(max) : 1.0F;
            std::array<float, 3> v{};  // blue, green, red
            for (int c = 0; c < 3; ++c) {
                const auto stored = static_cast<float>(Get(source, x, y, c));
                v[static_cast<std::size_t>(c)] = divides && alpha > 0 ? stored / a : stored;
            }
            const float most = std::max({v[0], v[1], v[2]});
            const auto full = static_cast<float>(max);
            if (component == 0) {
                const float wanted = at(most);
                for (float& c : v) c = most == 0.0F ? wanted : c * (wanted / most);
            } else if (component == 1) {
                const int top = static_cast<int>(most);
                const int spread = top - static_cast<int>(std::min({v[0], v[1], v[2]}));
                const float wanted = at(static_cast<float>(spread));
                for (float& c : v) {
                    if (top <= 0 || spread <= 0) continue;
                    const auto whole = static_cast<float>(top);
                    c = wanted <= 0.001F ? whole : whole + (c - whole) * (wanted / static_cast<float>(spread));
                }
            } else if (component <= 4) {
                float& c = v[static_cast<std::size_t>(4 - component)];
                c = at(c);
            } else if (component <= 7) {
                float& c = v[static_cast<std::size_t>(7 - component)];
                c = full - at(static_cast<float>(max - static_cast<int>(c)));
            } else if (component == 8) {
                const int black = max - static_cast<int>(most);
                const int more = static_cast<int>(at(static_cast<float>(black)) - static_cast<float>(black));
                for (float& c : v) c = static_cast<float>(max - std::clamp(max - static_cast<int>(c) + more, 0, max));
            } else {
                for (float& c : v) c = at(c);
            }
            for (int c = 0; c < 3; ++c) {
                const float value = v[static_cast<std::size_t>(c)];
                Put(result, x, y, c, alpha == 0 ? 0 : Limited(divides ? value * a : value, max));
            }
        }
    }
    return result;
}

}  // namespace reference
