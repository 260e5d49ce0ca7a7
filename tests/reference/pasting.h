#pragma once

#include <algorithm>
#include <cmath>

#include "tests/reference/blending.h"
#include "tests/reference/picture.h"

// The pasters, one pixel after another, with every test made at every pixel.
namespace reference {

struct Clipping {
    const Picture* picture = nullptr;
    bool inverted = false;
};

// The channel that covers: the only one of a mask, alpha of anything else.
inline int Coverage(const Picture& picture, int x, int y) {
    return const_cast<Picture&>(picture).At(x, y, picture.channels == 1 ? 0 : 3);
}

inline int Truncated(double value, int limit) { return static_cast<int>(std::min<double>(value, limit)); }

struct Pasting {
    const Picture* source = nullptr;
    const Picture* mask = nullptr;
    Picture* target = nullptr;
    chalkpane::Rect rect;
    Clipping clip;
    double opacity = 1.0;
    int mode = 0;
    bool over = true;
    bool premultiplied = true;

    [[nodiscard]] bool deep() const { return target->deep; }
    [[nodiscard]] int full() const { return deep() ? 16383 : 255; }
    [[nodiscard]] int bits() const { return deep() ? 14 : 8; }
    [[nodiscard]] int scaled(int a, int b) const { return deep() ? RoundedProduct14(a, b) : RoundedProduct8(a, b); }
    [[nodiscard]] int maskAt(int x, int y) const { return mask != nullptr ? Coverage(*mask, x, y) : full(); }
    [[nodiscard]] int sourceAt(int x, int y, int c) const { return const_cast<Picture*>(source)->At(x, y, c); }

    [[nodiscard]] bool isIn(int x, int y) const {
        return rect.Contains(x, y) && (source == nullptr || source->Has(x, y)) &&
               (mask == nullptr || mask->Has(x, y)) &&
               (clip.picture == nullptr || clip.inverted || clip.picture->Has(x, y));
    }
    // What the clip lowers opacity p by: the lowering value c, or full for nothing.
    template <typename Reduce>
    [[nodiscard]] int clipped(int x, int y, int p, int invertedFull, Reduce reduce) const {
        if (clip.picture == nullptr || !clip.picture->Has(x, y)) return p;
        const int c = Coverage(*clip.picture, x, y);
        if (!clip.inverted) return c < full() ? reduce(c, p) : p;
        return c != 0 ? reduce(invertedFull - c, p) : p;
    }
    [[nodiscard]] int reducedByShift(int c, int p) const {
        const int t = deep() ? c * p / 16384 : c * p / 256;
        return t + (deep() ? t / 8192 : t / 128);
    }

