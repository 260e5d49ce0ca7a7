#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace chalkpane {

// `x` after so many additions of `step`, the result of each rounded to a double: what a loop comes to, without its
// additions.
//
// Between two powers of two all doubles are multiples of one unit. A step there moves every one of them by the same
// number of units, the nearest to the step, unless that lies in the middle between two: then it is odd and even numbers
// of units that decide, and each addition is made.
[[nodiscard]] inline double AddRepeatedly(double x, double step, std::int64_t count) {
    constexpr std::int64_t near = 2;  // additions that may reach the power of two
    constexpr std::uint64_t exponentBits = 0x7ff0000000000000U;
    while (count > 0) {
        const double next = x + step;
        const double moved = next - x;
        const std::uint64_t power = std::bit_cast<std::uint64_t>(next) & exponentBits;
        const bool isSame = (std::bit_cast<std::uint64_t>(x) & exponentBits) == power;
        const double lower = std::bit_cast<double>(power);
        const double unit = lower * 0x1p-52;
        x = next;
        --count;
        if (!isSame || moved == 0.0 || !(2 * std::abs(step - moved) < unit)) continue;
        const double room = std::signbit(x) == std::signbit(step) ? 2 * lower - std::abs(x) : std::abs(x) - lower;
        const double most = std::min(room / std::abs(moved) - near, static_cast<double>(count));
        if (!(most >= 1.0)) continue;
        const auto times = static_cast<std::int64_t>(most);
        x += static_cast<double>(times) * moved;
        count -= times;
    }
    return x;
}

}  // namespace chalkpane
