#include "chalkpane/filters/effects/oil_effect.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/effects/colour_area.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

// Beyond what a control offers: windows fit 16-bit counts, and every tone has one of 256 bins.
constexpr std::int32_t largestRadius = 64;
constexpr std::int32_t mostLevels = 256;

// The largest radius whose windows of up to 225 pixels count in bytes, and add up in 16 bits.
constexpr std::int32_t narrowRadius = 7;

// A pixel in four lanes of 16 bits: blue, green, red, and what `Tones` keeps of it besides.
using Lanes = std::uint64_t;
constexpr std::uint32_t LaneOf(Lanes lanes, std::size_t i) {
    return static_cast<std::uint32_t>(lanes >> (16 * i)) & 0xffffu;
}

// The lowest of the fullest bins.
std::size_t Fullest(const std::array<std::uint8_t, 256>& counts) {
    const std::uint8_t most = *std::max_element(counts.begin(), counts.end());
    return static_cast<std::size_t>(static_cast<const std::uint8_t*>(std::memchr(counts.data(), most, counts.size())) -
                                    counts.data());
}
std::size_t Fullest(const std::array<std::int16_t, 256>& counts) {
    return static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) - counts.begin());
}

// What the pixels of one bin add up to, lane by lane. Narrow windows never carry from one lane into the next.
template <bool narrow>
struct LaneSums {
    Lanes sums = 0;
    void operator+=(Lanes pixel) { sums += pixel; }
    void operator-=(Lanes pixel) { sums -= pixel; }
    [[nodiscard]] std::uint32_t Of(std::size_t lane) const { return LaneOf(sums, lane); }
};
template <>
struct LaneSums<false> {
    std::array<std::uint32_t, 4> sums{};
    void operator+=(Lanes pixel) {
        for (std::size_t i = 0; i < 4; ++i) sums[i] += LaneOf(pixel, i);
    }
    void operator-=(Lanes pixel) {
        for (std::size_t i = 0; i < 4; ++i) sums[i] -= LaneOf(pixel, i);
    }
    [[nodiscard]] std::uint32_t Of(std::size_t lane) const { return sums[lane]; }
};

template <bool narrow>
using Count = std::conditional_t<narrow, std::uint8_t, std::int16_t>;

// Tones by brightness: one histogram, whose bin is the fourth lane.
template <bool narrow>
class ByIntensity {
public:
    static Lanes Prepared(const std::uint8_t* pixel, std::int32_t levels) {
        const auto bin = ((77 * pixel[2] + 151 * pixel[1] + 28 * pixel[0] + 128) * levels) >> 16;
        return Lanes{pixel[0]} | Lanes{pixel[1]} << 16 | Lanes{pixel[2]} << 32 |
               Lanes{static_cast<std::uint8_t>(bin)} << 48;
    }
    void Clear() { *this = {}; }
    void Add(Lanes pixel) {
        ++m_counts[pixel >> 48];
        m_sums[pixel >> 48] += pixel;
    }
    void Remove(Lanes pixel) {
        --m_counts[pixel >> 48];
        m_sums[pixel >> 48] -= pixel;
    }
    void Paint(std::uint8_t* pixel) const {
        const std::size_t bin = Fullest(m_counts);
        const auto count = static_cast<std::uint32_t>(m_counts[bin]);
        for (std::size_t c = 0; c < 3; ++c) pixel[c] = static_cast<std::uint8_t>(m_sums[bin].Of(c) / count);
    }

private:
    std::array<Count<narrow>, 256> m_counts{};
    std::array<LaneSums<narrow>, 256> m_sums{};
};

// Each channel has tones of its own, whose bins are the upper halves of its lane.
template <bool narrow>
class ByChannel {
public:
    static Lanes Prepared(const std::uint8_t* pixel, std::int32_t levels) {
        Lanes lanes = 0;
        for (std::size_t c = 0; c < 3; ++c) {
            const auto bin = static_cast<std::uint8_t>((pixel[c] * levels) >> 8);
            lanes |= (Lanes{pixel[c]} | Lanes{bin} << 8) << (16 * c);
        }
        return lanes;
    }
    void Clear() { *this = {}; }
    void Add(Lanes pixel) {
        for (std::size_t c = 0; c < 3; ++c) {
            const std::uint32_t lane = LaneOf(pixel, c);
            ++m_counts[c][lane >> 8];
            m_sums[c][lane >> 8] += lane & 255u;
        }
    }
    void Remove(Lanes pixel) {
        for (std::size_t c = 0; c < 3; ++c) {
            const std::uint32_t lane = LaneOf(pixel, c);
            --m_counts[c][lane >> 8];
            m_sums[c][lane >> 8] -= lane & 255u;
        }
    }
    void Paint(std::uint8_t* pixel) const {
        for (std::size_t c = 0; c < 3; ++c) {
            const std::size_t bin = Fullest(m_counts[c]);
            pixel[c] = static_cast<std::uint8_t>(m_sums[c][bin] / static_cast<std::uint32_t>(m_counts[c][bin]));
        }
    }

private:
    std::array<std::array<Count<narrow>, 256>, 3> m_counts{};
    std::array<std::array<std::uint32_t, 256>, 3> m_sums{};
};

