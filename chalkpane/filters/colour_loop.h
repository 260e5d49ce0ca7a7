#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "chalkpane/image/pixel_format.h"

namespace chalkpane {

namespace detail {

// One pixel as it lies in memory, blue lowest.
template <typename F>
struct PixelWords {
    static constexpr std::int32_t bits = 8 * sizeof(typename F::Channel);
    static constexpr std::uint32_t mask = (1u << bits) - 1;

    std::uint32_t low = 0;
    std::uint32_t high = 0;  // red and alpha at 14 bits

    [[gnu::always_inline]] static PixelWords Load(const typename F::Channel* at) {
        PixelWords pixel;
        std::memcpy(&pixel.low, at, sizeof pixel.low);
        if constexpr (F::bits == 8)
            pixel.high = pixel.low >> 16;
        else
            std::memcpy(&pixel.high, at + 2, sizeof pixel.high);
        return pixel;
    }
    [[gnu::always_inline]] void Store(typename F::Channel* at) const {
        const std::uint32_t first = F::bits == 8 ? low | high << 16 : low;
        std::memcpy(at, &first, sizeof first);
        if constexpr (F::bits != 8) std::memcpy(at + 2, &high, sizeof high);
    }
    [[nodiscard]] std::int32_t Blue() const { return static_cast<std::int32_t>(low & mask); }
    [[nodiscard]] std::int32_t Green() const { return static_cast<std::int32_t>((low >> bits) & mask); }
    [[nodiscard]] std::int32_t Red() const { return static_cast<std::int32_t>(high & mask); }
    [[nodiscard]] std::int32_t Alpha() const { return static_cast<std::int32_t>((high >> bits) & mask); }
    // Wraps in the channel's bits.
    void Set(std::int32_t blue, std::int32_t green, std::int32_t red, std::int32_t alpha) {
        low = Pair(blue, green);
        high = Pair(red, alpha);
    }

private:
    static std::uint32_t Pair(std::int32_t lower, std::int32_t upper) {
        return (static_cast<std::uint32_t>(lower) & mask) | (static_cast<std::uint32_t>(upper) & mask) << bits;
    }
};

}  // namespace detail

// Calls `change` with the four channels of each pixel as 32-bit integers, by reference, and stores what it leaves in
// them, wrapped in the channel's bits:
//     change(std::int32_t& blue, std::int32_t& green, std::int32_t& red, std::int32_t& alpha)
//
// Pixels are read and written as whole 32-bit words. Channels one by one would be loads and stores of every fourth
// byte, with which compilers do not vectorise; in words, what `change` does without branches runs on as many pixels at
// once as fit a register.
template <typename F, typename Change>
[[gnu::always_inline]] inline void ForEachColour(std::span<typename F::Channel> pixels, Change change) {
    const std::size_t count = pixels.size() / 4;
    for (std::size_t i = 0; i < count; ++i) {
        auto* const at = pixels.data() + 4 * i;
        auto pixel = detail::PixelWords<F>::Load(at);
        std::int32_t blue = pixel.Blue();
        std::int32_t green = pixel.Green();
        std::int32_t red = pixel.Red();
        std::int32_t alpha = pixel.Alpha();
        change(blue, green, red, alpha);
        pixel.Set(blue, green, red, alpha);
        pixel.Store(at);
    }
}

// `ForEachColour` for changes that need an entry of a table. It is looked up for many pixels at a time, apart from
// the change itself, so that only the look-ups go pixel by pixel:
//     std::int32_t index(std::int32_t blue, std::int32_t green, std::int32_t red)     inside the table
//     change(blue, green, red, alpha, Entry found)
template <typename F, typename Entry, typename Index, typename Change>
[[gnu::always_inline]] inline void ForEachColour(std::span<typename F::Channel> pixels, const Entry* table, Index index,
                                                 Change change) {
    constexpr std::size_t block = 256;
    std::array<std::int32_t, block> places;
    std::array<Entry, block> entries;
    for (; pixels.size() >= 4; pixels = pixels.subspan(std::min(4 * block, pixels.size()))) {
        const auto part = pixels.first(std::min(4 * block, pixels.size()));
        const std::size_t count = part.size() / 4;
        for (std::size_t i = 0; i < count; ++i) {
            const auto pixel = detail::PixelWords<F>::Load(part.data() + 4 * i);
            places[i] = index(pixel.Blue(), pixel.Green(), pixel.Red());
        }
        for (std::size_t i = 0; i < count; ++i) entries[i] = table[places[i]];
        for (std::size_t i = 0; i < count; ++i) {
            auto pixel = detail::PixelWords<F>::Load(part.data() + 4 * i);
            std::int32_t blue = pixel.Blue();
            std::int32_t green = pixel.Green();
            std::int32_t red = pixel.Red();
            std::int32_t alpha = pixel.Alpha();
            change(blue, green, red, alpha, entries[i]);
            pixel.Set(blue, green, red, alpha);
            pixel.Store(part.data() + 4 * i);
        }
    }
}

}  // namespace chalkpane
