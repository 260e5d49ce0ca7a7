#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "image/pixel_format.h"

namespace chalkpane {

// Calls `change` with the four channels of each pixel as 32-bit integers, by reference, and stores what it leaves in
// them, wrapped in the channel's bits:
//     change(std::int32_t& blue, std::int32_t& green, std::int32_t& red, std::int32_t& alpha)
//
// Pixels are read and written as whole 32-bit words. Channels one by one would be loads and stores of every fourth
// byte, with which compilers do not vectorise; in words, what `change` does without branches runs on as many pixels at
// once as fit a register.
template <typename F, typename Change>
[[gnu::always_inline]] inline void ForEachColour(std::span<typename F::Channel> pixels, Change change) {
    using Channel = typename F::Channel;
    constexpr std::size_t wordsPerPixel = 4 * sizeof(Channel) / sizeof(std::uint32_t);
    constexpr std::uint32_t mask = F::bits == 8 ? 0xffu : 0xffffu;
    const auto cut = [](std::uint32_t word, int shift) { return static_cast<std::int32_t>((word >> shift) & mask); };
    const auto put = [](std::int32_t channel, int shift) {
        return (static_cast<std::uint32_t>(channel) & mask) << shift;
    };
    auto* const bytes = reinterpret_cast<std::byte*>(pixels.data());
    const std::size_t count = pixels.size() / 4;
    for (std::size_t i = 0; i < count; ++i) {
        std::byte* const at = bytes + i * sizeof(std::uint32_t) * wordsPerPixel;
        std::uint32_t low;
        std::memcpy(&low, at, sizeof low);
        if constexpr (F::bits == 8) {
            std::int32_t blue = cut(low, 0);
            std::int32_t green = cut(low, 8);
            std::int32_t red = cut(low, 16);
            std::int32_t alpha = cut(low, 24);
            change(blue, green, red, alpha);
            low = put(blue, 0) | put(green, 8) | put(red, 16) | put(alpha, 24);
            std::memcpy(at, &low, sizeof low);
        } else {
            std::uint32_t high;
            std::memcpy(&high, at + sizeof low, sizeof high);
            std::int32_t blue = cut(low, 0);
            std::int32_t green = cut(low, 16);
            std::int32_t red = cut(high, 0);
            std::int32_t alpha = cut(high, 16);
            change(blue, green, red, alpha);
            low = put(blue, 0) | put(green, 16);
            high = put(red, 0) | put(alpha, 16);
            std::memcpy(at, &low, sizeof low);
            std::memcpy(at + sizeof low, &high, sizeof high);
        }
    }
}

}  // namespace chalkpane
