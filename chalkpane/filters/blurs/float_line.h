#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace chalkpane {

// Some rows or columns of pixels side by side, in floats: the working line of the soft blur. Position p holds `lanes`
// floats, the channels of as many lines as fit, so that one running sum serves all of them at once.
//
// Positions run from `left` to `right`, beyond the picture on both sides by the support radius of the passes; the
// picture is bordered by zeros there. Values stand multiplied by `gain`.
class FloatLine {
public:
    static constexpr std::size_t lanes = 16;

    // Makes room for left .. right, zeroed, with gain 1. Keeps the memory it has when that is enough.
    void Reset(std::int32_t left, std::int32_t right);

    [[nodiscard]] std::int32_t Left() const { return m_left; }
    [[nodiscard]] std::int32_t Right() const { return m_right; }
    [[nodiscard]] float* At(std::int32_t position) { return m_buffer.data() + Offset(position); }
    [[nodiscard]] const float* At(std::int32_t position) const { return m_buffer.data() + Offset(position); }

    float gain = 1.0F;

private:
    [[nodiscard]] std::size_t Offset(std::int32_t position) const {
        return static_cast<std::size_t>(position - m_left) * lanes;
    }

    std::int32_t m_left = 0;
    std::int32_t m_right = -1;
    std::vector<float> m_buffer;
};

// Radius of box pass `pass` of `passes`: the fractions of the softness spread over the passes.
[[nodiscard]] std::int32_t BoxRadius(double softness, std::int32_t passes, std::int32_t pass);

// Support radius of all passes together: positions on either side that enter a result.
[[nodiscard]] std::int32_t SoftenSupportRadius(double softness, std::int32_t passes);

// Runs `passes` box filters over the line, then, with more than two passes, three taps for what the softness has left
// over after the point. Sums are 32-bit floats built up from left to right. `spare` is scratch of the caller's
// and holds nothing of use afterwards.
void SoftenLine(FloatLine& line, FloatLine& spare, double softness, std::int32_t passes);

}  // namespace chalkpane
