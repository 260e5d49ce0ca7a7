#include "chalkpane/brush/profiles/image_brush_profile.h"

#include <doctest/doctest.h>

#include <limits>
#include <new>

#include "chalkpane/brush/image_loader.h"
#include "tests/chalkpane/composite/paste_fixture.h"

namespace chalkpane {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

Image NoiseMask(std::int32_t width, std::int32_t height, Depth depth = Depth::Eight) {
    return NoiseImage({0, 0, width - 1, height - 1}, PixelType::Mask, depth, 5);
}

DabShape OfRadius(std::int32_t radius, double rotation = 0.0) { return {radius, 1.0, rotation, 1.0, 0}; }

Rect RectOf(const BrushProfile& profile) {
    Rect rect(1, 2, 3, 4);
    profile.GetRect(rect);
    return rect;
}

// Takes the loader away again.
struct WithLoader {
    explicit WithLoader(ImageFileLoader loader) { SetImageFileLoader(std::move(loader)); }
    ~WithLoader() { SetImageFileLoader({}); }
    WithLoader(const WithLoader&) = delete;
    WithLoader& operator=(const WithLoader&) = delete;
};

}  // namespace

// 10 / 2 = 5. The middle of the picture, (5, 5), goes to (20, 30).
TEST_CASE("A picture of the dab's width is taken as it is and placed by its middle") {
    const Image picture = NoiseMask(10, 10);
    ImageBrushProfile profile(picture, OfRadius(5), Matrix3(), Depth::Eight);
    CHECK(RectOf(profile) == Rect(0, 0, 9, 9));
    const auto mask = profile.GetMask(20.0, 30.0, 0.0);
    REQUIRE(mask->Bounds() == Rect(15, 25, 24, 34));
    for (std::int32_t y = 0; y < 10; ++y)
        for (std::int32_t x = 0; x < 10; ++x) CHECK_EQ(ValuesAt(*mask, 15 + x, 25 + y)[0], ValuesAt(picture, x, y)[0]);
    CHECK(profile.GetMaskFast(20.0, 30.0)->Bounds() == Rect(15, 25, 24, 34));
}

// 11 / 2 is 5 in whole numbers.
TEST_CASE("Half an odd width is truncated before it is compared with the radius") {
    CHECK(RectOf(ImageBrushProfile(NoiseMask(11, 7), OfRadius(5), Matrix3(), Depth::Eight)) == Rect(0, 0, 10, 6));
}

// Factor 16 / 8 = 2; with the pixel that its faded edge takes on either side 18 pixels.
TEST_CASE("A picture of another width is resized to the dab") {
    CHECK(RectOf(ImageBrushProfile(NoiseMask(8, 8), OfRadius(8), Matrix3(), Depth::Eight)) == Rect(0, 0, 17, 17));
}

TEST_CASE("A mask is the same wherever its picture lay") {
    const Image picture = NoiseMask(10, 10);
    Image moved(picture);
    moved.MoveTo(-300, 70);
    ImageBrushProfile profile(moved, OfRadius(5), Matrix3(), Depth::Eight);
    CHECK(profile.GetMask(20.0, 30.0, 0.0)->Bounds() == Rect(15, 25, 24, 34));
    CHECK_EQ(ValuesAt(*profile.GetMask(20.0, 30.0, 0.0), 15, 25)[0], ValuesAt(picture, 0, 0)[0]);
}

TEST_CASE("A picture is converted to the depth of the profile") {
    const Image picture = NoiseMask(4, 4);
    ImageBrushProfile deep(picture, OfRadius(2), Matrix3(), Depth::Fourteen);
    const auto mask = deep.GetMask(2.0, 2.0, 0.0);
    CHECK_EQ(mask->depth, 1);
    CHECK_EQ(ValuesAt(*mask, 1, 2)[0], Widen(static_cast<std::uint8_t>(ValuesAt(picture, 1, 2)[0])));
    const Image deepPicture = NoiseMask(4, 4, Depth::Fourteen);
    ImageBrushProfile shallow(deepPicture, OfRadius(2), Matrix3(), Depth::Eight);
    CHECK_EQ(ValuesAt(*shallow.GetMask(2.0, 2.0, 0.0), 1, 2)[0], ValuesAt(deepPicture, 1, 2)[0] >> 6);
}

TEST_CASE("A picture in colour gives its alpha") {
    const Image picture = NoiseImage({0, 0, 3, 3}, PixelType::Colour, Depth::Eight, 3);
    ImageBrushProfile profile(picture, OfRadius(2), Matrix3(), Depth::Eight);
    const auto mask = profile.GetMask(2.0, 2.0, 0.0);
    CHECK(mask->IsMask());
    for (std::int32_t x = 0; x < 4; ++x) CHECK_EQ(ValuesAt(*mask, x, 1)[0], ValuesAt(picture, x, 1)[3]);
}

