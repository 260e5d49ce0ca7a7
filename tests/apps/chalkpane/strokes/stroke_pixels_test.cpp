#include <doctest/doctest.h>

#include "apps/chalkpane/filtering/picture_image.h"
#include "chalkpane/composite/blending_modes.h"
#include "cli/error.h"
#include "tests/apps/chalkpane/strokes/painting.h"
#include "tests/cli/temporary_folder.h"

namespace chalkpane::app {
namespace {

using cli::testing::TemporaryFolder;
using testing::At14;
using testing::At8;
using testing::FileOf;
using testing::in14Bits;
using testing::Painted;
using testing::PaintedPixels;

const std::string smallCanvas = R"({"width": 5, "height": 4})";
const std::string orangeDab = R"({"brush": {"color": "#ff8000", "Profile Name": "OnePixel"}, "points": [[2.5, 1.5]]})";

// 200, 100, 50 in 8 bits; 12850, 6425, 3212 in 14: a byte c widens to c * 64 + c / 4.
const std::string brownCanvas = R"({"width": 1, "height": 1, "color": "#c86432"})";

std::string GreyDab(const std::string& settings) {
    return R"({"brush": {"color": "#808080", "Profile Name": "OnePixel", )" + settings +
           R"(}, "points": [[0.5, 0.5]]})";
}

// A picture of `width` x 1 pixels.
void WriteRow(const std::filesystem::path& file, const std::vector<std::array<std::uint8_t, 4>>& pixels) {
    picture_io::Picture picture(static_cast<std::int32_t>(pixels.size()), 1);
    for (std::size_t x = 0; x < pixels.size(); ++x) picture.Set(static_cast<std::int32_t>(x), 0, pixels[x]);
    picture_io::WritePicture(picture, file);
}

}  // namespace

// At full opacity w = ((255 + 1) * (255 + 1) >> 8) * 255 = 65280. Red: 255 * 65280 >> 16 = 254; green 128 * 65280 >> 16
// = 127; alpha 65280 * 255 >> 16 = 254.
TEST_CASE("A dab of one pixel lands on the pixel around its point, counted from the left and the top") {
    const auto canvas = Painted(FileOf(smallCanvas, orangeDab));
    CHECK_EQ(At8(*canvas, 2, 1), Pixel8{0, 127, 254, 254});
    CHECK_EQ(PaintedPixels(*canvas), 1);
    CHECK_EQ(canvas->flag, 1);  // premultiplied
}

// DIFFERS: 14 bits replace wholly. 128 widens to 128 * 64 + 32 = 8224, and Scale14 by full scale keeps it.
TEST_CASE("In 14 bits a full dab leaves its own color") {
    const auto canvas = Painted(FileOf(smallCanvas, orangeDab, in14Bits));
    CHECK_EQ(At14(*canvas, 2, 1), Pixel14{0, 8224, 16383, 16383});
    CHECK_EQ(PaintedPixels(*canvas), 1);
}

// (128 * 200 + 128) = 25728, (25728 + 100) >> 8 = 100; green: (12928 + 50) >> 8 = 50; blue: (6528 + 25) >> 8 = 25.
TEST_CASE("Multiply darkens a flat picture by the product of both") {
    const auto canvas = Painted(FileOf(brownCanvas, GreyDab(R"("Blend Mode": "Multiply")")));
    CHECK_EQ(At8(*canvas, 0, 0), Pixel8{25, 50, 100, 255});
}

// Red: t = 8224 * 12850 + 8192 = 105686592, (t + 6450) >> 14 = 6450. Green: 8224 * 6425 + 8192 = 52847392, (t + 3225)
// >> 14 = 3225. Blue: 8224 * 3212 + 8192 = 26423680, (t + 1612) >> 14 = 1612.
TEST_CASE("Multiply does so in 14 bits") {
    const auto canvas = Painted(FileOf(brownCanvas, GreyDab(R"("Blend Mode": "Multiply")"), in14Bits));
    CHECK_EQ(At14(*canvas, 0, 0), Pixel14{1612, 3225, 6450, 16383});
}

// op = 0.5 * 255.001 = 127; w = 256 * 127 = 32512; alpha 32512 * 255 >> 16 = 126. A quarter: op 63, w 16128, alpha 62.
TEST_CASE("Pressure and opacity multiply") {
    const auto alphaOf = [](const std::string& settings, const std::string& point) {
        const auto canvas = Painted(FileOf(
            smallCanvas, R"({"brush": {"Profile Name": "OnePixel")" + settings + R"(}, "points": [)" + point + "]}"));
        return static_cast<int>(At8(*canvas, 0, 0).alpha);
    };
    CHECK_EQ(alphaOf("", "[0.5, 0.5, 0.5]"), 126);
    CHECK_EQ(alphaOf(R"(, "Opacity": 0.5)", "[0.5, 0.5]"), 126);
    CHECK_EQ(alphaOf(R"(, "Opacity": 0.5)", "[0.5, 0.5, 0.5]"), 62);
    CHECK_EQ(alphaOf("", "[0.5, 0.5, 0]"), 0);
}

TEST_CASE("An eraser at full opacity leaves nothing of a pixel, in either depth") {
    const std::string eraser = GreyDab(R"("Source Type": "Eraser")");
    CHECK_EQ(At8(*Painted(FileOf(brownCanvas, eraser)), 0, 0), Pixel8{});
    CHECK_EQ(At14(*Painted(FileOf(brownCanvas, eraser, in14Bits)), 0, 0), Pixel14{});
}

// Alpha 0x80 = 128: 8 bits 128, premultiplied 255 * 128 / 255 = 128. In 14 bits 128 / 255 of 16383 is 8223.7, so 8224.
TEST_CASE("A canvas has its color, premultiplied by its alpha") {
    const std::string halfRed = R"({"width": 1, "height": 1, "color": "#ff000080"})";
    CHECK_EQ(At8(*Painted(FileOf(halfRed, "")), 0, 0), Pixel8{0, 0, 128, 128});
    CHECK_EQ(At14(*Painted(FileOf(halfRed, "", in14Bits)), 0, 0), Pixel14{0, 0, 8224, 8224});
    CHECK_EQ(At8(*Painted(FileOf(R"({"width": 1, "height": 1})", "")), 0, 0), Pixel8{});
}

TEST_CASE("A clone reads the canvas at its offset, to the right and up") {
    // Dabs of one pixel: red at (2, 0), green at (0, 2). The clone at (0, 0) reads two to the right, that at (1, 3)
    // one to the left and one up.
    const std::string dabs = R"(
        {"brush": {"color": "#ff0000", "Profile Name": "OnePixel"}, "points": [[2.5, 0.5]]},
        {"brush": {"color": "#00ff00", "Profile Name": "OnePixel"}, "points": [[0.5, 2.5]]},
        {"brush": {"picture": "canvas", "Source Type": "Clone", "Offset": [2, 0], "Profile Name": "OnePixel"},
         "points": [[0.5, 0.5]]},
        {"brush": {"picture": "canvas", "Source Type": "Clone", "Offset": [-1, 1], "Profile Name": "OnePixel"},
         "points": [[1.5, 3.5]]})";
    const auto canvas = Painted(FileOf(smallCanvas, dabs, in14Bits));
    CHECK_EQ(At14(*canvas, 0, 0), Pixel14{0, 0, 16383, 16383});
    CHECK_EQ(At14(*canvas, 1, 3), Pixel14{0, 16383, 0, 16383});
    CHECK_EQ(PaintedPixels(*canvas), 4);
}

