#pragma once

#include <algorithm>
#include <cstdint>

namespace chalkpane::blend {

// Formulas for bytes that stay within 16 bits without a sign, of which twice as many fit a register as of 32. They give
// what `ChannelFormulas` gives.
struct ByteFormulas {
    using Byte = std::uint8_t;
    using Word = std::uint16_t;

    // (t + t / 256) / 256 of t = a * b + half: the product as a part of 255, rounded; at most 65153 + 254 on the way.
    static constexpr Word Part(Word a, Word b, Word half) {
        const auto t = static_cast<Word>(a * b + half);
        return static_cast<Word>(static_cast<Word>(t + (t >> 8)) >> 8);
    }
    static constexpr Word Scaled(Word a, Word b) { return Part(a, b, 128); }
    static constexpr Word Inverted(Word a) { return static_cast<Word>(255 - a); }

    // Of both where the condition holds, of both inverted and inverted again where not: a product twice.
    static constexpr Byte DoubleProduct(bool multiplied, Byte s, Byte d) {
        const Byte flip = multiplied ? 0 : 255;
        const auto part = static_cast<Byte>(Scaled(static_cast<Byte>(s ^ flip), static_cast<Byte>(d ^ flip)));
        return static_cast<Byte>(static_cast<Byte>(part + part) ^ flip);
    }
    static constexpr Byte Overlay(Byte s, Byte d) { return DoubleProduct(d < 128, s, d); }
    static constexpr Byte HardLight(Byte s, Byte d) { return DoubleProduct(s < 128, s, d); }
    // The screened product is never the smaller one.
    static constexpr Word SoftLight(Word s, Word d) {
        const Word multiplied = Scaled(d, s);
        const Word screened = Inverted(Scaled(Inverted(d), Inverted(s)));
        return static_cast<Word>(multiplied + Scaled(static_cast<Word>(screened - multiplied), d));
    }
    // Where the destination is in the upper half, all is inverted, and the part of what is a negative factor then is
    // rounded towards nothing in the middle.
    static constexpr Byte Exclusion(Byte s, Byte d) {
        const Byte flip = d < 128 ? 0 : 255;
        const auto lower = static_cast<Byte>(d ^ flip);
        const auto factor = static_cast<Byte>(255 - 2 * lower);
        const auto part = static_cast<Byte>(Part(factor, s, static_cast<Byte>(128 - (flip & 1))));
        return static_cast<Byte>(static_cast<Byte>(lower + part) ^ flip);
    }
};

}  // namespace chalkpane::blend
