#include "chalkpane/image/halve_image.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "chalkpane/image/sampling.h"

namespace chalkpane {

namespace {

// The four kinds of image, as the loops below see them: `channels` values of one type a pixel.
struct Colour8 : PixelFormat8 {
    static constexpr std::size_t channels = 4;
    static constexpr double sampleRounding = 0.0;
    static std::array<Channel, 4> Sample(const Image& image, double x, double y, std::int32_t edgeMode) {
        const Pixel8 pixel = SampleBilinear8(image, x, y, edgeMode);
        return {pixel.blue, pixel.green, pixel.red, pixel.alpha};
    }
};
struct Colour14 : PixelFormat14 {
    static constexpr std::size_t channels = 4;
    static constexpr double sampleRounding = 0.5;  // DIFFERS: 8 bits truncate
    static std::array<Channel, 4> Sample(const Image& image, double x, double y, std::int32_t edgeMode) {
        const Pixel14 pixel = SampleBilinear14(image, x, y, edgeMode);
        return {pixel.blue, pixel.green, pixel.red, pixel.alpha};
    }
};
struct Mask8 : PixelFormat8 {
    static constexpr std::size_t channels = 1;
    static constexpr double sampleRounding = 0.0;
    static std::array<Channel, 1> Sample(const Image& image, double x, double y, std::int32_t edgeMode) {
        return {SampleMaskBilinear8(image, x, y, edgeMode)};
    }
};
struct Mask14 : PixelFormat14 {
    static constexpr std::size_t channels = 1;
    static constexpr double sampleRounding = 0.5;  // DIFFERS: 8 bits truncate
    static std::array<Channel, 1> Sample(const Image& image, double x, double y, std::int32_t edgeMode) {
        return {SampleMask14(image, x, y, edgeMode)};
    }
};

template <typename F>
typename F::Channel* PixelAt(const Image& image, std::int64_t x, std::int64_t y) {
    return reinterpret_cast<typename F::Channel*>(
        image.Address(static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)));
}

template <typename F>
void Store(const std::array<typename F::Channel, F::channels>& pixel, typename F::Channel* target) {
    std::copy(pixel.begin(), pixel.end(), target);
}

// The 1-2-1 filter in both directions around every second pixel. The three lines begin at the pixel on the left of the
// first one.
template <typename F>
void FilterLine(const typename F::Channel* above, const typename F::Channel* line, const typename F::Channel* below,
                typename F::Channel* target, std::size_t pixels) {
    constexpr std::size_t right = F::channels;
    constexpr std::size_t farRight = 2 * F::channels;
    for (std::size_t i = 0; i < pixels; ++i, above += farRight, line += farRight, below += farRight) {
        for (std::size_t c = 0; c < F::channels; ++c) {
            const std::int32_t corners = above[c] + above[c + farRight] + below[c] + below[c + farRight];
            const std::int32_t sides = line[c] + line[c + farRight] + above[c + right] + below[c + right];
            *target++ = static_cast<typename F::Channel>((4 * line[c + right] + 2 * sides + corners) >> 4);
        }
    }
}

// Column x of the plane is sampled when it is even; what has no neighbours on all sides is drawn from half a pixel
// further, with nothing beyond the edge.
template <typename F>
void ReduceLine(const Image& source, Image& reduced, std::int32_t reducedY) {
    const std::int64_t y = std::int64_t{reducedY} * 2;
    const bool linesAround = y > source.y0 && y < source.y1;
    std::int64_t reducedX = reduced.x0;
    const auto sampleUpTo = [&](std::int64_t end) {
        for (; reducedX < end; ++reducedX)
            Store<F>(F::Sample(source, static_cast<double>(reducedX * 2) + 0.5, static_cast<double>(y) + 0.5,
                               edgeTransparent),
                     PixelAt<F>(reduced, reducedX, reducedY));
    };
    const std::int64_t end = std::int64_t{reduced.x1} + 1;
    if (linesAround) {
        while (reducedX < end && reducedX * 2 <= source.x0) sampleUpTo(reducedX + 1);
        std::int64_t inside = 0;  // pixels with both neighbours
        if (reducedX * 2 < source.x1) inside = std::min((source.x1 - 1 - reducedX * 2) / 2 + 1, end - reducedX);
        if (inside > 0) {
            const std::int64_t left = reducedX * 2 - 1;
            FilterLine<F>(PixelAt<F>(source, left, y + 1), PixelAt<F>(source, left, y), PixelAt<F>(source, left, y - 1),
                          PixelAt<F>(reduced, reducedX, reducedY), static_cast<std::size_t>(inside));
            reducedX += inside;
        }
    }
    sampleUpTo(end);
}

template <typename F>
std::unique_ptr<Image> Reduce(const Image& source) {
    const std::int64_t left = source.x0 / 2;
    const std::int64_t bottom = source.y0 / 2;
    const Rect rect(static_cast<std::int32_t>(left), static_cast<std::int32_t>(bottom),
                    static_cast<std::int32_t>(left + (std::int64_t{source.Width()} + 1) / 2 - 1),
                    static_cast<std::int32_t>(bottom + (std::int64_t{source.Height()} + 1) / 2 - 1));
    auto reduced = std::make_unique<Image>(rect, source);
    for (std::int64_t y = reduced->y0; y <= reduced->y1; ++y)
        ReduceLine<F>(source, *reduced, static_cast<std::int32_t>(y));
    return reduced;
}

// How far the result goes from the source's pixel to the reduced picture.
struct Mix {
    double fraction;      // 0 .. 1
    std::int32_t weight;  // the same in 1 / 256, truncated

