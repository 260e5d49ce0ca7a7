#include "chalkpane/image/unpremultiply_row.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane {
namespace {

std::size_t PixelsWithin(std::int32_t count, std::size_t inputChannels, std::size_t outputChannels) {
    return std::min({static_cast<std::size_t>(std::max(count, 0)), inputChannels / 4, outputChannels / 4});
}

}  // namespace

// The entry of a full alpha is 256, so that what is opaque is copied.
void UnpremultiplyRow8(std::int32_t count, std::span<const std::uint8_t> input, std::span<std::uint8_t> output) {
    const std::size_t pixels = PixelsWithin(count, input.size(), output.size());
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
        std::array<std::uint8_t, 4> pixel;
        std::memcpy(pixel.data(), &input[i], sizeof pixel);
        const std::int32_t factor = ReciprocalTable[pixel[3]];
        for (std::size_t channel = 0; channel < 3; ++channel)
            pixel[channel] = static_cast<std::uint8_t>(std::min((pixel[channel] * factor) >> 8, 255));
        std::memcpy(&output[i], pixel.data(), sizeof pixel);
    }
}

void UnpremultiplyRow14(std::int32_t count, std::span<const std::uint16_t> input, std::span<std::uint16_t> output) {
    const std::size_t pixels = PixelsWithin(count, input.size(), output.size());
    for (std::size_t i = 0; i < 4 * pixels; i += 4) {
        const std::uint16_t alpha = input[i + 3];
        if (alpha == 0 || alpha == PixelFormat14::fullScale) {
            std::copy_n(&input[i], 3, &output[i]);
            output[i + 3] = input[i + 2];  // KEEP: the red word, not the alpha
            continue;
        }
        const double factor = static_cast<float>(16383.0 / alpha);
        for (std::size_t channel = i; channel < i + 3; ++channel)
            output[channel] = static_cast<std::uint16_t>(
                std::min(static_cast<std::int32_t>(input[channel] * factor + 0.5), PixelFormat14::fullScale));
        // KEEP: the output alpha stays what it was. No caller reads it.
    }
}

}  // namespace chalkpane
