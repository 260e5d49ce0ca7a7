#include "chalkpane/filters/effects/film_grain_effect.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <new>
#include <optional>
#include <type_traits>

#include "chalkpane/base/call_widest.h"
#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/blurs/super_softener.h"
#include "chalkpane/filters/noise/grain_random.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/filters/work_area.h"
#include "chalkpane/image/image_rows.h"
#include "chalkpane/parameters/data_set.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t seedCode = 6;
constexpr float smallestLevel = 0.001F;
constexpr float largestSize = 1000.0F;  // far beyond what a control offers
constexpr std::size_t tableSize = 65536;
constexpr std::uint8_t softenerPasses = 3;  // those of a fresh softener

template <typename F>
struct GrainFormat;
template <>
struct GrainFormat<PixelFormat8> {
    static constexpr float scale = 1.0F;
    static constexpr std::int32_t middle = 128;
};
template <>
struct GrainFormat<PixelFormat14> {
    static constexpr float scale = 64.0F;
    static constexpr std::int32_t middle = 8192;
};

// The strength of one channel: what the table is scaled by, and what the grain still lacks then.
struct Strength {
    float scale;
    float gain;

    Strength(float level, float size) {
        const float amplitude = std::sqrt(size) * level;
        const float stored = amplitude < 1.0F ? amplitude : 1.0F;
        scale = stored * 127.0F / 32768.0F;
        gain = amplitude / stored;
    }
};

// The grain of one channel: every so-manieth number of the table, row by row.
template <typename F>
class ChannelGrain {
public:
    using Channel = typename F::Channel;

    // The numbers of a row from some pixel on.
    struct Numbers {
        const Channel* stored;
        std::uint32_t position;
        std::uint32_t step;

        Channel Next() {
            const Channel number = stored[position & 0xffffu];
            position += step;
            return number;
        }
    };
    static constexpr std::size_t piecesOfTable = 16;

    //   channel          of a pixel: 0 blue, 1 green, 2 red
    //   starts, steps    of the rows from firstRow on
    ChannelGrain(std::size_t channel, float level, float size, std::int32_t firstRow,
                 const std::vector<std::uint16_t>& starts, const std::vector<std::uint16_t>& steps)
        : m_channel(channel),
          m_size(size),
          m_strength(level, size),
          m_firstRow(firstRow),
          m_starts(starts),
          m_steps(steps) {}

    [[nodiscard]] bool IsBlurred() const { return m_size > 1.0F; }
    [[nodiscard]] float Size() const { return m_size; }

    // Makes channels of a piece of the table, around the middle of the scale: at most 127 steps of 8 bits away from it.
    void Scale(std::span<const std::int16_t> table, std::size_t piece) {
        constexpr std::size_t length = tableSize / piecesOfTable;
        const std::int16_t* const from = table.data() + piece * length;
        Channel* const to = m_stored.data() + piece * length;
        CallWidest([from, to, scale = m_strength.scale] {
            for (std::size_t i = 0; i < length; ++i) {
                const float rounded = static_cast<float>(from[i]) * scale * GrainFormat<F>::scale + 0.5F;
                const auto towardsZero = static_cast<std::int32_t>(rounded);
                const std::int32_t below = static_cast<float>(towardsZero) > rounded ? towardsZero - 1 : towardsZero;
                to[i] = LimitedChannel<F>(below + GrainFormat<F>::middle);
            }
        });
    }

    // None where the row was not drawn.
    [[nodiscard]] std::optional<Numbers> NumbersOf(std::int32_t y, std::int32_t x) const {
        const std::int64_t index = std::int64_t{y} - m_firstRow;
        if (index < 0 || index >= static_cast<std::int64_t>(m_starts.size())) return std::nullopt;
        const std::uint32_t step = m_steps[static_cast<std::size_t>(index)];
        return Numbers{m_stored.data(),
                       m_starts[static_cast<std::size_t>(index)] + static_cast<std::uint32_t>(x) * step, step};
    }

