#include "chalkpane/image/sampling.h"

#include <array>
#include <limits>

namespace chalkpane {

namespace {

// A position along one axis: the pixel below it and the way towards the next. Rounding down by hand spares a call per
// axis where the processor has no instruction for it.
struct AxisPosition {
    std::int32_t whole;
    double fraction = 0.0;

    explicit AxisPosition(double position) {
        constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
        constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max() - 1;  // the next one has a number too
        if (position >= lowest && position < highest) {
            const auto truncated = static_cast<std::int32_t>(position);
            whole = truncated - (position < truncated ? 1 : 0);
            fraction = position - whole;
        } else {
            whole = position >= highest ? highest : lowest;
        }
    }
};

template <typename T>
struct PixelTraits;
template <>
struct PixelTraits<Pixel8> {
    using Channel = std::uint8_t;
    static Pixel8 Read(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
        return image.GetPixelEdge8(x, y, edgeMode);
    }
};
template <>
struct PixelTraits<Pixel14> {
    using Channel = std::uint16_t;
    static Pixel14 Read(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
        return image.GetPixelEdge14(x, y, edgeMode);
    }
};

// The four pixels around a position: at it, to the right, above, and above to the right.
template <typename Pixel>
std::array<Pixel, 4> Neighbours(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
    if (x >= image.x0 && x < image.x1 && y >= image.y0 && y < image.y1) {
        const auto* line = reinterpret_cast<const Pixel*>(image.Address(x, y));
        const auto* above = reinterpret_cast<const Pixel*>(image.Address(x, y + 1));
        return {line[0], line[1], above[0], above[1]};
    }
    const auto read = PixelTraits<Pixel>::Read;
    return {read(image, x, y, edgeMode), read(image, x + 1, y, edgeMode), read(image, x, y + 1, edgeMode),
            read(image, x + 1, y + 1, edgeMode)};
}

// 16.16 fixed point of a share, truncated.
std::uint32_t Weight(double share) { return static_cast<std::uint32_t>(static_cast<std::int32_t>(share * 65536)); }

template <typename Pixel>
Pixel SampleBilinear(const Image& image, double x, double y, std::int32_t edgeMode) {
    using Channel = typename PixelTraits<Pixel>::Channel;
    const AxisPosition column(x);
    const AxisPosition line(y);
    const double fx = column.fraction;
    const double fy = line.fraction;
    if (fx + fy < 1e-5) return PixelTraits<Pixel>::Read(image, column.whole, line.whole, edgeMode);

    // Each weight is truncated by itself, so together they may fall short of 65536 by up to 3.
    const std::array weights{Weight((1 - fx) * (1 - fy)), Weight(fx * (1 - fy)), Weight((1 - fx) * fy),
                             Weight(fx * fy)};
    const auto pixels = Neighbours<Pixel>(image, column.whole, line.whole, edgeMode);
    const auto mix = [&](Channel Pixel::*channel) {
        std::uint32_t sum = 0x8000;
        for (std::size_t i = 0; i < weights.size(); ++i) sum += weights[i] * (pixels[i].*channel);
        return static_cast<Channel>(sum >> 16);
    };
    return {mix(&Pixel::blue), mix(&Pixel::green), mix(&Pixel::red), mix(&Pixel::alpha)};
}

}  // namespace

Pixel8 SampleBilinear8(const Image& image, double x, double y, std::int32_t edgeMode) {
    return SampleBilinear<Pixel8>(image, x, y, edgeMode);
}

Pixel14 SampleBilinear14(const Image& image, double x, double y, std::int32_t edgeMode) {
    return SampleBilinear<Pixel14>(image, x, y, edgeMode);
}

std::uint8_t SampleMaskBilinear8(const Image& image, double x, double y, std::int32_t edgeMode) {
    const AxisPosition column(x);
    const AxisPosition line(y);
    const double fx = column.fraction;
    const double fy = line.fraction;
    const auto read = [&](std::int32_t right, std::int32_t above) {
        return image.GetMaskEdge8(column.whole + right, line.whole + above, edgeMode);
    };
    return static_cast<std::uint8_t>((1 - fx) * (1 - fy) * read(0, 0) + fx * (1 - fy) * read(1, 0) +
                                     (1 - fx) * fy * read(0, 1) + fx * fy * read(1, 1) + 0.5);
}

// KEEP: no interpolation, a shortcut on purpose; what is drawn through such a mask depends on its hard steps.
std::uint16_t SampleMask14(const Image& image, double x, double y, std::int32_t edgeMode) {
    return image.GetMaskEdge14(AxisPosition(x).whole, AxisPosition(y).whole, edgeMode);
}

}  // namespace chalkpane
