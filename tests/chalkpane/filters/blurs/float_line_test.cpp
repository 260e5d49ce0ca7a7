#include "chalkpane/filters/blurs/float_line.h"

#include <doctest/doctest.h>

#include <cmath>
#include <random>
#include <vector>

#include "tests/chalkpane/scoped_cpu_features.h"

using namespace chalkpane;

namespace {

constexpr unsigned seed = 4711;

// One lane, one value at a time, in a line with room on both sides.
std::vector<float> Reference(std::vector<float> line, double softness, int passes, float& gain) {
    gain = 1.0F;
    const auto at = [](const std::vector<float>& values, int i) {
        return i >= 0 && i < static_cast<int>(values.size()) ? values[static_cast<std::size_t>(i)] : 0.0F;
    };
    for (int pass = 0; pass < passes; ++pass) {
        const int r = static_cast<int>((pass + softness) / passes);
        if (r == 0) continue;
        std::vector<float> out(line.size());
        float sum = 0.0F;
        for (int i = -r; i <= r; ++i) sum += at(line, i);
        for (int i = 0; i < static_cast<int>(line.size()); ++i) {
            out[static_cast<std::size_t>(i)] = sum;
            sum = sum + at(line, i + r + 1);
            sum = sum - at(line, i - r);
        }
        line = out;
        gain *= static_cast<float>(2 * r + 1);
    }
    const double fraction = softness - std::floor(softness);
    if (passes >= 3 && fraction >= 0.01) {
        std::vector<float> out(line.size());
        for (int i = 0; i < static_cast<int>(line.size()); ++i) {
            const float sides = at(line, i - 1) + at(line, i + 1);
            out[static_cast<std::size_t>(i)] = static_cast<float>(sides * fraction + at(line, i));
        }
        line = out;
        gain = static_cast<float>(gain * (2 * fraction + 1));
    }
    return line;
}

}  // namespace

// Some of the boxes are longer than the line.
TEST_CASE("A soft line is the running sums of the plain line, lane by lane") {
    std::mt19937 random(seed);
    for (const double softness : {0.5, 1.0, 2.99, 3.7, 20.0, 57.3, 100.0}) {
        for (const int passes : {1, 2, 3, 4, 5, 9}) {
            const test::ScopedCpuFeatures features(random() % 2 == 0 ? CpuFeatures::Plain : CpuFeatures::All);
            const std::int32_t radius = SoftenSupportRadius(softness, passes);
            const std::int32_t size = 90;
            FloatLine line;
            FloatLine spare;
            line.Reset(-radius, size - 1 + radius);
            spare.Reset(-radius, size - 1 + radius);
            std::vector<std::vector<float>> lanes(FloatLine::lanes,
                                                  std::vector<float>(static_cast<std::size_t>(size + 2 * radius)));
            for (std::int32_t p = 0; p < size; ++p) {
                const std::int32_t padded = p + radius;
                for (std::size_t lane = 0; lane < FloatLine::lanes; ++lane) {
                    const auto value = static_cast<float>(random() % 16384);
                    line.At(p)[lane] = value;
                    lanes[lane][static_cast<std::size_t>(padded)] = value;
                }
            }
            SoftenLine(line, spare, softness, passes);
            CAPTURE(seed);
            CAPTURE(softness);
            CAPTURE(passes);
            bool same = true;
            for (std::size_t lane = 0; lane < FloatLine::lanes; ++lane) {
                float gain = 0.0F;
                const auto wanted = Reference(lanes[lane], softness, passes, gain);
                CHECK_EQ(line.gain, gain);
                for (std::size_t i = 0; i < wanted.size(); ++i)
                    same = same && line.At(static_cast<std::int32_t>(i) - radius)[lane] == wanted[i];
            }
            CHECK(same);
        }
    }
}

// Softness 3.7 in 4 passes: (0 + 3.7) / 4 = 0.925 -> 0, 1.175 -> 1, 1.425 -> 1, 1.675 -> 1; and one for the 0.7.
TEST_CASE("The radius of a soft line is its radii and the three taps") {
    CHECK_EQ(BoxRadius(3.7, 4, 0), 0);
    CHECK_EQ(BoxRadius(3.7, 4, 1), 1);
    CHECK_EQ(SoftenSupportRadius(3.7, 4), 4);
    CHECK_EQ(SoftenSupportRadius(3.7, 2), 3);  // (0 + 3.7) / 2 -> 1, (1 + 3.7) / 2 -> 2, and no taps with two passes
    CHECK_EQ(SoftenSupportRadius(0.5, 1), 0);
}

// Two passes of radius 1 over a single 1 at the line's end, with no room beyond: 0 1 1 after the first, and what left
// the line on the right is gone, so 1 2 2 after the second. With one more position of room it comes back: 1 2 3.
TEST_CASE("What a pass pushes beyond the picture comes back in the next") {
    FloatLine line;
    FloatLine spare;
    line.Reset(0, 2 + SoftenSupportRadius(2.0, 2));
    spare.Reset(0, 2 + SoftenSupportRadius(2.0, 2));
    line.At(2)[0] = 1.0F;
    SoftenLine(line, spare, 2.0, 2);  // radii (0 + 2) / 2 = 1 and (1 + 2) / 2 = 1
    CHECK_EQ(line.At(0)[0], 1.0F);
    CHECK_EQ(line.At(1)[0], 2.0F);
    CHECK_EQ(line.At(2)[0], 3.0F);
    CHECK_EQ(line.gain, 9.0F);
}
