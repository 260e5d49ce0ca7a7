#pragma once

#include <array>
#include <cstdint>

namespace chalkpane {

// The two pixel formats and the integer arithmetic that every pixel loop shares.
//
// Four channels in memory order blue, green, red, alpha, or one mask channel. An 8-bit channel holds 0 .. 255, a
// 16-bit channel 14 significant bits, 0 .. 16383. An 8-bit value widens to 14 bits by `Widen`, and narrows by `Narrow`.

// The bits of a channel, as an image's `depth` stores them. Any stored value but 0 counts as 14 bits.
enum class Depth : std::int32_t { Eight = 0, Fourteen = 1 };
constexpr Depth DepthOf(std::int32_t stored) { return stored != 0 ? Depth::Fourteen : Depth::Eight; }

// Whether colour channels are multiplied by alpha, as an image's `flag` stores it. A canvas is premultiplied; most
// picture files are straight.
enum class AlphaForm : std::uint8_t { Straight = 0, Premultiplied = 1 };

// Rounded product a * b / 255. Arguments may be negative (Soft Light, Exclusion): the shifts are arithmetic.
constexpr std::int32_t Scale8(std::int32_t a, std::int32_t b) {
    const std::int32_t t = a * b + 128;
    return (t + (t >> 8)) >> 8;
}

// Rounded product a * b / 16383, in 32 bits that wrap: Soft Light at 14 bits goes beyond them, and so do words above
// full scale.
constexpr std::int32_t Scale14(std::int32_t a, std::int32_t b) {
    const std::uint32_t t = static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b) + 8192;
    const auto high = static_cast<std::uint32_t>(static_cast<std::int32_t>(t) >> 14);
    return static_cast<std::int32_t>(t + high) >> 14;
}

constexpr std::uint16_t Widen(std::uint8_t value) { return static_cast<std::uint16_t>(value * 64 + (value >> 2)); }
constexpr std::uint8_t Narrow(std::uint16_t value) { return static_cast<std::uint8_t>(value >> 6); }

// Entry i is 65280 / i truncated, entry 0 is 0: a channel times the entry, shifted right by 8, undoes an 8-bit alpha.
inline constexpr std::array<std::int32_t, 256> ReciprocalTable = [] {
    std::array<std::int32_t, 256> table{};
    for (std::int32_t i = 1; i < 256; ++i) table[static_cast<std::size_t>(i)] = 65280 / i;
    return table;
}();

struct PixelFormat8 {
    using Channel = std::uint8_t;
    static constexpr std::int32_t fullScale = 255;
    static constexpr std::int32_t bits = 8;
    static constexpr auto Scale = Scale8;
};

struct PixelFormat14 {
    using Channel = std::uint16_t;
    static constexpr std::int32_t fullScale = 16383;
    static constexpr std::int32_t bits = 14;
    static constexpr auto Scale = Scale14;
};

// The common base of everything that reads and writes pixels in these formats. It holds nothing.
class ImageChannels {};

}  // namespace chalkpane
