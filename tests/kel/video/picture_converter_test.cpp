#include "kel/video/picture_converter.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>

#include "tests/kel/pixels.h"

namespace kel {
namespace {

using testing::Pixel;

// A frame of one colour; levels: one for each plane.
AvFrame PlainFrame(AVPixelFormat format, int width, int height, const std::array<std::uint8_t, 4>& levels) {
    AvFrame frame = NewFrame();
    frame->format = format;
    frame->width = width;
    frame->height = height;
    REQUIRE_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    for (std::size_t plane = 0; plane < 4 && frame->data[plane] != nullptr; ++plane)
        std::fill_n(frame->data[plane], frame->linesize[plane] * height, levels[plane]);  // without subsampling
    return frame;
}

// Grey that changes from pixel to pixel, as most videos store it: a colour for each 2 x 2 pixels.
AvFrame GreyFrame(int width, int height) {
    AvFrame frame = NewFrame();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = width;
    frame->height = height;
    REQUIRE_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            frame->data[0][y * frame->linesize[0] + x] = static_cast<std::uint8_t>(16 + (x * 7 + y * 9) % 219);
    for (const std::size_t plane : {1U, 2U})
        std::fill_n(frame->data[plane], frame->linesize[plane] * ((height + 1) / 2), std::uint8_t{128});
    return frame;
}

// Rounding: half a level for each of the three terms of a channel, and half for their sum.
void CheckConverted(const AvFrame& frame, const Pixel& wanted) {
    const picture_io::Picture picture = PictureConverter().Convert(*frame, frame->width, frame->height);
    CHECK_MESSAGE(testing::Difference(picture.At(frame->width / 2, frame->height / 2), wanted) <= 2,
                  testing::Text(picture.At(frame->width / 2, frame->height / 2)), "is not ", testing::Text(wanted));
}

constexpr std::array<std::uint8_t, 4> reddish{81, 90, 240, 77};  // luma, blue and red difference, alpha

// BT.601, narrow range: 1.164 * 65 = 75.7; red 75.7 + 1.596 * 112 = 254.4; green 75.7 + 0.392 * 38 - 0.813 * 112 =
// -0.5; blue 75.7 - 2.017 * 38 = -1.
constexpr Pixel byStandard{254, 0, 0, 255};
// BT.709, narrow range: red 75.7 + 1.793 * 112 = 276; green 75.7 + 0.213 * 38 - 0.533 * 112 = 24.1;
// blue 75.7 - 2.112 * 38 = -4.6.
constexpr Pixel byHigh{255, 24, 0, 255};

}  // namespace

TEST_CASE("A video's colours follow the matrix that it declares") {
    const AvFrame frame = PlainFrame(AV_PIX_FMT_YUV444P, 32, 32, reddish);
    frame->colorspace = AVCOL_SPC_SMPTE170M;
    CheckConverted(frame, byStandard);
    frame->colorspace = AVCOL_SPC_BT470BG;
    CheckConverted(frame, byStandard);
    frame->colorspace = AVCOL_SPC_BT709;
    CheckConverted(frame, byHigh);
}

TEST_CASE("A video that declares no matrix has that of its size") {
    CheckConverted(PlainFrame(AV_PIX_FMT_YUV444P, 1024, 16, reddish), byStandard);
    CheckConverted(PlainFrame(AV_PIX_FMT_YUV444P, 16, 576, reddish), byStandard);
    CheckConverted(PlainFrame(AV_PIX_FMT_YUV444P, 1026, 16, reddish), byHigh);
    CheckConverted(PlainFrame(AV_PIX_FMT_YUV444P, 16, 578, reddish), byHigh);
}

// BT.601, full range: red 76 + 1.402 * 127 = 254.1; green 76 + 0.344 * 43 - 0.714 * 127 = 0.1; blue 76 - 1.772 * 43 =
// -0.2.
TEST_CASE("A video's colours follow the range that it declares") {
    constexpr std::array<std::uint8_t, 4> fullRed{76, 85, 255, 255};
    const AvFrame frame = PlainFrame(AV_PIX_FMT_YUV444P, 32, 32, fullRed);
    frame->color_range = AVCOL_RANGE_JPEG;
    CheckConverted(frame, {254, 0, 0, 255});
    CheckConverted(PlainFrame(AV_PIX_FMT_YUVJ444P, 32, 32, fullRed), {254, 0, 0, 255});
}

// Grey 126 of the narrow range is (126 - 16) * 255 / 219 = 128.1.
TEST_CASE("Grey alone has the full range unless the video declares the narrow one") {
    const AvFrame frame = PlainFrame(AV_PIX_FMT_GRAY8, 32, 32, {126, 0, 0, 0});
    CheckConverted(frame, {126, 126, 126, 255});
    frame->color_range = AVCOL_RANGE_MPEG;
    CheckConverted(frame, {128, 128, 128, 255});
}

TEST_CASE("A video's alpha stays as it is") {
    const AvFrame frame = PlainFrame(AV_PIX_FMT_YUVA444P, 32, 32, reddish);
    CheckConverted(frame, {254, 0, 0, 77});
    CHECK_EQ(PictureConverter().Convert(*frame, 32, 32).At(5, 5)[3], 77);
}

// Widths at which the scaler writes in place, and at which it may write beyond a row.
TEST_CASE("Rows from the bottom are the same rows, whatever the width, and nothing is written beyond them") {
    for (const int width : {32, 64, 33, 50, 90, 160})
        for (const VideoConversion conversion : {VideoConversion::Exact, VideoConversion::Fast}) {
            CAPTURE(width);
            const AvFrame frame = GreyFrame(width, 24);
            PictureConverter converter;
            converter.SetConversion(conversion);
            picture_io::Picture upwards(width, 24);
            converter.ConvertInto(*frame, RowOrder::Up, upwards);
            CHECK_EQ(upwards == picture_io::Flipped(converter.Convert(*frame, width, 24)), true);
        }
}

TEST_CASE("Frames of another size are scaled to the video's") {
    const picture_io::Picture picture =
        PictureConverter().Convert(*PlainFrame(AV_PIX_FMT_YUV444P, 20, 30, reddish), 64, 48);
    CHECK_EQ(picture.width, 64);
    CHECK_EQ(picture.height, 48);
    CHECK_LE(testing::Difference(picture.At(63, 47), byStandard), 2);
}

}  // namespace kel
