#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "tests/kel/kel_folder.h"
#include "tests/kel/pixels.h"

// Ink that fades, in every output: one factor for all of it, read from pixels.

namespace kel {
namespace {

using nlohmann::json;
using testing::KelFolder;

// 50 fields a second. The second stroke is released in field 20, the first of the 10 of the wait; so field 29 is the
// last with all of the ink, and in field 29 + k of the 10 of fading it has 1 - k / 10.
constexpr int lastWhole = 29;
constexpr int fadingFields = 10;

json FadingSession() {
    json session = testing::PlainSession();
    session["events"] = {{{"field", 1}, {"fade", {{"after", 0.2}, {"over", fadingFields}}}},
                         {{"field", 2}, {"set", {{"BrushWidth", 30}, {"BrushColor", "#ffffff"}}}},
                         {{"field", 4}, {"fields", 6}, {"stroke", {{6, 16}, {58, 16}}}},
                         {{"field", 12}, {"set", {{"BrushColor", "#e02040"}}}},
                         {{"field", 14}, {"fields", 6}, {"stroke", {{6, 48}, {58, 48}}}},
                         {{"field", 50}, {"undo", 1}}};
    session["fields"] = 56;
    return session;
}

// The pixels in the middle of both strokes.
std::array<testing::Pixel, 2> InkOf(const KelFolder& folder, const std::string& output, int field) {
    std::array<char, 64> name{};
    std::snprintf(name.data(), name.size(), "%s%02d.png", output.c_str(), field);
    const picture_io::Picture picture = folder.Open(name.data());
    return {picture.At(32, 16), picture.At(32, 48)};
}

double FactorAt(int k) { return 1.0 - k / static_cast<double>(fadingFields); }

// The canvas is rounded to whole levels, and the picture made of it is once more.
constexpr double fadedRounding = 1.5;

}  // namespace

TEST_CASE("Fading ink has one factor in the strokes alone, the fill and the key, and undo brings it back") {
    const KelFolder folder(FadingSession());
    REQUIRE_EQ(folder.Run("play s.json --overlay ink%02d.png --fill fill%02d.png --key key%02d.png").exitCode, 0);
    for (const std::string output : {"ink", "fill", "key"}) {
        CAPTURE(output);
        // Only strokes alone say in their alpha how much ink there is.
        const std::size_t channels = output == "ink" ? 4 : 3;
        const auto whole = InkOf(folder, output, lastWhole);
        CHECK_GT(whole[0][0], 200);
        for (int k = 0; k <= fadingFields; ++k) {
            CAPTURE(k);
            const auto faded = InkOf(folder, output, lastWhole + k);
            for (std::size_t stroke = 0; stroke < 2; ++stroke)
                for (std::size_t channel = 0; channel < channels; ++channel)
                    CHECK_LE(std::abs(faded[stroke][channel] - whole[stroke][channel] * FactorAt(k)), fadedRounding);
        }
        CHECK_EQ(InkOf(folder, output, 49)[0][0], 0);
        CHECK(InkOf(folder, output, 50) == whole);
    }
}

TEST_CASE("Where ink fades the picture under it comes through by the same factor") {
    const KelFolder folder(FadingSession());
    REQUIRE_EQ(folder.Run("play s.json --out out%02d.png --overlay ink%02d.png").exitCode, 0);
    const auto under = InkOf(folder, "out", 3);
    const auto ink = InkOf(folder, "ink", lastWhole);
    for (int k = 0; k <= fadingFields; ++k) {
        CAPTURE(k);
        const auto seen = InkOf(folder, "out", lastWhole + k);
        for (std::size_t stroke = 0; stroke < 2; ++stroke)
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const double cover = ink[stroke][3] * FactorAt(k) / 255;
                const double wanted = ink[stroke][channel] * FactorAt(k) + under[stroke][channel] * (1 - cover);
                CHECK_LE(std::abs(seen[stroke][channel] - wanted), fadedRounding);
            }
    }
}

}  // namespace kel