    explicit Mix(double blend)
        : fraction(blend <= 1.0 ? std::min(1.0 - blend, 1.0) : 0.0),
          weight(static_cast<std::int32_t>(fraction * 256)) {}
};

// `sum` of `count` pixels of the reduced picture (1, 2 or 4) against the source's pixel.
template <int count>
std::uint8_t Blend(std::int32_t sum, std::uint8_t own, const Mix& mix) {
    constexpr int shift = count == 1 ? 8 : count == 2 ? 9 : 10;
    return static_cast<std::uint8_t>(((sum - count * own) * mix.weight + own * 256 * count) >> shift);
}

// DIFFERS: 14 bits keep the fraction whole and round.
// KEEP: where four pixels meet, the limit is one above full scale.
template <int count>
std::uint16_t Blend(std::int32_t sum, std::uint16_t own, const Mix& mix) {
    constexpr std::int32_t limit = count == 4 ? 0x4000 : 0x3fff;
    const double mixed = ((sum - count * own) * mix.fraction + count * own) / count + 0.5;
    return static_cast<std::uint16_t>(std::clamp(static_cast<std::int32_t>(mixed), 0, limit));
}

template <typename F>
class Blender {
public:
    Blender(const Image& source, const Image& reduced, double blend)
        : m_source(source), m_reduced(reduced), m_mix(blend) {}

    std::unique_ptr<Image> Run() const {
        auto result = std::make_unique<Image>(m_source.Bounds(), m_source);
        for (std::int64_t y = m_source.y0; y <= m_source.y1; ++y) {
            const bool odd = (y & 1) != 0;
            const std::int64_t block = y >> 1;
            if (y == m_source.y1 || block < m_reduced.y0 || block + (odd ? 1 : 0) > m_reduced.y1)
                SampleSpan(*result, y, m_source.x0, m_source.x1);
            else if (odd)
                BlendLine<2>(*result, y, block);
            else
                BlendLine<1>(*result, y, block);
        }
        return result;
    }

private:
    using Channel = typename F::Channel;

    // A line that lies on `lines` (1 or 2) lines of the reduced picture. Columns without a full block are sampled.
    template <int lines>
    void BlendLine(Image& result, std::int64_t y, std::int64_t block) const {
        const std::int64_t first = std::max<std::int64_t>(m_source.x0, std::int64_t{m_reduced.x0} * 2);
        const std::int64_t last = std::min<std::int64_t>(std::int64_t{m_source.x1} - 1, std::int64_t{m_reduced.x1} * 2);
        SampleSpan(result, y, m_source.x0, std::min<std::int64_t>(first - 1, m_source.x1));
        const Channel* own = PixelAt<F>(m_source, m_source.x0, y) + (first - m_source.x0) * channelStep;
        Channel* target = PixelAt<F>(result, m_source.x0, y) + (first - m_source.x0) * channelStep;
        const Channel* near = PixelAt<F>(m_reduced, m_reduced.x0, block);
        const Channel* next = PixelAt<F>(m_reduced, m_reduced.x0, block + lines - 1);
        for (std::int64_t x = first; x <= last; ++x, own += channelStep, target += channelStep) {
            const std::int64_t here = ((x >> 1) - m_reduced.x0) * channelStep;
            for (std::int64_t c = here; c < here + channelStep; ++c) {
                const auto column = [&](std::int64_t i) { return lines == 1 ? near[i] : near[i] + next[i]; };
                if ((x & 1) == 0)
                    target[c - here] = Blend<lines>(column(c), own[c - here], m_mix);
                else
                    target[c - here] = Blend<2 * lines>(column(c) + column(c + channelStep), own[c - here], m_mix);
            }
        }
        SampleSpan(result, y, std::max<std::int64_t>(last + 1, first), m_source.x1);
    }

    // Reads the reduced picture at real positions; at its edge the last pixel goes on, so that flat stays flat.
    void SampleSpan(Image& result, std::int64_t y, std::int64_t first, std::int64_t last) const {
        for (std::int64_t x = first; x <= last; ++x) {
            const auto sample = F::Sample(m_reduced, static_cast<double>(x) / 2, static_cast<double>(y) / 2, edgeClamp);
            const Channel* own = PixelAt<F>(m_source, x, y);
            Channel* target = PixelAt<F>(result, x, y);
            for (std::size_t c = 0; c < F::channels; ++c)
                target[c] = static_cast<Channel>(own[c] + (sample[c] - own[c]) * m_mix.fraction + F::sampleRounding);
        }
    }

    static constexpr std::int64_t channelStep = F::channels;
    const Image& m_source;
    const Image& m_reduced;
    Mix m_mix;
};

template <typename F>
std::unique_ptr<Image> HalveAs(const Image& source, double blend) {
    if (blend == 0.0) return Reduce<F>(source);
    const auto reduced = Reduce<F>(source);
    return Blender<F>(source, *reduced, blend).Run();
}

}  // namespace

std::unique_ptr<Image> HalveImage(const Image& source, double blend) {
    if (source.Width() < 2 || source.Height() < 2) return nullptr;
    const auto halve = source.IsMask() ? (source.GetDepth() == Depth::Eight ? &HalveAs<Mask8> : &HalveAs<Mask14>)
                                       : (source.GetDepth() == Depth::Eight ? &HalveAs<Colour8> : &HalveAs<Colour14>);
    return halve(source, blend);
}

}  // namespace chalkpane
