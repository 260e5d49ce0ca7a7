#include "kel/video/animation_packets.h"

#include <doctest/doctest.h>

#include <random>

#include "kel/video/video_reader.h"
#include "kel/video/video_writer.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;

std::vector<int> Bytes(std::span<const std::uint8_t> packet) { return {packet.begin(), packet.end()}; }

// Changes something within a part of it: runs, single pixels, and some that stay.
PicturePart Change(picture_io::Picture& picture, std::mt19937& random) {
    const auto below = [&](std::int32_t limit) {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(limit));
    };
    PicturePart part;
    part.x = below(picture.width);
    part.y = below(picture.height);
    part.width = 1 + below(picture.width - part.x);
    part.height = 1 + below(picture.height - part.y);
    for (std::int32_t y = part.y; y < part.y + part.height; ++y)
        for (std::int32_t x = part.x; x < part.x + part.width;) {
            const testing::Pixel pixel{static_cast<std::uint8_t>(random()), static_cast<std::uint8_t>(random()),
                                       static_cast<std::uint8_t>(below(2) * 255), static_cast<std::uint8_t>(random())};
            const bool stays = below(4) == 0;
            for (std::int32_t length = below(3) == 0 ? 1 + below(400) : 1; length > 0 && x < part.x + part.width;
                 --length, ++x)
                if (!stays) picture.Set(x, y, pixel);
        }
    return part;
}

}  // namespace

// A length of 4 bytes, a header of 2, then rows: a skip and one more, codes, and 255; at last 0.
TEST_CASE("A packet names the rows that changed, passes over what lies before them, and ends") {
    picture_io::Picture picture(3, 2);
    AnimationPackets packets(100);
    // Both rows are runs of three pixels of nothing, -3.
    CHECK_EQ(Bytes(packets.Make(picture, {})),
             std::vector<int>{0, 0, 0, 21, 0, 0, 1, 253, 0, 0, 0, 0, 255, 1, 253, 0, 0, 0, 0, 255, 0});
    CHECK(packets.IsKey());
    picture.Set(1, 1, {10, 20, 30, 40});
    // Rows from 1, one of them; one pixel is passed over; one comes as it is, alpha first.
    CHECK_EQ(Bytes(packets.Make(picture, {1, 1, 1, 1})),
             std::vector<int>{0, 0, 0, 22, 0, 8, 0, 1, 0, 0, 0, 1, 0, 0, 2, 1, 40, 10, 20, 30, 255, 0});
    CHECK_FALSE(packets.IsKey());
    CHECK_EQ(Bytes(packets.Make(picture, {})), std::vector<int>{0, 0, 0, 7, 0, 0, 0});
}

TEST_CASE("A video written by what changed gives back every pixel, from any frame on") {
    for (const std::int32_t width : {1, 7, 130, 600}) {
        CAPTURE(width);
        const TemporaryFolder folder;
        std::mt19937 random(static_cast<std::uint32_t>(width));
        std::vector<picture_io::Picture> pictures;
        picture_io::Picture picture(width, 9);
        VideoWriter writer(folder / "x.mov", {width, 9, 50, true});
        for (int frame = 0; frame < 60; ++frame) {
            PicturePart part;
            if (frame % 5 != 3) part = Change(picture, random);
            // What is named beyond the picture is nothing.
            if (frame % 7 == 0) part.width += 1000;
            writer.WriteChanged(picture, part);
            pictures.push_back(picture);
        }
        writer.Close();
        writer.Commit();
        VideoReader reader(folder / "x.mov");
        REQUIRE_EQ(reader.FrameCount(), 60);
        for (const std::int64_t frame : {0, 1, 2, 24, 25, 26, 59, 40, 51, 3}) {
            CAPTURE(frame);
            CHECK(reader.ReadFrame(frame) == pictures[static_cast<std::size_t>(frame)]);
        }
    }
}

TEST_CASE("Formats that know nothing of changes have the same frames") {
    const TemporaryFolder folder;
    picture_io::Picture picture(40, 30);
    VideoWriter writer(folder / "x.mkv", {40, 30, 50, true});
    writer.WriteChanged(picture, {});
    picture.Set(3, 4, {1, 2, 3, 4});
    writer.WriteChanged(picture, {3, 4, 1, 1});
    writer.WriteChanged(picture, {});
    writer.Close();
    writer.Commit();
    VideoReader reader(folder / "x.mkv");
    REQUIRE_EQ(reader.FrameCount(), 3);
    CHECK(reader.ReadFrame(0) == picture_io::Picture(40, 30));
    CHECK(reader.ReadFrame(1) == picture);
    CHECK(reader.ReadFrame(2) == picture);
}

}  // namespace kel
