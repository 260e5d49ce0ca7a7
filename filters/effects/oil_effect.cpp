#include "filters/effects/oil_effect.h"

#include <algorithm>
#include <array>
#include <vector>

#include "filters/effects/colour_area.h"
#include "filters/image_rows.h"
#include "filters/multi_processor.h"

namespace chalkpane {
namespace {

// Beyond what a control offers: windows fit the 16-bit counts, and every tone has one of 256 bins.
constexpr std::int32_t largestRadius = 64;
constexpr std::int32_t mostLevels = 256;

// How many pixels of a window fall into each of 256 tones, and the sums of what they hold.
template <std::size_t sums>
class ToneHistogram {
public:
    using Sums = std::array<std::uint32_t, sums>;

    void Clear() { *this = {}; }
    void Add(std::uint8_t bin, const Sums& values) {
        ++m_counts[bin];
        ++m_coarse[bin >> 4];
        for (std::size_t i = 0; i < sums; ++i) m_sums[bin][i] += values[i];
    }
    void Remove(std::uint8_t bin, const Sums& values) {
        --m_counts[bin];
        --m_coarse[bin >> 4];
        for (std::size_t i = 0; i < sums; ++i) m_sums[bin][i] -= values[i];
    }
    // The lowest of the fullest bins. Sixteen bins together that hold no more than the best one are passed over.
    [[nodiscard]] std::size_t Fullest() const {
        std::int16_t best = 0;
        std::size_t group = 0;
        for (std::size_t i = 0; i < m_coarse.size(); ++i) {
            if (m_coarse[i] <= best) continue;
            const std::int16_t most = LargestOf16(&m_counts[16 * i]);
            if (most <= best) continue;
            best = most;
            group = i;
        }
        std::size_t bin = 16 * group;
        while (m_counts[bin] != best) ++bin;
        return bin;
    }
    [[nodiscard]] std::uint8_t Mean(std::size_t bin, std::size_t i) const {
        return static_cast<std::uint8_t>(m_sums[bin][i] / static_cast<std::uint32_t>(m_counts[bin]));
    }

private:
    static std::int16_t LargestOf16(const std::int16_t* counts) {
        std::array<std::int16_t, 8> most;
        for (std::size_t i = 0; i < 8; ++i) most[i] = std::max(counts[i], counts[i + 8]);
        for (std::size_t half = 4; half >= 1; half /= 2)
            for (std::size_t i = 0; i < half; ++i) most[i] = std::max(most[i], most[i + half]);
        return most[0];
    }

    std::array<std::int16_t, 256> m_counts{};
    std::array<std::int16_t, 16> m_coarse{};
    std::array<Sums, 256> m_sums{};
};

// Tones by brightness: one histogram, whose bin stands in the alpha of the picture that the window reads.
struct ByIntensity {
    static void Prepare(std::span<std::uint8_t> row, std::int32_t levels) {
        for (std::size_t i = 0; i + 3 < row.size(); i += 4)
            row[i + 3] =
                static_cast<std::uint8_t>(((77 * row[i + 2] + 151 * row[i + 1] + 28 * row[i] + 128) * levels) >> 16);
    }
    explicit ByIntensity(std::int32_t /*levels*/) {}
    void Clear() { m_histogram.Clear(); }
    void Add(const std::uint8_t* pixel) { m_histogram.Add(pixel[3], {pixel[0], pixel[1], pixel[2], pixel[3]}); }
    void Remove(const std::uint8_t* pixel) { m_histogram.Remove(pixel[3], {pixel[0], pixel[1], pixel[2], pixel[3]}); }
    void Paint(std::uint8_t* pixel) const {
        const std::size_t bin = m_histogram.Fullest();
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = m_histogram.Mean(bin, c);
    }

private:
    ToneHistogram<4> m_histogram;  // the fourth sum is not used: four at once are one step
};

// Each channel has tones of its own.
struct ByChannel {
    static void Prepare(std::span<std::uint8_t> /*row*/, std::int32_t /*levels*/) {}
    explicit ByChannel(std::int32_t levels) {
        for (std::int32_t value = 0; value < 256; ++value)
            m_bins[static_cast<std::size_t>(value)] = static_cast<std::uint8_t>((value * levels) >> 8);
    }
    void Clear() {
        for (auto& histogram : m_histograms) histogram.Clear();
    }
    void Add(const std::uint8_t* pixel) {
        for (std::size_t c = 0; c < 3; ++c) m_histograms[c].Add(m_bins[pixel[c]], {pixel[c]});
    }
    void Remove(const std::uint8_t* pixel) {
        for (std::size_t c = 0; c < 3; ++c) m_histograms[c].Remove(m_bins[pixel[c]], {pixel[c]});
    }
    void Paint(std::uint8_t* pixel) const {
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = m_histograms[c].Mean(m_histograms[c].Fullest(), 0);
    }

private:
    std::array<std::uint8_t, 256> m_bins;
    std::array<ToneHistogram<1>, 3> m_histograms;
};

template <typename Tones>
struct OilJob {
    const Image& source;  // as it stands, for alpha
    Image read;           // colour without alpha, prepared for `Tones`
    Image& result;
    std::int32_t radius;
    std::vector<Tones> workers;