template <typename Tones>
struct OilJob {
    const Image& source;
    Image& result;
    std::int32_t radius;
    std::int32_t levels;
    // Colour without alpha, prepared for `Tones`, in rows as wide as all windows together; beyond the picture its edge.
    std::size_t rowLength;
    std::vector<Lanes> read;
    std::vector<Tones> workers;

    OilJob(const Image& from, Image& to, std::int32_t pixels, std::int32_t levelCount)
        : source(from),
          result(to),
          radius(pixels),
          levels(levelCount),
          rowLength(static_cast<std::size_t>(to.Width()) + 2 * static_cast<std::size_t>(pixels)),
          read(rowLength * static_cast<std::size_t>(LastLine() - FirstLine() + 1)),
          workers(static_cast<std::size_t>(std::max(MultiProcessor::Instance().ProcessorCount(), 1))) {}

    // Rows of the source that some window touches.
    [[nodiscard]] std::int64_t Clamped(std::int64_t y) const {
        return std::clamp<std::int64_t>(y, source.y0, source.y1);
    }
    [[nodiscard]] std::int64_t FirstLine() const { return Clamped(std::int64_t{result.y0} - radius); }
    [[nodiscard]] std::int64_t LastLine() const { return Clamped(std::int64_t{result.y1} + radius); }
    [[nodiscard]] Lanes* Line(std::int64_t y) {
        return read.data() + static_cast<std::size_t>(Clamped(y) - FirstLine()) * rowLength;
    }

    void PrepareRow(std::int32_t y, std::int32_t /*worker*/) {
        const auto row = source.Row8(y);
        Lanes* out = Line(y);
        for (std::int64_t x = std::int64_t{result.x0} - radius; x <= std::int64_t{result.x1} + radius; ++x, ++out) {
            const std::int64_t column = std::clamp<std::int64_t>(x, source.x0, source.x1) - source.x0;
            std::array<std::uint8_t, 4> pixel;
            std::copy_n(row.begin() + column * 4, 4, pixel.begin());
            if (source.IsPremultiplied() && pixel[3] != 0 && pixel[3] != 255)
                for (std::size_t c = 0; c < 3; ++c)
                    pixel[c] = static_cast<std::uint8_t>(std::min((pixel[c] * ReciprocalTable[pixel[3]]) >> 8, 255));
            *out = Tones::Prepared(pixel.data(), levels);
        }
    }

    void Row(std::int32_t y, std::int32_t worker) {
        Tones& tones = workers[static_cast<std::size_t>(worker)];
        std::array<const Lanes*, 2 * largestRadius + 1> lines;
        const auto lineCount = 2 * static_cast<std::size_t>(radius) + 1;
        for (std::size_t i = 0; i < lineCount; ++i)
            lines[i] = Line(std::int64_t{y} - radius + static_cast<std::int64_t>(i));
        tones.Clear();
        for (std::size_t x = 0; x < lineCount; ++x)
            for (std::size_t i = 0; i < lineCount; ++i) tones.Add(lines[i][x]);
        const std::uint8_t* from = source.Row8(y).data() + (std::int64_t{result.x0} - source.x0) * 4;
        std::uint8_t* to = result.Row8(y).data();
        const auto width = static_cast<std::size_t>(result.Width());
        for (std::size_t x = 0;; ++x, from += 4, to += 4) {
            tones.Paint(to);
            to[3] = from[3];
            if (x + 1 == width) return;
            for (std::size_t i = 0; i < lineCount; ++i) {
                tones.Remove(lines[i][x]);
                tones.Add(lines[i][x + lineCount]);
            }
        }
    }

    template <void (OilJob::*row)(std::int32_t, std::int32_t)>
    void Run(std::int64_t first, std::int64_t last) {
        const auto call = [](std::int32_t y, void* userData, std::int32_t worker) {
            (static_cast<OilJob*>(userData)->*row)(y, worker);
        };
        RunInBands(static_cast<std::int32_t>(first), static_cast<std::int32_t>(last), result.Width(), call, this);
    }
};

template <typename Tones>
std::unique_ptr<Image> Oiled(const Image& source, const Rect& work, std::int32_t radius, std::int32_t levels) {
    auto result = Image::Unwritten(work, source);
    OilJob<Tones> job(source, *result, radius, levels);
    job.template Run<&OilJob<Tones>::PrepareRow>(job.FirstLine(), job.LastLine());
    job.template Run<&OilJob<Tones>::Row>(result->y0, result->y1);
    if (result->IsPremultiplied()) result->Premultiply(*result);
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
            if (radius <= narrowRadius)
                return m_useIntensity ? Oiled<ByIntensity<true>>(bytes, work, radius, levels)
                                      : Oiled<ByChannel<true>>(bytes, work, radius, levels);
            return m_useIntensity ? Oiled<ByIntensity<false>>(bytes, work, radius, levels)
                                  : Oiled<ByChannel<false>>(bytes, work, radius, levels);
        };
        return source.GetDepth() == Depth::Eight ? oil(source) : oil(*source.Convert(Rect(), Depth::Eight));
    });
}

}  // namespace chalkpane
