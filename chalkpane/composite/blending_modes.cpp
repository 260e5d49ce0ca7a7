#include "chalkpane/composite/blending_modes.h"

#include <algorithm>
#include <cstddef>

#include "chalkpane/composite/blend_formulas.h"

namespace chalkpane {

using blend::Format14;
using blend::Format8;
using blend::KernelsOf;

constexpr std::array<std::string_view, blendModeCount> BlendModeNames = [] {
    std::array<std::string_view, blendModeCount> names;
    for (std::size_t mode = 0; mode < names.size(); ++mode) names[mode] = blend::blendModes<Format8>[mode].name;
    return names;
}();

constexpr std::array<BlendKernel<PixelFormat8>, blendModeCount> BlendKernels8 = KernelsOf<Format8>();
constexpr std::array<BlendKernel<PixelFormat14>, blendModeCount> BlendKernels14 = KernelsOf<Format14>();

namespace {

// As many pixels as every row has.
template <typename... Row>
std::int32_t PixelsWithin(std::int32_t count, const Row&... rows) {
    return static_cast<std::int32_t>(std::min({static_cast<std::size_t>(std::max(count, 0)), (rows.size() / 4)...}));
}

std::size_t ModeIndex(std::int32_t mode) {
    return mode >= 0 && mode < blendModeCount ? static_cast<std::size_t>(mode) : 0;
}

}  // namespace

void BlendRow8(std::int32_t count, std::int32_t mode, std::span<const std::uint8_t> source,
               std::span<const std::uint8_t> destination, std::span<std::uint8_t> output) {
    BlendKernels8[ModeIndex(mode)](source.data(), destination.data(), output.data(),
                                   PixelsWithin(count, source, destination, output));
}

void BlendRow14(std::int32_t count, std::int32_t mode, std::span<const std::uint16_t> source,
                std::span<const std::uint16_t> destination, std::span<std::uint16_t> output) {
    BlendKernels14[ModeIndex(mode)](source.data(), destination.data(), output.data(),
                                    PixelsWithin(count, source, destination, output));
}

}  // namespace chalkpane