TEST_CASE("A picture lies where it is put, its top left corner counted from the top left of the canvas") {
    const TemporaryFolder folder;
    WriteRow(folder / "row.png", {{255, 0, 0, 255}, {0, 0, 255, 255}});
    // The row's second pixel, blue, lies at (3, 2).
    const std::string brush = R"({"picture": {"file": "row.png", "at": [2, 2]}, "Source Type": "Image",
                                  "Profile Name": "OnePixel"})";
    const auto canvas = Painted(FileOf(smallCanvas, R"({"brush": )" + brush + R"(, "points": [[3.5, 2.5]]})", in14Bits),
                                folder / "s.json");
    CHECK_EQ(At14(*canvas, 3, 2), Pixel14{16383, 0, 0, 16383});
    CHECK_EQ(PaintedPixels(*canvas), 1);
}

// Frame 0 is passed over: the running number moves before it is used.
TEST_CASE("Strokes in a row with one named brush go on with the frames of its cutout") {
    const TemporaryFolder folder;
    WriteRow(folder / "frames.png", {{255, 0, 0, 255}, {0, 255, 0, 255}, {0, 0, 255, 255}});
    const std::string strokes =
        R"({"brush": "stamp", "points": [[0.5, 0.5]]}, {"brush": "stamp", "points": [[1.5, 0.5]]},
                                   {"brush": "stamp", "points": [[2.5, 0.5]]})";
    const std::string brushes = R"(, "brushes": {"stamp": {"Source Type": "Cutout", "File": "frames.png", "Columns": 3,
                                   "Selection Policy": "Forward"}})";
    const auto canvas = Painted(FileOf(smallCanvas, strokes, in14Bits + brushes), folder / "s.json");
    CHECK_EQ(At14(*canvas, 0, 0), Pixel14{0, 16383, 0, 16383});
    CHECK_EQ(At14(*canvas, 1, 0), Pixel14{16383, 0, 0, 16383});
    CHECK_EQ(At14(*canvas, 2, 0), Pixel14{0, 0, 16383, 16383});
}

TEST_CASE("A brush that is like another has what it does not say itself") {
    const std::string brushes = R"(, "brushes": {"dab": {"color": "#ff0000", "Profile Name": "OnePixel"},
                                   "green": {"like": "dab", "color": "#00ff00"}})";
    const std::string strokes = R"({"brush": "green", "points": [[0.5, 0.5]]},
                                   {"brush": {"like": "dab", "Opacity": 0}, "points": [[1.5, 0.5]]},
                                   {"brush": "dab", "points": [[2.5, 0.5]]})";
    const auto canvas = Painted(FileOf(smallCanvas, strokes, in14Bits + brushes));
    CHECK_EQ(At14(*canvas, 0, 0), Pixel14{0, 16383, 0, 16383});
    CHECK_EQ(At14(*canvas, 2, 0), Pixel14{0, 0, 16383, 16383});
    CHECK_EQ(PaintedPixels(*canvas), 2);
}

