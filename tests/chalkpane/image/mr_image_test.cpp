#include "chalkpane/image/mr_image.h"

#include <doctest/doctest.h>

#include <cstdint>
#include <limits>
#include <memory>

#include "chalkpane/image/halve_image.h"
#include "tests/reference/picture.h"

using namespace chalkpane;

namespace {

constexpr PixelType colour = PixelType::Colour;

Image Noise(std::int32_t width, std::int32_t height) {
    Image image(width, height, colour, Depth::Eight, AlphaForm::Straight);
    reference::FillWithNoise(image, 12);
    return image;
}

bool SamePixels(const Image& a, const Image& b) {
    return reference::Same(reference::Picture(a), reference::Picture(b));
}

}  // namespace

TEST_CASE("A fresh multi-resolution image shares its source and has its definition") {
    const Image source(Rect(2, 3, 20, 30), colour, Depth::Fourteen, AlphaForm::Premultiplied);
    const ImageMRImage picture(source);
    CHECK(picture.Bounds() == source.Bounds());
    CHECK_EQ(picture.depth, 1);
    CHECK_EQ(picture.base.buffer, source.buffer);
    CHECK_EQ(picture.maxLevel, 0);
    CHECK_EQ(picture.hasPyramid, 0);
    CHECK_EQ(picture.GetScale(), 1.0);
    CHECK_EQ(picture.GetScaleY(), 1.0);
    CHECK_EQ(picture.GetOffsetX(), 0.0);
    CHECK_EQ(picture.GetOffsetY(), 0.0);
    CHECK_FALSE(picture.IsResolutionFree());
}

TEST_CASE("The levels of 1024 are 9: both sizes stay above 1") {
    const auto levels = [](std::int32_t width, std::int32_t height) {
        return ImageMRImage(Image(width, height, PixelType::Mask, Depth::Eight, AlphaForm::Straight)).LevelCount();
    };
    CHECK_EQ(levels(1024, 1024), 9);
    CHECK_EQ(levels(1024, 8), 2);  // 4, 2
    CHECK_EQ(levels(4, 4), 1);
    CHECK_EQ(levels(3, 3), 0);
    CHECK_EQ(levels(1, 100), 0);
    CHECK_EQ(levels(0, 0), 0);
}

TEST_CASE("Level 0 and full size are the base itself") {
    ImageMRImage picture(Noise(16, 16));
    CHECK_EQ(picture.GetWholeLevelImage(0, false, 0), &picture.base);
    CHECK_EQ(picture.GetWholeLevelImage(-3, false, 0), &picture.base);
    CHECK_EQ(picture.GetWholeLevelImage(2, true, 0), &picture.base);
    CHECK_EQ(picture.GetWholeLevelImage(std::numeric_limits<double>::quiet_NaN(), false, 0), &picture.base);
    CHECK_EQ(picture.GetScale(), 1.0);
}

TEST_CASE("Whole levels are repeated halvings, whatever the rectangle") {
    const Image source = Noise(37, 20);
    ImageMRImage picture(source);
    const auto half = HalveImage(source, 0);
    const auto quarter = HalveImage(*half, 0);
    CHECK(SamePixels(*picture.GetLevelImage(Rect(1, 1, 2, 2), 1, false, 5), *half));
    CHECK_EQ(picture.GetScale(), 0.5);
    CHECK(SamePixels(*picture.GetWholeLevelImage(2, false, 0), *quarter));
    CHECK_EQ(picture.GetScale(), 0.25);
}

// Level 2.5: f = -1.5 and -0.5 halve, then f = 0.5 blends and stays at the size of a quarter.
TEST_CASE("A level between two is whole halvings and a blended one at full size of its input") {
    const Image source = Noise(40, 40);
    ImageMRImage picture(source);
    const auto quarter = HalveImage(*HalveImage(source, 0), 0);
    const Image* level = picture.GetWholeLevelImage(2.5, false, 0);
    CHECK(SamePixels(*level, *HalveImage(*quarter, 0.5)));
    CHECK_EQ(level->Width(), 10);
    CHECK_EQ(picture.GetScale(), 0.25);
}

