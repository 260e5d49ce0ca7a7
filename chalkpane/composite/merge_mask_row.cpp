#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "chalkpane/composite/blending_modes.h"

namespace chalkpane {

namespace {

std::size_t PixelsWithin(std::int32_t count, std::size_t inputChannels, std::size_t outputChannels) {
    return std::min({static_cast<std::size_t>(std::max(count, 0)), inputChannels / 4, outputChannels / 4});
}

template <typename Channel>
void MergeMaskRow(std::span<Channel> output, std::int32_t count, std::span<const Channel> colours,
                  std::span<const Channel> mask, std::int32_t maskStep) {
    const auto step = static_cast<std::size_t>(std::max(maskStep, 1));
    const std::size_t pixels =
        std::min(PixelsWithin(count, colours.size(), output.size()), (mask.size() + step - 1) / step);
    // Whole pixels through a local one: the rows might overlap as far as the compiler knows.
    for (std::size_t i = 0; i < pixels; ++i) {
        std::array<Channel, 4> pixel;
        std::memcpy(pixel.data(), &colours[4 * i], sizeof pixel);
        pixel[3] = mask[i * step];
        std::memcpy(&output[4 * i], pixel.data(), sizeof pixel);
    }
}

}  // namespace

void MergeMaskRow8(std::span<std::uint8_t> output, std::int32_t count, std::span<const std::uint8_t> colours,
                   std::span<const std::uint8_t> mask, std::int32_t maskStep) {
    MergeMaskRow(output, count, colours, mask, maskStep);
}

void MergeMaskRow14(std::span<std::uint16_t> output, std::int32_t count, std::span<const std::uint16_t> colours,
                    std::span<const std::uint16_t> mask, std::int32_t maskStep) {
    MergeMaskRow(output, count, colours, mask, maskStep);
}

}  // namespace chalkpane