    OilJob(const Image& from, Image& to, std::int32_t pixels, std::int32_t levels)
        : source(from),
          read(*from.Clone()),
          result(to),
          radius(pixels),
          workers(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1)), Tones(levels)) {
        if (source.flag != 0) read.Unpremultiply(read);
        for (std::int64_t y = read.y0; y <= read.y1; ++y)
            Tones::Prepare(read.Row8(static_cast<std::int32_t>(y)), levels);
    }

    [[nodiscard]] std::ptrdiff_t Column(std::int64_t x) const {
        return static_cast<std::ptrdiff_t>(std::clamp<std::int64_t>(x, read.x0, read.x1) - read.x0) * 4;
    }

    void Row(std::int32_t y, std::int32_t worker) {
        Tones& tones = workers[static_cast<std::size_t>(worker)];
        std::array<const std::uint8_t*, 2 * largestRadius + 1> lines;
        const auto lineCount = static_cast<std::size_t>(2 * radius + 1);
        for (std::size_t i = 0; i < lineCount; ++i) {
            const std::int64_t line = std::int64_t{y} - radius + static_cast<std::int64_t>(i);
            lines[i] = read.Row8(static_cast<std::int32_t>(std::clamp<std::int64_t>(line, read.y0, read.y1))).data();
        }
        tones.Clear();
        for (std::int64_t x = std::int64_t{result.x0} - radius; x <= std::int64_t{result.x0} + radius; ++x)
            for (std::size_t i = 0; i < lineCount; ++i) tones.Add(lines[i] + Column(x));
        const std::uint8_t* from = source.Row8(y).data() + static_cast<std::ptrdiff_t>(result.x0 - source.x0) * 4;
        std::uint8_t* to = result.Row8(y).data();
        for (std::int64_t x = result.x0;; ++x, from += 4, to += 4) {
            tones.Paint(to);
            to[3] = from[3];
            if (x == result.x1) return;
            const std::ptrdiff_t leaving = Column(x - radius);
            const std::ptrdiff_t entering = Column(x + radius + 1);
            for (std::size_t i = 0; i < lineCount; ++i) {
                tones.Remove(lines[i] + leaving);
                tones.Add(lines[i] + entering);
            }
        }
    }
};

template <typename Tones>
std::unique_ptr<Image> Oiled(const Image& source, const Rect& work, std::int32_t radius, std::int32_t levels) {
    auto result = NewImageLike(source, work);
    OilJob<Tones> job(source, *result, radius, levels);
    const auto row = [](std::int32_t y, void* userData, std::int32_t worker) {
        static_cast<OilJob<Tones>*>(userData)->Row(y, worker);
    };
    RunInBands(work.y0, work.y1, work.Width(), row, &job);
    if (result->flag != 0) result->Premultiply(*result);
    return result;
}

}  // namespace

void OilEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                      bool /*expand*/) {
    if (m_radius <= 0) return ApplyAsCopy(source, result);
    ApplyInColourArea(source, result, region, [&](const Rect& work) {
        const std::int32_t radius = std::min(m_radius, largestRadius);
        const std::int32_t levels = std::clamp(m_levels, 0, mostLevels);
        const auto oil = [&](const Image& bytes) {
            return m_useIntensity ? Oiled<ByIntensity>(bytes, work, radius, levels)
                                  : Oiled<ByChannel>(bytes, work, radius, levels);
        };
        return source.depth == 0 ? oil(source) : oil(*source.Convert(Rect(), 0));
    });
}

}  // namespace chalkpane