TEST_CASE("A last step of almost 1 is a true halving") {
    const Image source = Noise(16, 16);
    ImageMRImage picture(source);
    CHECK_EQ(picture.GetWholeLevelImage(0.9995, false, 0)->Width(), 8);  // f = 0.0005
    CHECK_EQ(picture.GetScale(), 0.5);
    CHECK_EQ(picture.GetWholeLevelImage(0.998, false, 0)->Width(), 16);  // f = 0.002
    CHECK_EQ(picture.GetScale(), 1.0);
}

TEST_CASE("A level beyond the last stops at the first size of 1") {
    ImageMRImage picture(Noise(16, 5));
    // 16 x 5, 8 x 3, 4 x 2, 2 x 1.
    const Image* last = picture.GetWholeLevelImage(100, false, 0);
    CHECK_EQ(last->Width(), 2);
    CHECK_EQ(last->Height(), 1);
    CHECK_EQ(picture.GetScale(), 0.125);
    CHECK_EQ(picture.GetWholeLevelImage(std::numeric_limits<double>::infinity(), false, 0)->Width(), 2);
}

TEST_CASE("The working images take turns and hold no more than two levels") {
    ImageMRImage picture(Noise(64, 64));
    const std::int32_t living = Image::LivingImages();
    const Image* level = picture.GetWholeLevelImage(1, false, 0);
    CHECK_EQ(level, picture.temporaryA.get());
    level = picture.GetWholeLevelImage(2, false, 0);
    CHECK_EQ(level, picture.temporaryB.get());
    level = picture.GetWholeLevelImage(3, false, 0);
    CHECK_EQ(level, picture.temporaryA.get());
    CHECK_EQ(Image::LivingImages(), living + 2);
    picture.Release();
    CHECK_EQ(picture.temporaryA, nullptr);
    CHECK_EQ(picture.temporaryB, nullptr);
    CHECK_EQ(Image::LivingImages(), living);
}

TEST_CASE("A pyramid answers with the level below, and never reduces") {
    ImageMRImage picture(Noise(16, 16));
    picture.hasPyramid = 1;
    CHECK_EQ(picture.GetWholeLevelImage(3, false, 0), &picture.base);  // not built
    for (int i = 0; i < 3; ++i)
        picture.levels.push_back(std::make_unique<Image>(8 >> i, 8 >> i, colour, Depth::Eight, AlphaForm::Straight));
    CHECK_EQ(picture.GetWholeLevelImage(0.9, false, 0), &picture.base);
    CHECK_EQ(picture.GetScale(), 1.0);
    CHECK_EQ(picture.GetWholeLevelImage(1.9, false, 0), picture.levels[1].get());
    CHECK_EQ(picture.GetScale(), 0.5);
    CHECK_EQ(picture.GetWholeLevelImage(1e300, false, 0), picture.levels[2].get());
    CHECK_EQ(picture.GetScale(), 0.25);
    CHECK_EQ(picture.GetWholeLevelImage(2, true, 0), &picture.base);
}

TEST_CASE("A clone stands on the same base, without the working images") {
    ImageMRImage picture(Noise(16, 16));
    picture.GetWholeLevelImage(1, false, 0);
    const auto clone = picture.Clone();
    CHECK_EQ(dynamic_cast<ImageMRImage&>(*clone).base.buffer, picture.base.buffer);
    CHECK_EQ(dynamic_cast<ImageMRImage&>(*clone).temporaryA, nullptr);
    CHECK_EQ(clone->GetScale(), 1.0);
}

TEST_CASE("The highest level is remembered and nothing more") {
    ImageMRImage picture(Noise(16, 16));
    picture.SetMaxLevel(1);
    CHECK_EQ(picture.maxLevel, 1);
    CHECK_EQ(picture.GetWholeLevelImage(2, false, 0)->Width(), 4);
}
