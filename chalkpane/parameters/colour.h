#pragma once

#include <cstdint>

namespace chalkpane {

// A colour of three components, 0 .. 16383 (14 bits; 16383 is full). Not clamped anywhere: a component holds any word.
struct Colour {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;

    static constexpr std::uint16_t full = 16383;

    // 0 red, 1 green, 2 blue, 3 white; any other index is black.
    static constexpr Colour fromIndex(int index) {
        switch (index) {
            case 0:
                return {full, 0, 0};
            case 1:
                return {0, full, 0};
            case 2:
                return {0, 0, full};
            case 3:
                return {full, full, full};
            default:
                return {};
        }
    }

    friend constexpr bool operator==(const Colour&, const Colour&) = default;
};

}  // namespace chalkpane