// White on black is full coverage in the white half; resized by 2 * 2 / 4 = 1 it keeps its four pixels a side.
TEST_CASE("A mask's lightness is the coverage of a dab") {
    const TemporaryFolder folder;
    picture_io::Picture mask(4, 4);
    for (std::int32_t y = 0; y < 4; ++y)
        for (std::int32_t x = 0; x < 4; ++x)
            mask.Set(
                x, y,
                x < 2 ? std::array<std::uint8_t, 4>{255, 255, 255, 255} : std::array<std::uint8_t, 4>{0, 0, 0, 255});
    picture_io::WritePicture(mask, folder / "mask.png");
    const std::string canvas = R"({"width": 8, "height": 8})";
    for (const char* brush :
         {R"({"mask": "mask.png", "Size": 2})", R"({"Profile Type": "Image", "Profile Mask": "mask.png"})"}) {
        CAPTURE(brush);
        const auto painted =
            Painted(FileOf(canvas, R"({"brush": )" + std::string(brush) + R"(, "points": [[4, 4]]})", in14Bits),
                    folder / "s.json");
        CHECK_EQ(PaintedPixels(*painted), 8);
        CHECK_EQ(At14(*painted, 2, 2).alpha, 16383);
        CHECK_EQ(At14(*painted, 3, 5).alpha, 16383);
        CHECK_EQ(At14(*painted, 4, 4).alpha, 0);
    }
}

// On an opaque canvas a full dab leaves what the kernel of its mode says, scaled by full coverage. DIFFERS: mode 0 has
// arithmetic of its own, which the tests above pin.
TEST_CASE("All 28 blend modes paint what their kernels say, in both depths") {
    for (std::int32_t mode = 1; mode < blendModeCount; ++mode) {
        CAPTURE(mode);
        const std::string number = R"("Blend Mode": )" + std::to_string(mode);
        const auto pixel8 = At8(*Painted(FileOf(brownCanvas, GreyDab(number))), 0, 0);
        const std::array<std::uint8_t, 4> source8{128, 128, 128, 255};
        std::array<std::uint8_t, 4> made8{50, 100, 200, 255};
        BlendRow8(1, mode, source8, made8, made8);
        CHECK_EQ(pixel8, Pixel8{made8[0], made8[1], made8[2], 255});

        const auto pixel14 = At14(*Painted(FileOf(brownCanvas, GreyDab(number), in14Bits)), 0, 0);
        const std::array<std::uint16_t, 4> source14{8224, 8224, 8224, 16383};
        std::array<std::uint16_t, 4> made14{3212, 6425, 12850, 16383};
        BlendRow14(1, mode, source14, made14, made14);
        const auto scaled = [](std::uint16_t word) {
            return static_cast<std::uint16_t>(PixelFormat14::Scale(word, 16383));
        };
        CHECK_EQ(pixel14, Pixel14{scaled(made14[0]), scaled(made14[1]), scaled(made14[2]), 16383});
    }
}

TEST_CASE("A blend mode goes by its name as well as by its number") {
    for (std::size_t mode = 0; mode < BlendModeNames.size(); ++mode) {
        if (BlendModeNames[mode].empty()) continue;
        CAPTURE(mode);
        const auto byName =
            Painted(FileOf(brownCanvas, GreyDab(R"("Blend Mode": ")" + std::string(BlendModeNames[mode]) + '"')));
        const auto byNumber = Painted(FileOf(brownCanvas, GreyDab(R"("Brush Blend Mode": )" + std::to_string(mode))));
        CHECK_EQ(At8(*byName, 0, 0), At8(*byNumber, 0, 0));
    }
}

TEST_CASE("All nine sources paint, in both depths") {
    const TemporaryFolder folder;
    WriteRow(folder / "row.png", {{255, 0, 0, 255}, {0, 0, 255, 255}, {9, 8, 7, 255}, {1, 2, 3, 255}, {4, 5, 6, 255}});
    for (const std::string& depth : {std::string(), in14Bits}) {
        for (int type = 0; type <= 8; ++type) {
            CAPTURE(depth);
            CAPTURE(type);
            const std::string brush = R"({"color": "#123456", "picture": "row.png", "File": "row.png", "Size": 2,
                                          "Source Type": )" +
                                      std::to_string(type) + "}";
            const std::string canvas = R"({"width": 9, "height": 3, "color": "#c0c0c0"})";
            const auto before = Painted(FileOf(canvas, "", depth), folder / "s.json");
            const auto after =
                Painted(FileOf(canvas, R"({"brush": )" + brush + R"(, "points": [[2.5, 0.5], [4.5, 1.5]]})", depth),
                        folder / "s.json");
            CHECK_FALSE(testing::SamePixels(*before, *after));
        }
    }
}

}  // namespace chalkpane::app
