#pragma once

#include <cstdint>
#include <limits>

namespace chalkpane {

// A double narrowed to a float; what lies beyond the largest float becomes infinite, as the processor rounds it.
inline float toFloat(double number) {
    constexpr double largest = std::numeric_limits<float>::max();
    constexpr double halfStep = 0x1p103;  // half the step of the largest floats
    if (number >= largest + halfStep) return std::numeric_limits<float>::infinity();
    if (number <= -(largest + halfStep)) return -std::numeric_limits<float>::infinity();
    return static_cast<float>(number);
}

// Truncates towards zero; outside the range of the result, and for NaN, the smallest number, as the processor answers.
inline std::int32_t truncateToInteger(double number) {
    if (!(number > -2147483649.0 && number < 2147483648.0)) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(number);
}

}  // namespace chalkpane
