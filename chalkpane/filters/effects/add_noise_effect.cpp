#include "chalkpane/filters/effects/add_noise_effect.h"

#include <algorithm>
#include <array>
#include <new>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/effects/add_noise_row.h"
#include "chalkpane/filters/row_filter.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t distributionCode = 1;
constexpr std::uint8_t channelsCode = 2;
constexpr std::uint8_t uniform = 1;
constexpr std::uint8_t rgb = 1;
constexpr std::array<std::string_view, 2> distributions{"Gaussian", "Uniform"};
constexpr std::array<std::string_view, 2> channelChoices{"Luma", "RGB"};

// KEEP: full scale is 16383, so 16-bit noise is twice as strong.
// DIFFERS: 8 bits take the noise once.
template <typename F>
constexpr float noiseScale = F::bits == 8 ? 255.0F : 32766.0F;

constexpr float evenDivisor = 32767.0F;
constexpr float bellDivisor = 98301.0F;

float UniformNoise(GrainRandom& random) { return static_cast<float>(random.Next15()) / evenDivisor - 0.5F; }
float GaussianNoise(GrainRandom& random) { return random.Gauss(); }

template <typename F>
void AddTo(typename F::Channel& channel, float noise) {
    channel = LimitedChannel<F>(static_cast<float>(channel) + noise);
}

// Draws one number for each pixel, then the noise of those pixels that it lets pass.
template <typename F, float (*noise)(GrainRandom&), bool eachChannel>
void AddToRow(std::span<typename F::Channel> pixels, float amplitude, std::int32_t density, GrainRandom& shared) {
    GrainRandom random = shared;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        if (static_cast<std::int32_t>(random.Next() % 100u) > density) continue;
        const auto pixel = pixels.subspan(i, 4);
        const float red = noise(random) * amplitude;
        const float green = eachChannel ? noise(random) * amplitude : red;
        const float blue = eachChannel ? noise(random) * amplitude : red;
        AddTo<F>(pixel[2], red);
        AddTo<F>(pixel[1], green);
        AddTo<F>(pixel[0], blue);
    }
    shared = random;
}

// Shorter rows are not worth the generators' start.
constexpr std::size_t leastPixelsInLanes = 64;

// The same, where every pixel passes, by sixteen generators at once.
template <typename F>
void AddInLanes(std::span<typename F::Channel> pixels, const GrainLanes& lanes, bool eachChannel,
                const NoiseScale& scale, const GrainRandom& start) {
    alignas(32) GrainLanes::Numbers numbers;
    lanes.DrawAvx2(start, numbers);
    const NoiseSums sums{numbers[eachChannel ? 2 : 0].data(), numbers[eachChannel ? 1 : 0].data(), numbers[0].data()};
    const std::array<const std::int32_t*, 3> ofChannel{sums.blue, sums.green, sums.red};
    for (std::size_t i = AddNoiseAvx2(pixels, sums, scale); i + 3 < pixels.size(); i += 4) {
        const std::size_t pixel = i / 4;
        for (std::size_t c = 0; c < 3; ++c) {
            const auto sum = static_cast<float>(ofChannel[c][pixel]);
            AddTo<F>(pixels[i + c], (sum / scale.divisor - scale.middle) * scale.amplitude);
        }
    }
}

}  // namespace

std::span<const std::string_view> AddNoiseEffect::Choices(std::uint8_t code) {
    if (code == distributionCode) return distributions;
    if (code == channelsCode) return channelChoices;
    return {};
}

void AddNoiseEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
                           bool expand) {
    if (m_level == 0.0F || m_density == 0) return ApplyAsCopy(source, result);
    const Rect area = region == nullptr ? source.Bounds() : source.Intersection(*region);
    m_firstRow = area.y0;
    if (EveryPixelPasses())
        PrepareRows(area);
    else if (!source.IsMask())
        FindSparseRows(area);
    PointFilter::Apply(source, result, fast, region, expand);
    m_sparseRows.Clear();
}

GrainDraws AddNoiseEffect::Draws() const { return {m_channels == rgb ? 3U : 1U, m_distribution == uniform ? 1U : 6U}; }

// Pieces of one length, as few as there can be.
void AddNoiseEffect::PrepareRows(const Rect& area) {
    const auto pixels = static_cast<std::size_t>(std::max(area.Width(), 1));
    const std::size_t pieces = (pixels + GrainLanes::mostPixels - 1) / GrainLanes::mostPixels;
    m_rows.each = GrainJump::Of(pixels * Draws().PerPixel());
    m_rows.piecePixels = (pixels + pieces - 1) / pieces;
    m_rows.piece = GrainJump::Of(m_rows.piecePixels * Draws().PerPixel());
    m_rows.lanes = GrainLanes(m_rows.piecePixels, Draws());
}

// Where that pays, which is where the rows then run on the workers.
void AddNoiseEffect::FindSparseRows(const Rect& area) {
    if constexpr (builtWithAvx2) {
        if (!HasAvx2() || !MultiProcessor::Instance().RunsInParallel(BandCount(area.Height(), area.Width()))) return;
        try {
            const auto more = static_cast<std::uint32_t>(Draws().PerPixel() - 1);
            m_sparseRows.FindAvx2(GrainRandom(0), area.Width(), area.Height(), {m_density, more});
        } catch (const std::bad_alloc&) {  // they run in order then
            m_sparseRows.Clear();
        }
    }
}

template <typename F>
void AddNoiseEffect::AddInOrder(std::span<typename F::Channel> pixels, GrainRandom& random) const {
    const float amplitude = m_level * noiseScale<F>;
    const bool each = m_channels == rgb;
    if (m_distribution == uniform)
        (each ? AddToRow<F, UniformNoise, true> : AddToRow<F, UniformNoise, false>)(pixels, amplitude, m_density,
                                                                                    random);
    else
        (each ? AddToRow<F, GaussianNoise, true> : AddToRow<F, GaussianNoise, false>)(pixels, amplitude, m_density,
                                                                                      random);
}

template <typename F>
void AddNoiseEffect::AddNoise(std::int32_t y, std::span<typename F::Channel> pixels) {
    if (!CanRunInParallel()) return AddInOrder<F>(pixels, m_random);
    const auto row = static_cast<std::uint32_t>(std::int64_t{y} - m_firstRow);
    if (!EveryPixelPasses()) {
        GrainRandom random = m_sparseRows.StartOf(row);
        return AddInOrder<F>(pixels, random);
    }
    GrainRandom random = m_random;
    random.Jump(m_rows.each.Repeated(row));
    if constexpr (builtWithAvx2) {
        if (HasAvx2() && pixels.size() >= 4 * leastPixelsInLanes) {
            const bool even = m_distribution == uniform;
            const NoiseScale scale{even ? evenDivisor : bellDivisor, even ? 0.5F : 1.0F, m_level * noiseScale<F>};
            for (const std::size_t most = 4 * m_rows.piecePixels; !pixels.empty(); random.Jump(m_rows.piece)) {
                const std::size_t size = std::min(most, pixels.size());
                AddInLanes<F>(pixels.first(size), m_rows.lanes, m_channels == rgb, scale, random);
                pixels = pixels.subspan(size);
            }
            return;
        }
    }
    AddInOrder<F>(pixels, random);
}

void AddNoiseEffect::ProcessRow16(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t y,
                                  std::span<std::uint16_t> pixels) {
    AddNoise<PixelFormat14>(y, pixels);
}

void AddNoiseEffect::ProcessRow8(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t y,
                                 std::span<std::uint8_t> pixels) {
    AddNoise<PixelFormat8>(y, pixels);
}

}  // namespace chalkpane
