#include "chalkpane/filters/effects/emboss_effect.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "chalkpane/base/call_widest.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/effects/colour_area.h"
#include "chalkpane/filters/effects/emboss_row.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

EmbossLight LightOf(float direction, float elevation, float bumpHeight, std::int32_t fullScale) {
    const float length = static_cast<float>(fullScale) + 0.9F;
    return {Truncated(std::cos(Radians(direction)) * std::cos(Radians(elevation)) * length),
            Truncated(std::sin(Radians(direction)) * std::cos(Radians(elevation)) * length),
            Truncated(std::sin(Radians(elevation)) * length),
            Truncated(static_cast<float>(6 * fullScale) / (3.0F * bumpHeight)), bumpHeight == 0.0F};
}

// The shade of a slope. KEEP: root and quotient in 32-bit floats. The rest in 64 bits: a flat bump makes normals long.
std::int32_t ShadeOf(std::int64_t nx, std::int64_t ny, const EmbossLight& light) {
    if (nx == 0 && ny == 0) return static_cast<std::int32_t>(light.z);
    const std::int64_t lit = nx * light.x + ny * light.y + light.normalZ * light.z;
    if (lit < 0) return 0;
    const float length = std::sqrt(static_cast<float>(nx * nx + ny * ny + light.normalZ * light.normalZ));
    return static_cast<std::int32_t>(static_cast<float>(lit) / length);
}

template <typename F>
struct EmbossJob {
    using Channel = typename F::Channel;

