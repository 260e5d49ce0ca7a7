#include "filters/blurs/float_line.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace chalkpane {

namespace {

// All lanes at once; the compiler makes of it what the machine has.
using Lanes = float __attribute__((vector_size(FloatLine::lanes * sizeof(float))));

constexpr std::array<float, FloatLine::lanes> zeros{};

inline void Load(Lanes& lanes, const float* from) { std::memcpy(&lanes, from, sizeof(lanes)); }
inline void Store(float* to, const Lanes& lanes) { std::memcpy(to, &lanes, sizeof(lanes)); }

// A running box of width 2 * radius + 1. KEEP: the sum is one 32-bit float that values enter and leave from left to
// right; summing afresh at each position would round differently.
void BoxPass(const FloatLine& in, FloatLine& out, std::int32_t radius) {
    const std::int32_t left = in.Left();
    const std::int32_t right = in.Right();
    const auto at = [&in, left, right](std::int32_t position) {
        return position >= left && position <= right ? in.At(position) : zeros.data();
    };
    Lanes sum = {};
    Lanes value;
    for (std::int32_t p = left - radius; p <= left + radius; ++p) {
        Load(value, at(p));
        sum += value;
    }
    for (std::int32_t p = left; p <= right; ++p) {
        Store(out.At(p), sum);
        Load(value, at(p + radius + 1));
        sum += value;
        Load(value, at(p - radius));
        sum -= value;
    }
    out.gain = in.gain * static_cast<float>(2 * radius + 1);
}

void ThreeTapPass(const FloatLine& in, FloatLine& out, double fraction) {
    const std::int32_t left = in.Left();
    const std::int32_t right = in.Right();
    for (std::int32_t p = left; p <= right; ++p) {
        const float* before = p > left ? in.At(p - 1) : zeros.data();
        const float* here = in.At(p);
        const float* behind = p < right ? in.At(p + 1) : zeros.data();
        float* result = out.At(p);
        for (std::size_t i = 0; i < FloatLine::lanes; ++i) {
            const double sides = before[i] + behind[i];
            result[i] = static_cast<float>(sides * fraction + static_cast<double>(here[i]));
        }
    }
    out.gain = static_cast<float>(static_cast<double>(in.gain) * (2.0 * fraction + 1.0));
}

// What is left of the softness after the point, where a pass is made for it; otherwise 0.
double SoftnessFraction(double softness, std::int32_t passes) {
    const double fraction = softness - std::floor(softness);
    return passes < 3 || fraction < 0.01 ? 0.0 : fraction;
}

}  // namespace

void FloatLine::Reset(std::int32_t left, std::int32_t right) {
    m_left = left;
    m_right = right;
    m_buffer.assign(static_cast<std::size_t>(right - left + 1) * lanes, 0.0F);
    gain = 1.0F;
}

std::int32_t BoxRadius(double softness, std::int32_t passes, std::int32_t pass) {
    return static_cast<std::int32_t>((pass + softness) / passes);
}

std::int32_t SoftenReach(double softness, std::int32_t passes) {
    std::int32_t reach = SoftnessFraction(softness, passes) > 0.0 ? 1 : 0;
    for (std::int32_t pass = 0; pass < passes; ++pass) reach += BoxRadius(softness, passes, pass);
    return reach;
}

void SoftenLine(FloatLine& line, FloatLine& spare, double softness, std::int32_t passes) {
    const auto run = [&line, &spare](auto pass, auto argument) {
        pass(line, spare, argument);
        std::swap(line, spare);
    };
    for (std::int32_t pass = 0; pass < passes; ++pass)
        if (const std::int32_t radius = BoxRadius(softness, passes, pass); radius != 0) run(BoxPass, radius);
    if (const double fraction = SoftnessFraction(softness, passes); fraction > 0.0) run(ThreeTapPass, fraction);
}

}  // namespace chalkpane
