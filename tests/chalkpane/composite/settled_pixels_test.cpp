#include "chalkpane/composite/settled_pixels.h"

#include <doctest/doctest.h>

#include <array>
#include <memory>
#include <random>
#include <vector>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/composite/borne_masks.h"
#include "chalkpane/composite/erase_row.h"
#include "chalkpane/composite/src_over_row.h"

using namespace chalkpane;

namespace {

constexpr std::uint32_t paint = 0xff405060U;  // 96, 80, 64 and 255 in memory
constexpr std::array opacities{1, 2, 77, 127, 128, 254, 255};

bool PaintLeaves(int channel, int colour, int mask, int opacity) {
    const auto s = static_cast<std::uint8_t>(colour);
    const auto d = static_cast<std::uint8_t>(channel);
    const std::array<std::uint8_t, 4> source{s, s, s, 255};
    std::array<std::uint8_t, 4> pixel{d, d, d, 255};
    OverPixel8(pixel.data(), source.data(), mask, opacity);
    return pixel[0] == d;
}

bool EraserLeaves(int channel, int mask, int opacity) {
    const auto d = static_cast<std::uint8_t>(channel);
    const auto m = static_cast<std::uint8_t>(mask);
    std::array<std::uint8_t, 4> pixel{d, d, d, d};
    EraseRow8Plain(pixel.data(), &m, 1, 1, opacity);
    return pixel[0] == d;
}

int BorneByPaint(int channel, int colour) {
    if (channel > colour) return 0;
    return borneByColour[static_cast<std::size_t>(colour - channel)];
}

std::vector<std::uint8_t> RandomBytes(std::mt19937& random, std::size_t count, unsigned most) {
    std::vector<std::uint8_t> bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() % (most + 1));
    return bytes;
}

// Random bytes of which a few are one more than `borne` allows.
std::vector<std::uint8_t> MaskUnder(std::mt19937& random, const std::vector<std::uint8_t>& borne, bool isBorne) {
    std::vector<std::uint8_t> mask(borne.size());
    for (std::size_t i = 0; i < mask.size(); ++i) mask[i] = static_cast<std::uint8_t>(random() % (borne[i] + 1U));
    if (!isBorne) {
        const std::size_t at = random() % mask.size();
        mask[at] = static_cast<std::uint8_t>(borne[at] + 1);
    }
    return mask;
}

Image Filled(std::int32_t width, std::int32_t height, std::array<std::uint8_t, 4> pixel) {
    Image canvas = Image::Colour(width, height, Depth::Eight, AlphaForm::Premultiplied);
    for (std::int32_t y = canvas.y0; y <= canvas.y1; ++y) {
        std::size_t i = 0;
        for (auto& channel : canvas.Row8(y)) channel = pixel[i++ % 4];
    }
    return canvas;
}

Image MaskOf(std::int32_t width, std::int32_t height, std::uint8_t value) {
    Image mask = Image::Mask(width, height, Depth::Eight);
    for (std::int32_t y = mask.y0; y <= mask.y1; ++y)
        for (auto& byte : mask.Row8(y)) byte = value;
    return mask;
}

}  // namespace

TEST_CASE("a channel bears every mask up to the one found, at any opacity, and at full opacity not the next") {
    bool stays = true;
    bool isGreatest = true;
    for (int s = 0; s < 256; ++s)
        for (int d = 0; d < 256; ++d) {
            const int most = BorneByPaint(d, s);
            for (int mask = 0; mask <= most; ++mask)
                for (const int opacity : opacities) stays = stays && PaintLeaves(d, s, mask, opacity);
            isGreatest = isGreatest && (most == 255 || !PaintLeaves(d, s, most + 1, 255));
        }
    CHECK(stays);
    CHECK(isGreatest);
}

TEST_CASE("a channel and all below it bear an eraser's masks up to the one found, and it does not bear the next") {
    bool stays = true;
    bool isGreatest = true;
    for (int channel = 0; channel < 256; ++channel) {
        const int most = borneByEraser[static_cast<std::size_t>(channel)];
        for (int d = 0; d <= channel; ++d)
            for (int mask = 0; mask <= most; ++mask) {
                for (const int opacity : opacities) stays = stays && EraserLeaves(d, mask, opacity);
                stays = stays && EraserLeaves(d, mask, 256);
            }
        bool nextChanges = most == 255;
        for (int d = 0; d <= channel && !nextChanges; ++d) nextChanges = !EraserLeaves(d, most + 1, 256);
        isGreatest = isGreatest && nextChanges;
    }
    CHECK(stays);
    CHECK(isGreatest);
}