    // Takes the numbers that `next` gives away from a row of pixels.
    template <typename Next>
    void TakeFrom(std::span<Channel> pixels, Next next) const {
        if (!(m_strength.gain >= 1.001F))
            return TakeFrom(pixels, next, [](std::int32_t difference) { return difference; });
        const std::int32_t gain = Truncated(m_strength.gain * 256.0F);  // 256ths
        TakeFrom(pixels, next, [gain](std::int64_t difference) { return (difference * gain) >> 8; });
    }

private:
    template <typename Next, typename Amplify>
    void TakeFrom(std::span<Channel> pixels, Next next, Amplify amplify) const {
        for (std::size_t i = m_channel; i < pixels.size(); i += 4) {
            const auto value = pixels[i] + amplify(GrainFormat<F>::middle - next());
            pixels[i] = static_cast<Channel>(std::clamp<std::remove_const_t<decltype(value)>>(value, 0, F::fullScale));
        }
    }

    std::size_t m_channel;
    float m_size;
    Strength m_strength;
    std::int32_t m_firstRow;
    const std::vector<std::uint16_t>& m_starts;
    const std::vector<std::uint16_t>& m_steps;
    std::vector<Channel> m_stored = std::vector<Channel>(tableSize);  // the table as channels
};

// Scales the tables.
template <typename F>
struct ScaleJob {
    std::span<const std::int16_t> table;
    std::vector<ChannelGrain<F>>& channels;

    void Row(std::int32_t piece) const {
        const auto index = static_cast<std::size_t>(piece);
        channels[index / ChannelGrain<F>::piecesOfTable].Scale(table, index % ChannelGrain<F>::piecesOfTable);
    }
};

// Copies the picture, without the grain of the channels that are not blurred.
template <typename F>
struct CopyJob {
    const Image& source;
    Image& result;
    const std::vector<ChannelGrain<F>>& channels;

    void Row(std::int32_t y) const {
        const auto row = ImageRow<F>(result, y);
        std::ranges::copy(ImageRow<F>(source, y), row.begin());
        for (const ChannelGrain<F>& channel : channels) {
            if (channel.IsBlurred()) continue;
            if (const auto numbers = channel.NumbersOf(y, result.x0))
                channel.TakeFrom(row, [next = *numbers]() mutable { return next.Next(); });
        }
    }
};

// The grain of one channel by itself, to be blurred. Rows that were not drawn have none.
template <typename F>
struct FillJob {
    Image& grain;
    const ChannelGrain<F>& channel;

    void Row(std::int32_t y) const {
        const auto row = ImageRow<F>(grain, y);
        auto numbers = channel.NumbersOf(y, grain.x0);
        if (!numbers)
            std::ranges::fill(row, static_cast<typename F::Channel>(GrainFormat<F>::middle));
        else
            std::ranges::generate(row, [next = *numbers]() mutable { return next.Next(); });
    }
};

// Takes blurred grain away from its channel of the result.
template <typename F>
struct MergeJob {
    const Image& grain;
    Image& result;
    const ChannelGrain<F>& channel;

    void Row(std::int32_t y) const {
        const auto* const numbers = ImageRow<F>(grain, y).data() + (std::int64_t{result.x0} - grain.x0);
        channel.TakeFrom(ImageRow<F>(result, y), [next = numbers]() mutable { return *next++; });
    }
};

template <typename Job>
void RunGrainRows(std::int32_t firstRow, std::int32_t lastRow, std::int32_t pixelsPerRow, Job& job) {
    const auto row = [](std::int32_t y, void* userData, std::int32_t /*worker*/) {
        static_cast<const Job*>(userData)->Row(y);
    };
    RunInBands(firstRow, lastRow, pixelsPerRow, row, &job);
}
template <typename Job>
void RunGrainRows(const Rect& area, Job job) {
    RunGrainRows(area.y0, area.y1, area.Width(), job);
}

template <typename F>
void ScaleTables(std::span<const std::int16_t> table, std::vector<ChannelGrain<F>>& channels) {
    ScaleJob<F> job{table, channels};
    const std::size_t pieces = channels.size() * ChannelGrain<F>::piecesOfTable;
    RunGrainRows(0, static_cast<std::int32_t>(pieces) - 1, tableSize / ChannelGrain<F>::piecesOfTable, job);
}

