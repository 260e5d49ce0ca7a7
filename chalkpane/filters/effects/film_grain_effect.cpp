#include "chalkpane/filters/effects/film_grain_effect.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <new>

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

// Makes grain of the table around the middle of the scale, row by row of `grain`. Rows that were not drawn have none.
template <typename F>
struct FillJob {
    Image& grain;
    const std::vector<std::int16_t>& table;
    const std::vector<std::uint16_t>& starts;
    const std::vector<std::uint16_t>& steps;
    std::int32_t firstRow;
    std::vector<typename F::Channel> stored = std::vector<typename F::Channel>(tableSize);  // the table as channels

    void Scale(float scale) {
        std::transform(table.begin(), table.end(), stored.begin(), [scale](std::int16_t number) {
            const float value = static_cast<float>(number) * scale * GrainFormat<F>::scale;
            return LimitedChannel<F>(Truncated(std::floor(value + 0.5F)) + GrainFormat<F>::middle);
        });
    }

    void Row(std::int32_t y) const {
        const auto row = ImageRow<F>(grain, y);
        const std::int64_t index = std::int64_t{y} - firstRow;
        if (index < 0 || index >= static_cast<std::int64_t>(starts.size())) {
            std::fill(row.begin(), row.end(), static_cast<typename F::Channel>(GrainFormat<F>::middle));
            return;
        }
        const std::uint32_t step = steps[static_cast<std::size_t>(index)];
        std::uint32_t position = starts[static_cast<std::size_t>(index)] + static_cast<std::uint32_t>(grain.x0) * step;
        for (auto& channel : row) {
            channel = stored[position & 0xffffu];
            position += step;
        }
    }
};

// Takes the grain away from one channel of the result.
template <typename F>
struct MergeJob {
    const Image& grain;
    Image& result;
    std::size_t channel;
    bool amplified;
    std::int32_t gain;  // 256ths

    void Row(std::int32_t y) const {
        const auto row = ImageRow<F>(result, y);
        const auto* const numbers = ImageRow<F>(grain, y).data() + (std::int64_t{result.x0} - grain.x0);
        if (amplified)
            Merge(row, numbers, [this](std::int64_t difference) { return (difference * gain) >> 8; });
        else
            Merge(row, numbers, [](std::int32_t difference) { return difference; });
    }

    template <typename Amplify>
    void Merge(std::span<typename F::Channel> row, const typename F::Channel* numbers, Amplify amplify) const {
        for (std::size_t i = channel; i < row.size(); i += 4, ++numbers) {
            const auto value = row[i] + amplify(GrainFormat<F>::middle - *numbers);
            row[i] = static_cast<typename F::Channel>(std::clamp<decltype(value)>(value, 0, F::fullScale));
        }
    }
};

template <typename Job>
void RunRows(const Rect& area, Job& job) {
    const auto row = [](std::int32_t y, void* userData, std::int32_t /*worker*/) {
        static_cast<const Job*>(userData)->Row(y);
    };
    RunInBands(area.y0, area.y1, area.Width(), row, &job);
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
    Image grain = Image::Mask(Grown(source, SupportRadius()), source.GetDepth());
    if (!grain.Contains(source)) return;  // at the very end of the plane
    for (std::size_t channel = 0; channel < channelCount; ++channel) {
        const float level = Levels()[channel];
        const float size = Sizes()[channel];
        if (!(level >= smallestLevel)) continue;
        const Strength strength(level, size);
        FillJob<F> fill{grain, m_grainTable, m_rowStart[channel], m_rowStep[channel], m_firstRow};
        fill.Scale(strength.scale);
        RunRows(grain, fill);
        std::unique_ptr<Image> blurred;
        if (size > 1.0F) {
            SuperSoftener softener(size, softenerPasses);
            softener.Apply(grain, blurred, false, nullptr, false);
            if (!blurred) throw std::bad_alloc();
        }
        MergeJob<F> merge{blurred ? *blurred : grain, result, 2 - channel, strength.gain >= 1.001F,
                          Truncated(strength.gain * 256.0F)};
        RunRows(result, merge);
    }
}

void FilmGrainEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* /*region*/,
                            bool /*expand*/) {
    ApplyAsCopy(source, result);
    const bool grained = m_redLevel + m_greenLevel + m_blueLevel >= smallestLevel && !m_grainTable.empty();
    if (!result || source.ByteSize() == 0 || source.IsMask() || !grained) return;
    try {
        WithFormatOf(source, [&](auto format) { Grain<decltype(format)>(source, *result); });
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

}  // namespace chalkpane