// 257 / 3 is 85.7: 3 * 85 * 255 is 65025, 3 * 86 * 255 is 65790. Nothing bears a colour that it is above.
TEST_CASE("a pixel bears what the channel bears that is furthest from the colour") {
    const std::array<std::uint8_t, 20> pixels{96, 80,  64, 255, 96, 77,  63, 255, 97, 80,
                                              64, 255, 96, 80,  64, 254, 0,  0,   0,  0};
    std::array<std::uint8_t, 5> borne{};
    FindBornePlain(pixels.data(), paint, borne.data(), 5);
    CHECK(borne == std::array<std::uint8_t, 5>{255, 85, 0, 255, 1});
    const std::array<std::uint8_t, 8> toErase{0, 1, 0, 1, 0, 0, 0, 0};
    FindBornePlain(toErase.data(), 0, borne.data(), 2);
    CHECK_EQ(borne[0], 127);  // 127 / 255 is 0.498: half of 1 and more is left
    CHECK_EQ(borne[1], 255);
}

TEST_CASE("rows and masks are borne alike, plain and wide") {
    if (!builtWithAvx2 || !HasAvx2()) return;
    constexpr unsigned seed = 21;
    CAPTURE(seed);
    std::mt19937 random(seed);
    for (std::size_t count = 1; count <= 130; ++count)
        for (int round = 0; round < 20; ++round) {
            CAPTURE(count);
            const auto borne = RandomBytes(random, count, round % 2 == 0 ? 254 : 3);
            const bool isBorne = random() % 2 == 0;
            const auto mask = MaskUnder(random, borne, isBorne);
            REQUIRE_EQ(BearRowPlain(borne.data(), mask.data(), static_cast<std::ptrdiff_t>(count)), isBorne);
            REQUIRE_EQ(BearRowAvx2(borne.data(), mask.data(), static_cast<std::ptrdiff_t>(count)), isBorne);
            const auto pixels = RandomBytes(random, 4 * count, round % 3 == 0 ? 2 : 255);
            for (const std::uint32_t pixel : {0U, paint, 0xff010101U, 0xffffffffU}) {
                std::vector<std::uint8_t> plain(count);
                std::vector<std::uint8_t> wide(count);
                FindBornePlain(pixels.data(), pixel, plain.data(), static_cast<std::ptrdiff_t>(count));
                FindBorneAvx2(pixels.data(), pixel, wide.data(), static_cast<std::ptrdiff_t>(count));
                REQUIRE(plain == wide);
            }
        }
    for (std::int32_t width = 1; width <= 70; ++width)
        for (int round = 0; round < 8; ++round) {
            CAPTURE(width);
            constexpr std::int32_t height = 19;
            const auto step = static_cast<std::size_t>(MaskRows::RoomFor(width));
            const auto borne = RandomBytes(random, std::size_t{SettledPixels::rowStep} * (height + 1), 254);
            std::vector<std::uint8_t> rows(step * height);
            const std::size_t wrongRow = random() % (2 * height);
            for (std::size_t row = 0; row < height; ++row) {
                const auto* const first = borne.data() + row * SettledPixels::rowStep;
                const auto mask = MaskUnder(random, {first, first + width}, row != wrongRow);
                std::copy(mask.begin(), mask.end(), rows.begin() + static_cast<std::ptrdiff_t>(row * step));
            }
            const MaskRows mask{rows.data(), static_cast<std::ptrdiff_t>(step), width, height};
            REQUIRE_EQ(BearMaskPlain(borne.data(), mask), wrongRow >= height);
            REQUIRE_EQ(BearMaskAvx2(borne.data(), mask), wrongRow >= height);
        }
}

// 3 below the colour in one channel: 85 is borne, 86 is not.
TEST_CASE("of a part of a dab the rows are left that its mask may change") {
    Image canvas = Filled(40, 30, {96, 77, 64, 255});
    canvas.Translate(100, -10);
    const auto pixels = std::make_unique<SettledPixels>();
    pixels->Serve(canvas, paint);
    const Rect dab(95, -14, 115, 6);
    const Rect part = dab.Intersection(canvas);
    const Image weak = MaskOf(21, 21, 85);
    CHECK_EQ(pixels->RestlessRows(weak, dab, part), part);  // nothing was looked at
    pixels->Look(part);
    CHECK_FALSE(pixels->RestlessRows(weak, dab, part).IsValid());
    CHECK_EQ(pixels->RestlessRows(MaskOf(21, 21, 86), dab, part), part);
    Image strongInTwoRows = MaskOf(21, 21, 85);
    strongInTwoRows.Row8(9)[20] = 86;  // y -5 of the plane, x 115
    strongInTwoRows.Row8(12)[5] = 86;  // y -2, x 100
    strongInTwoRows.Row8(16)[4] = 86;  // x 99, beside the canvas
    CHECK_EQ(pixels->RestlessRows(strongInTwoRows, dab, part), Rect(100, -5, 115, -2));
    const Rect beyond = Rect(100, -10, 116, 6);
    CHECK_EQ(pixels->RestlessRows(MaskOf(17, 17, 1), beyond, beyond), beyond);  // column 116 was not looked at
    pixels->Serve(canvas, paint);
    CHECK_EQ(pixels->RestlessRows(weak, dab, part), part);
}
