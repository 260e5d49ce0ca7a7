#include "chalkpane/composite/blending_modes.h"

#include <algorithm>
#include <cstddef>

#include "chalkpane/composite/blend_kernels.h"

namespace chalkpane {

using blend::Format14;
using blend::Format8;
using blend::KernelsOf;
using blend::Registers;

constexpr std::array<std::string_view, namedBlendModeCount> BlendModeNames = [] {
    std::array<std::string_view, namedBlendModeCount> names;
    for (std::size_t mode = 0; mode < names.size(); ++mode)
        names[mode] = blend::blendModes<Format8, Registers::plain>[mode].name;
    return names;
}();

constexpr std::array<BlendKernel<PixelFormat8>, blendModeCount> BlendKernels8 = KernelsOf<Format8, Registers::plain>();
constexpr std::array<BlendKernel<PixelFormat14>, blendModeCount> BlendKernels14 =
    KernelsOf<Format14, Registers::plain>();
constexpr std::array<BlendKernel<PixelFormat8>, blendModeCount> blend::wideBlendKernels8 =
    KernelsOf<Format8, Registers::wide>();
constexpr std::array<BlendKernel<PixelFormat14>, blendModeCount> blend::wideBlendKernels14 =
    KernelsOf<Format14, Registers::wide>();

bool blend::HasWideRegisters() {
#if defined(__x86_64__) || defined(__i386__)
    static const bool present = __builtin_cpu_supports("avx2") != 0;
    return present;
#else
    return false;
#endif
}

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
    const auto& kernels = blend::HasWideRegisters() ? blend::wideBlendKernels8 : BlendKernels8;
    kernels[ModeIndex(mode)](source.data(), destination.data(), output.data(),
                             PixelsWithin(count, source, destination, output));
}

void BlendRow14(std::int32_t count, std::int32_t mode, std::span<const std::uint16_t> source,
                std::span<const std::uint16_t> destination, std::span<std::uint16_t> output) {
    const auto& kernels = blend::HasWideRegisters() ? blend::wideBlendKernels14 : BlendKernels14;
    kernels[ModeIndex(mode)](source.data(), destination.data(), output.data(),
                             PixelsWithin(count, source, destination, output));
}

}  // namespace chalkpane