TEST_CASE("The picture is only read, and only while the profile is made") {
    Image picture = NoiseMask(4, 4);
    const int before = ValuesAt(picture, 0, 0)[0];
    ImageBrushProfile profile(picture, OfRadius(2), Matrix3(), Depth::Eight);
    CHECK(picture.Bounds() == Rect(0, 0, 3, 3));
    picture.FillChannel(before > 100 ? 0.0 : 1.0);
    CHECK_EQ(ValuesAt(*profile.GetMask(2.0, 2.0, 0.0), 0, 0)[0], before);
}

TEST_CASE("The dab's angle adds to the rotation; the fast mask knows the rotation alone") {
    const Image picture = NoiseMask(6, 4);
    ImageBrushProfile profile(picture, OfRadius(3, 30.0), Matrix3(), Depth::Eight);
    // Rotated back, it is the picture moved by whole pixels: (10, 10) less half of 6 by 4.
    CHECK(profile.GetMask(10.0, 10.0, -30.0)->Bounds() == Rect(7, 8, 12, 11));
    CHECK_NE(profile.GetMask(10.0, 10.0, 0.0)->Bounds(), Rect(7, 8, 12, 11));
    CHECK(profile.GetMaskFast(10.0, 10.0)->Bounds() == profile.GetMask(10.0, 10.0, 0.0)->Bounds());
}

TEST_CASE("The matrix does not move a picture's mask") {
    ImageBrushProfile profile(NoiseMask(4, 4), OfRadius(2), Matrix3::Scaling(3.0, 3.0), Depth::Eight);
    CHECK(profile.GetMask(10.0, 10.0, 0.0)->Bounds() == Rect(8, 8, 11, 11));
    CHECK(profile.PositionMatrix() == Matrix3::Scaling(3.0, 3.0));
}

TEST_CASE("A file keeps its own size") {
    const WithLoader loader([](const std::string& name) -> std::unique_ptr<Image> {
        return name == "leaf.png" ? NoiseMask(7, 9).Clone() : nullptr;
    });
    for (const std::int32_t radius : {3, 50, 0, -4, 100000})
        CHECK(RectOf(ImageBrushProfile("leaf.png", OfRadius(radius), Matrix3(), Depth::Eight)) == Rect(0, 0, 6, 8));
    ImageBrushProfile missing("tree.png", OfRadius(3), Matrix3(), Depth::Eight);
    CHECK(RectOf(missing) == Rect());
    CHECK_FALSE(missing.GetMask(5.0, 5.0, 0.0));
    CHECK_FALSE(missing.GetMaskFast(5.0, 5.0));
}

TEST_CASE("Without a loader, a name or memory there is no picture file") {
    CHECK_FALSE(LoadImageFile("leaf.png"));
    const WithLoader loader([](const std::string&) -> std::unique_ptr<Image> { throw std::bad_alloc(); });
    CHECK_FALSE(LoadImageFile("leaf.png"));
    CHECK_FALSE(LoadImageFile(""));
}

TEST_CASE("A picture of which nothing remains gives no mask") {
    const Image picture = NoiseMask(4, 4);
    for (const std::int32_t radius : {0, -1, 1025, std::numeric_limits<std::int32_t>::min()})
        CHECK(RectOf(ImageBrushProfile(picture, OfRadius(radius), Matrix3(), Depth::Eight)) == Rect());
    const Image nothing = Image::Mask(0, 0, Depth::Eight);
    CHECK(RectOf(ImageBrushProfile(nothing, OfRadius(0), Matrix3(), Depth::Eight)) == Rect());
}

TEST_CASE("A picture's mask that cannot be placed is not there") {
    ImageBrushProfile profile(NoiseMask(4, 4), OfRadius(2), Matrix3(), Depth::Eight);
    for (const double far : {notANumber, 1e300, -std::numeric_limits<double>::infinity()}) {
        CHECK_FALSE(profile.GetMask(far, 0.0, 0.0));
        CHECK_FALSE(profile.GetMask(0.0, far, 33.0));
        CHECK_FALSE(profile.GetMaskFast(far, 0.0));
    }
    CHECK_FALSE(profile.GetMask(0.0, 0.0, notANumber));
    CHECK_FALSE(
        ImageBrushProfile(NoiseMask(4, 4), OfRadius(2, notANumber), Matrix3(), Depth::Eight).GetMaskFast(0.0, 0.0));
}

}  // namespace chalkpane
