#include "chalkpane/composite/settled_tiles.h"

#include <doctest/doctest.h>

#include <array>
#include <vector>

#include "chalkpane/composite/erase_row.h"
#include "chalkpane/composite/src_over_row.h"

using namespace chalkpane;

namespace {

constexpr std::uint32_t paint = 0xff405060U;  // 96, 80, 64 and 255 in memory

Image Canvas(std::int32_t width, std::int32_t height) {
    return Image::Colour(width, height, Depth::Eight, AlphaForm::Premultiplied);
}

void Fill(Image& canvas, const std::array<std::uint8_t, 4>& pixel) {
    for (std::int32_t y = canvas.y0; y <= canvas.y1; ++y) {
        std::size_t i = 0;
        for (auto& channel : canvas.Row8(y)) channel = pixel[i++ % 4];
    }
}

void LookOften(SettledTiles& tiles, const Rect& dab) {
    for (int i = 0; i < 8; ++i) tiles.Look(dab);
}

}  // namespace

TEST_CASE("a channel that rests is changed by no mask and no opacity") {
    bool stays = true;
    for (int s = 0; s < 256; ++s) {
        const auto colour = static_cast<std::uint8_t>(s);
        const std::array<std::uint8_t, 4> source{colour, colour, colour, 255};
        for (int d = 0; d < 256; ++d) {
            const auto channel = static_cast<std::uint8_t>(d);
            if (!SettledTiles::Rests(channel, colour)) continue;
            for (int mask = 0; mask < 256; ++mask)
                for (int opacity = 0; opacity < 256; ++opacity)
                    for (const std::uint8_t alpha : {std::uint8_t{254}, std::uint8_t{255}}) {
                        const std::array<std::uint8_t, 4> before{channel, channel, channel, alpha};
                        std::array<std::uint8_t, 4> pixel = before;
                        OverPixel8(pixel.data(), source.data(), mask, opacity);
                        stays = stays && pixel == before;
                    }
        }
    }
    CHECK(stays);
}

TEST_CASE("an erased pixel stays erased under every mask and opacity") {
    bool stays = true;
    for (int m = 0; m < 256; ++m)
        for (int opacity = 0; opacity <= 256; ++opacity) {
            const auto mask = static_cast<std::uint8_t>(m);
            std::array<std::uint8_t, 4> pixel{};
            EraseRow8Plain(pixel.data(), &mask, 1, 1, opacity);
            stays = stays && pixel == std::array<std::uint8_t, 4>{};
        }
    CHECK(stays);
}

// One below full coverage of a channel does not rest under it when it is two below, nor when it is one above.
TEST_CASE("a channel rests at the colour and one below it alone") {
    CHECK(SettledTiles::Rests(96, 96));
    CHECK(SettledTiles::Rests(95, 96));
    CHECK_FALSE(SettledTiles::Rests(94, 96));
    CHECK_FALSE(SettledTiles::Rests(97, 96));
    CHECK_FALSE(SettledTiles::Rests(255, 0));
}

TEST_CASE("tiles are held to be settled where all their pixels rest, and nowhere else") {
    Image canvas = Canvas(100, 60);
    Fill(canvas, {96, 79, 64, 254});
    SettledTiles tiles;
    const Rect dab(41, 21, 45, 23);
    CHECK_FALSE(tiles.Hold(dab));
    tiles.Serve(canvas, paint, 8);
    CHECK_FALSE(tiles.Hold(dab));
    LookOften(tiles, dab);
    CHECK(tiles.Hold(dab));
    CHECK_FALSE(tiles.Hold({41, 21, 48, 23}));  // the next tile begins at 48
    // Wide enough for the tiles around that of the middle (40, 30), which begins at (40, 24): from (32, 16) to (55,
    // 39).
    LookOften(tiles, {20, 10, 60, 50});
    CHECK(tiles.Hold({32, 16, 55, 39}));
    CHECK_FALSE(tiles.Hold({32, 16, 56, 39}));
    canvas.Row8(5)[4 * 99] = 94;
    LookOften(tiles, {97, 2, 99, 4});  // the last column of tiles has 4 pixels, from 96 on
    CHECK_FALSE(tiles.Hold({97, 2, 99, 4}));
    canvas.Row8(5)[4 * 99] = 96;
    LookOften(tiles, {97, 2, 120, 4});
    CHECK(tiles.Hold({97, 2, 99, 4}));
    CHECK(tiles.Hold({97, 2, 500, 4}));  // beyond the canvas there is nothing to change
}

TEST_CASE("another colour, another canvas and one that is too large begin with nothing settled") {
    Image canvas = Canvas(64, 64);
    Fill(canvas, {96, 80, 64, 255});
    const Image other = Canvas(64, 64);
    const Image large = Canvas(1025, 8);
    const Image deep = Image::Colour(64, 64, Depth::Fourteen, AlphaForm::Premultiplied);
    const Rect dab(10, 10, 12, 12);
    SettledTiles tiles;
    const auto settle = [&] {
        tiles.Serve(canvas, paint, 8);
        LookOften(tiles, dab);
        return tiles.Hold(dab);
    };
    CHECK(settle());
    tiles.Serve(canvas, paint, 8);
    CHECK(tiles.Hold(dab));
    tiles.Serve(canvas, 0xff000000U, 8);
    CHECK_FALSE(tiles.Hold(dab));
    for (const Image* image : {&other, &large, &deep}) {
        REQUIRE(settle());
        tiles.Serve(*image, paint, 8);
        LookOften(tiles, dab);
        CHECK_FALSE(tiles.Hold(dab));
    }
    tiles.Serve(other, 0, 8);  // erased all over
    LookOften(tiles, dab);
    CHECK(tiles.Hold(dab));
}

// Tiles are 8 by 8. A row of them is looked at with every fourth dab, so after 32 all eight were.
TEST_CASE("of a wide dab the tiles that do not rest are left, and rows of them that are alike are one part") {
    Image canvas = Canvas(64, 64);
    canvas.Row8(20)[4 * 20] = 9;
    canvas.Row8(28)[4 * 20] = 9;
    canvas.Row8(60)[4 * 63] = 9;
    SettledTiles tiles;
    tiles.Serve(canvas, 0, 8);
    const auto parts = [&tiles](const Rect& dab) {
        std::vector<Rect> all;
        tiles.VisitRestless(dab, [&](const Rect& part) { all.push_back(part); });
        return all;
    };
    const Rect dab(-10, 5, 80, 90);
    CHECK(parts(dab) == std::vector<Rect>{{0, 5, 63, 63}});
    for (int i = 0; i < 40; ++i) tiles.Look({0, 0, 63, 63});
    CHECK(parts(dab) == std::vector<Rect>{{16, 16, 23, 31}, {56, 56, 63, 63}});
    CHECK(parts({18, 19, 60, 22}) == std::vector<Rect>{{18, 19, 23, 22}});
    CHECK(parts({30, 0, 61, 40}).empty());
    CHECK(parts({0, 0, 15, 15}) == std::vector<Rect>{{0, 0, 15, 15}});  // not wide
}

TEST_CASE("after many dabs of an eraser all tiles were looked at, wherever the dabs were") {
    const Image canvas = Canvas(1024, 1024);
    SettledTiles tiles;
    tiles.Serve(canvas, 0, 8);
    for (int i = 0; i < 2047; ++i) tiles.Look({500, 500, 520, 520});
    CHECK_FALSE(tiles.Hold({0, 0, 1023, 1023}));
    tiles.Look({500, 500, 520, 520});
    CHECK(tiles.Hold({0, 0, 1023, 1023}));
}