    const Image& source;
    Image& result;
    EmbossLight light;
    EmbossTint tint;
    std::vector<EmbossHeights> workers =
        std::vector<EmbossHeights>(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)),
                                   {std::vector<std::int32_t>(static_cast<std::size_t>(result.Width()) + 2),
                                    std::vector<std::int32_t>(static_cast<std::size_t>(result.Width()) + 2)});

    static std::int32_t Brightness(const Channel* pixel) { return pixel[0] + pixel[1] + pixel[2]; }

    // Row y is not on the rim.
    [[gnu::always_inline]] inline void MeasureRow(std::int32_t y, EmbossHeights& heights) const {
        const std::int32_t first = std::max(result.x0, source.x0 + 1) - 1;
        const std::int32_t last = std::min(result.x1, source.x1 - 1) + 1;
        const auto offset = static_cast<std::size_t>(std::int64_t{first} - source.x0) * 4;
        const Channel* const below = ImageRow<F>(source, y - 1).data() + offset;
        const Channel* const here = ImageRow<F>(source, y).data() + offset;
        const Channel* const above = ImageRow<F>(source, y + 1).data() + offset;
        std::int32_t* const __restrict sum = heights.sum.data() + (std::int64_t{first} - result.x0 + 1);
        std::int32_t* const __restrict fall = heights.fall.data() + (std::int64_t{first} - result.x0 + 1);
        const std::int64_t count = std::int64_t{last} - first + 1;
        for (std::int64_t i = 0; i < count; ++i) {
            const std::int32_t low = Brightness(below + 4 * i);
            const std::int32_t high = Brightness(above + 4 * i);
            sum[i] = low + Brightness(here + 4 * i) + high;
            fall[i] = low - high;
        }
    }

    void Paint(const Channel* from, std::int32_t shade, Channel* to) const {
        const std::int32_t alpha = from[3];
        to[3] = from[3];
        if (alpha == 0) {
            to[0] = to[1] = to[2] = 0;
            return;
        }
        if (source.IsPremultiplied() && alpha < F::fullScale) shade = shade * alpha / F::fullScale;
        const float bright = static_cast<float>(shade) / static_cast<float>(F::fullScale);
        const float limited = std::clamp(bright, 0.0F, 1.0F);
        for (std::size_t c = 0; c < 3; ++c)
            to[c] = LimitedChannel<F>((static_cast<float>(from[c]) * tint.mix + tint.colour[c]) * limited);
    }

    // Columns first .. last in the light of their slopes.
    void PaintBumps(std::int32_t y, std::int64_t first, std::int64_t last, EmbossHeights& heights) const {
        CallWidest([&] { MeasureRow(y, heights); });
        const auto column = static_cast<std::size_t>(first - result.x0);
        const auto pixels = static_cast<std::size_t>(last - first + 1);
        const EmbossStretch<Channel> stretch{
            PixelsFrom(y) + 4 * column,      ImageRow<F>(result, y).data() + 4 * column, pixels,
            heights.sum.data() + column + 1, heights.fall.data() + column + 1,           source.flag != 0};
        std::size_t done = 0;
        if constexpr (builtWithAvx2)
            if (HasAvx2() && std::abs(light.normalZ) <= longestExactNormal) done = EmbossAvx2(stretch, light, tint);
        for (; done < pixels; ++done) {
            const std::int32_t* const sum = stretch.sum + done;
            const std::int32_t* const fall = stretch.fall + done;
            const auto nx = static_cast<std::int32_t>(0.33333F * static_cast<float>(sum[-1] - sum[1]));
            const auto ny = static_cast<std::int32_t>(0.33333F * static_cast<float>(fall[-1] + fall[0] + fall[1]));
            Paint(stretch.from + 4 * done, ShadeOf(nx, ny, light), stretch.to + 4 * done);
        }
    }

    // Columns from `first` until `end` as a plane.
    void PaintFlat(std::int32_t y, std::int64_t first, std::int64_t end) const {
        const Channel* const from = PixelsFrom(y);
        Channel* const to = ImageRow<F>(result, y).data();
        for (std::int64_t column = first - result.x0; column < end - result.x0; ++column)
            Paint(from + 4 * column, static_cast<std::int32_t>(light.z), to + 4 * column);
    }

    // The source from the result's first column on.
    [[nodiscard]] const Channel* PixelsFrom(std::int32_t y) const {
        return ImageRow<F>(source, y).data() + (std::int64_t{result.x0} - source.x0) * 4;
    }

    void Row(std::int32_t y, std::int32_t worker) {
        const bool bumpy = !light.flat && y > source.y0 && y < source.y1;
        const std::int64_t end = std::int64_t{result.x1} + 1;
        const std::int64_t first = std::max<std::int64_t>(result.x0, std::int64_t{source.x0} + 1);
        const std::int64_t last = std::min<std::int64_t>(result.x1, std::int64_t{source.x1} - 1);
        if (!bumpy || first > last) return PaintFlat(y, result.x0, end);
        PaintFlat(y, result.x0, first);
        PaintBumps(y, first, last, workers[static_cast<std::size_t>(worker)]);
        PaintFlat(y, last + 1, end);
    }
};

// DIFFERS: an 8-bit picture takes the colour's upper 8 of 14 bits.
template <typename F>
float ChannelOfColour(std::uint16_t component) {
    return static_cast<float>(component >> (14 - F::bits));
}

}  // namespace

void EmbossEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                         bool /*expand*/) {
    ApplyInColourArea(source, result, region, [&](const Rect& work) {
        return WithFormatOf(source, [&](auto format) {
            using F = decltype(format);
            auto made = Image::Unwritten(work, source);
            const float share = 1.0F - m_mix;
            const EmbossTint tint{
                {ChannelOfColour<F>(m_colour.blue) * share, ChannelOfColour<F>(m_colour.green) * share,
                 ChannelOfColour<F>(m_colour.red) * share},
                m_mix};
            EmbossJob<F> job{source, *made, LightOf(m_direction, m_elevation, m_bumpHeight, F::fullScale), tint};
            const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
                static_cast<EmbossJob<F>*>(userData)->Row(y, worker);
            };
            RunInBands(work.y0, work.y1, work.Width(), row, &job);
            return made;
        });
    });
}

}  // namespace chalkpane
