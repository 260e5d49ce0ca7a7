#include "chalkpane/filters/effects/add_noise_effect.h"

#include <array>

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

float UniformNoise(GrainRandom& random) { return static_cast<float>(random.Next15()) / 32767.0F - 0.5F; }
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

}  // namespace

std::span<const std::string_view> AddNoiseEffect::Choices(std::uint8_t code) {
    if (code == distributionCode) return distributions;
    if (code == channelsCode) return channelChoices;
    return {};
}

void AddNoiseEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
                           bool expand) {
    if (m_level == 0.0F || m_density == 0) return ApplyAsCopy(source, result);
    PointFilter::Apply(source, result, fast, region, expand);
}

template <typename F>
void AddNoiseEffect::AddNoise(std::span<typename F::Channel> pixels) {
    const float amplitude = m_level * noiseScale<F>;
    const bool each = m_channels == rgb;
    if (m_distribution == uniform)
        (each ? AddToRow<F, UniformNoise, true> : AddToRow<F, UniformNoise, false>)(pixels, amplitude, m_density,
                                                                                    m_random);
    else
        (each ? AddToRow<F, GaussianNoise, true> : AddToRow<F, GaussianNoise, false>)(pixels, amplitude, m_density,
                                                                                      m_random);
}

void AddNoiseEffect::ProcessRow16(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                                  std::span<std::uint16_t> pixels) {
    AddNoise<PixelFormat14>(pixels);
}

void AddNoiseEffect::ProcessRow8(std::int32_t /*firstX*/, std::int32_t /*lastX*/, std::int32_t /*y*/,
                                 std::span<std::uint8_t> pixels) {
    AddNoise<PixelFormat8>(pixels);
}

}  // namespace chalkpane