    template <typename Pixel>
    void forEach(Pixel pixel) const {
        for (int y = target->y0; y <= target->y1; ++y)
            for (int x = target->x0; x <= target->x1; ++x)
                if (isIn(x, y)) pixel(x, y);
    }
};

// Colour with its alpha taken out.
inline int WithoutAlpha(int colour, int alpha, bool deep) {
    if (!deep) {
        if (alpha == 255) return colour;
        return alpha == 0 ? 0 : std::min(255, colour * (65280 / alpha) / 256);
    }
    if (alpha == 0 || alpha == 16383) return colour;
    const float factor = static_cast<float>(16383.0 / alpha);
    return std::min(16383, static_cast<int>(colour * static_cast<double>(factor) + 0.5));
}

inline void BrushPaste(const Pasting& job) {
    const int full = job.full();
    const int op = Truncated(job.opacity * (job.deep() ? 16383.001 : 255.001), full);
    if (job.opacity <= 0) return;
    const auto scale = [&](int a, int b) { return job.scaled(a, b); };
    Generator random{1};
    job.forEach([&](int x, int y) {
        const int m = job.maskAt(x, y);
        const int p = job.clipped(x, y, op, full,
                                  [&](int c, int q) { return job.mode == 0 ? job.reducedByShift(c, q) : scale(c, q); });
        if (m == 0 || p == 0) return;
        const int sa = job.sourceAt(x, y, 3);
        const int da = job.target->At(x, y, 3);
        const int a = scale(p, m);
        Channels merged{};
        Channels bare{};
        for (std::size_t c = 0; c < 3; ++c) {
            merged[c] = job.sourceAt(x, y, static_cast<int>(c));
            bare[c] = WithoutAlpha(job.target->At(x, y, static_cast<int>(c)), da, job.deep());
        }
        merged[3] = m;
        bare[3] = da;
        const Channels blended = job.mode == 0 ? merged : BlendPixel(job.mode, merged, bare, job.deep(), random);
        const int wrap = job.deep() ? 65536 : 256;
        for (int c = 0; c < 4; ++c) {
            const bool isAlpha = c == 3;
            const int s = isAlpha ? 0 : job.sourceAt(x, y, c);
            const int b = isAlpha ? 0 : blended[static_cast<std::size_t>(c)];
            int& d = job.target->At(x, y, c);
            if (job.mode != 0) {
                const int arriving = scale(a, sa);
                const int t = scale(da, arriving);
                if (isAlpha)
                    d = da == full ? full : da + arriving - t;
                else if (da == full)
                    d = scale(b, arriving) + scale(d, full - arriving);
                else if (job.over)
                    d = scale(b, t) + scale(s, scale(full - da, arriving)) + scale(d, full - arriving);
                else
                    d = scale(t, b) + scale(full - arriving, d);
            } else if (!job.over) {
                const int arriving = scale(sa, a);
                d = scale(d, full - a) + (isAlpha ? arriving : scale(s, arriving));
            } else if (job.deep()) {
                const int arriving = scale(scale(sa, m), p);
                d = scale(d, full - arriving) + (isAlpha ? arriving : scale(s, arriving));
            } else {
                const int w = (m + m / 128) * (sa + sa / 128) / 256 * p;
                d = ((isAlpha ? 255 : s) * w + d * (65536 - w)) / 65536;
            }
            d %= wrap;
        }
    });
}

inline void Erase(const Pasting& job) {
    if (job.opacity <= 0) return;
    const int one = job.deep() ? 16384 : 256;
    const int op = Truncated(job.opacity * (one + 0.001), one);
    job.forEach([&](int x, int y) {
        const int p =
            job.clipped(x, y, op, job.deep() ? 16384 : 255, [&](int c, int q) { return job.reducedByShift(c, q); });
        const int m = job.maskAt(x, y);
        if (m == 0) return;
        const double taken = job.deep() ? m / 16383.0 * p * 6.103515625e-5 : m / 255.0 * p * 0.00390625;
        const float factor = static_cast<float>(1 - taken);
        for (int c = 0; c < 4; ++c) {
            int& d = job.target->At(x, y, c);
            d = static_cast<int>(static_cast<double>(factor) * d + 0.5);
        }
    });
}

// value below 0: the source's red channel.
inline void PasteToMask(const Pasting& job, int value) {
    if (job.opacity <= 0) return;
    const int op = job.deep() ? Truncated(job.opacity * 16384.01, 16384) : Truncated(job.opacity * 256.01, 256);
    job.forEach([&](int x, int y) {
        const int m = job.maskAt(x, y);
        if (m == 0) return;
        const int red = job.sourceAt(x, y, job.source->channels == 1 ? 0 : 2);
        const std::int64_t s = value < 0 ? red : value;
        const std::int64_t sa = Coverage(*job.source, x, y);
        const auto f =
            static_cast<std::int64_t>(job.deep() ? m * op * 0.00024415552616119385 : m * op * 1.003921627998352);
        const std::int64_t v = job.deep() ? (sa + sa / 8192) * f / 16384 : (sa + sa / 128) * f / 256;
        int& t = job.target->At(x, y, 0);
        t = static_cast<int>((v * s + (65536 - f) * t + 32768) / 65536);
    });
}

// The compositing of `Paster::Paste` at an opacity that is an integer already.
inline void CompositePixel(const Pasting& job, int x, int y, int op) {
    const std::int64_t one = job.deep() ? 16384 : 256;
    const std::int64_t half = one / 2;
    const int full = job.full();
    const std::int64_t p =
        job.clipped(x, y, op, full, [&](int c, int q) { return static_cast<int>(c * q / one + c * q / (one * half)); });
    const std::int64_t a = job.sourceAt(x, y, 3);
    if (p == 0 || a == 0) return;
    const std::int64_t widened = a + a / half;
    const bool fast = job.premultiplied && job.clip.picture == nullptr && op == one;
    for (int c = 0; c < 4; ++c) {
        const std::int64_t s = job.sourceAt(x, y, c);
        std::int64_t d = job.target->At(x, y, c);
        if (a == full && p == one) {
            d = s;
        } else if (fast) {
            d = d * (one - a / half - a) / one + s;
        } else if (job.premultiplied) {
            const std::int64_t k = (one * one - widened * p) / one;
            d = (s * p + d * k) / one;
        } else {
            const std::int64_t w = widened * p;
            d = ((c == 3 ? full : s) * w + d * (one * one - w)) / (one * one);
        }
        job.target->At(x, y, c) = static_cast<int>(d % (job.deep() ? 65536 : 256));
    }
}

inline void Composite(const Pasting& job, bool visible) {
    const int one = job.deep() ? 16384 : 256;
    if (!visible || job.opacity <= 0) return;
    job.forEach([&](int x, int y) { CompositePixel(job, x, y, Truncated(job.opacity * (one + 0.001), one)); });
}

inline void ReplaceBy(const Pasting& job, bool visible) {
    Picture& target = *job.target;
    const int one = job.deep() ? 16384 : 256;
    bool paints = false;
    if (visible && job.opacity > 0) job.forEach([&](int, int) { paints = true; });
    for (int y = target.y0; y <= target.y1; ++y)
        for (int x = target.x0; x <= target.x1; ++x) {
            if (!job.rect.Contains(x, y)) continue;
            if (!paints || !job.source->Has(x, y)) {
                for (int c = 0; c < 4; ++c) target.At(x, y, c) = 0;
            } else if (job.clip.picture == nullptr && job.opacity > 0.99609375) {
                for (int c = 0; c < 4; ++c) target.At(x, y, c) = job.sourceAt(x, y, c);
            } else if (job.isIn(x, y)) {
                CompositePixel(job, x, y, Truncated(job.opacity * (one + 0.01), one));
            }
        }
}

enum class Onto { Red, Mask, Value };

inline void LayOnto(const Pasting& job, Onto what, int value) {
    if (job.opacity <= 0) return;
    const std::int64_t one = job.deep() ? 16384 : 256;
    const std::int64_t half = one / 2;
    const std::int64_t op = Truncated(job.opacity * (static_cast<double>(one) + 0.001), static_cast<int>(one));
    job.forEach([&](int x, int y) {
        const std::int64_t a = Coverage(*job.source, x, y);
        const std::int64_t s = what == Onto::Red ? job.sourceAt(x, y, 2) : what == Onto::Mask ? a : value;
        std::int64_t d = job.target->At(x, y, 0);
        if (a == job.full() && op == one) {
            d = s;
        } else if (what == Onto::Mask) {
            d = ((one - (a / half + a) % one * op / one) * d + a * op) / one;
        } else {
            const std::int64_t w = (a / half + a) * op;
            d = ((one * one - w) * d + s * w) / (one * one);
        }
        job.target->At(x, y, 0) = static_cast<int>(std::min<std::int64_t>(d, job.full()));
    });
}

}  // namespace reference