template <typename F>
void TakeBlurred(const ChannelGrain<F>& channel, Image& grain, Image& result) {
    RunGrainRows(grain, FillJob<F>{grain, channel});
    SuperSoftener softener(channel.Size(), softenerPasses);
    std::unique_ptr<Image> blurred;
    softener.Apply(grain, blurred, false, nullptr, false);
    if (!blurred) throw std::bad_alloc();
    RunGrainRows(result, MergeJob<F>{*blurred, result, channel});
}

}  // namespace

FilmGrainEffect::FilmGrainEffect(const FilmGrainEffect& other)
    : FilterClass(other),
      m_redLevel(other.m_redLevel),
      m_redSize(other.m_redSize),
      m_greenLevel(other.m_greenLevel),
      m_greenSize(other.m_greenSize),
      m_blueLevel(other.m_blueLevel),
      m_blueSize(other.m_blueSize),
      m_randomSeed(other.m_randomSeed) {}

std::int32_t FilmGrainEffect::SupportRadius() const {
    const float largest = std::max({m_redSize, m_greenSize, m_blueSize});
    return Truncated(std::clamp(largest, 0.0F, largestSize));
}

void FilmGrainEffect::Advance(const Image* image, std::int32_t frame, std::int32_t /*c*/, std::int32_t /*d*/,
                              std::int32_t /*e*/, std::int32_t /*f*/) {
    if (image == nullptr) return;
    GrainRandom random(static_cast<std::uint32_t>(frame) * 65537u + static_cast<std::uint32_t>(m_randomSeed));
    m_grainTable.resize(tableSize);
    for (auto& number : m_grainTable) number = static_cast<std::int16_t>(random.Next() & 0xffffu);
    const Rect rows = Grown(*image, SupportRadius());
    m_firstRow = rows.y0;
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        m_rowStart[channel].clear();
        m_rowStep[channel].clear();
        for (std::int64_t y = rows.y0; y <= rows.y1; ++y) {
            m_rowStart[channel].push_back(static_cast<std::uint16_t>(random.Next() & 0xffffu));
            // Always odd, so that a row meets all numbers of the table before it repeats.
            m_rowStep[channel].push_back(static_cast<std::uint16_t>((random.Next() & 0x7ff0u) + 0x2005u));
        }
    }
}

DataSet* FilmGrainEffect::MakeValues(bool animated, const AnimationClock* clock, const LayerProvider* layers) {
    DataSet* const values = FilterClass::MakeValues(animated, clock, layers);
    GrainRandom random(static_cast<std::uint32_t>(std::time(nullptr)));
    std::uint32_t draw = random.Next();
    while (draw > 1000000000u) draw = random.Next();
    m_randomSeed = static_cast<std::int32_t>(draw % 10000u);
    for (const auto& value : *values)
        if (value->getParameter()->code == seedCode) value->setInteger(m_randomSeed);
    return values;
}

template <typename F>
void FilmGrainEffect::Grain(const Image& source, Image& result) const {
    std::vector<ChannelGrain<F>> channels;
    channels.reserve(channelCount);
    const Rect area = Grown(source, SupportRadius());
    for (std::size_t i = 0; i < channelCount; ++i)
        if (Levels()[i] >= smallestLevel && area.Contains(source))  // not at the very end of the plane
            channels.emplace_back(2 - i, Levels()[i], Sizes()[i], m_firstRow, m_rowStart[i], m_rowStep[i]);
    ScaleTables<F>(m_grainTable, channels);
    RunGrainRows(source, CopyJob<F>{source, result, channels});
    if (std::ranges::none_of(channels, &ChannelGrain<F>::IsBlurred)) return;
    Image grain = Image::Mask(area, source.GetDepth());
    if (!grain.Contains(source)) return;
    for (const ChannelGrain<F>& channel : channels)
        if (channel.IsBlurred()) TakeBlurred(channel, grain, result);
}

void FilmGrainEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* /*region*/,
                            bool /*expand*/) {
    const bool grained = m_redLevel + m_greenLevel + m_blueLevel >= smallestLevel && !m_grainTable.empty();
    if (source.ByteSize() == 0 || source.IsMask() || !grained) return ApplyAsCopy(source, result);
    result.reset();
    try {
        auto made = Image::Unwritten(source, source);
        WithFormatOf(source, [&](auto format) { Grain<decltype(format)>(source, *made); });
        result = std::move(made);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
    }
}

}  // namespace chalkpane
