#include "chalkpane/brush/sources/cutout_brush_source.h"
#include "chalkpane/brush/sources/source_types.h"

#include <doctest/doctest.h>

#include <limits>
#include <vector>

#include "chalkpane/base/random.h"
#include "chalkpane/brush/image_loader.h"
#include "tests/chalkpane/brush/sources/source_fixture.h"

namespace chalkpane {

namespace {

using Values = SourceValues;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// Set up for frames.
class Cutout {
public:
    Cutout(const Image& picture, std::int32_t rows, std::int32_t columns, SelectionPolicy policy,
           Depth depth = Depth::Eight)
        : source(picture, depth) {
        Values values;
        values.Integer(SourceParameter::Rows, rows).Integer(SourceParameter::Columns, columns);
        values.Choice(SourceParameter::SelectionPolicy, policy).SetUp(source, depth);
    }
    // Blue and green of the lower left pixel of the next dab, in pictures of MapPicture the column and the row.
    std::pair<int, int> NextCorner() {
        const DabImages dab = DabAt(source, 100.0, 100.0);
        REQUIRE(dab.made);
        const ChannelValues pixel = ValuesAt(*dab.colour, dab.colour->x0, dab.colour->y0);
        return {pixel[0] / 10, pixel[1] / 10};
    }
    std::vector<int> NextColumns(int count) {
        std::vector<int> columns;
        columns.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) columns.push_back(NextCorner().first);
        return columns;
    }
    CutoutBrushSource source;
};

Rect RectOf(const BrushSource& source) {
    Rect rect(1, 2, 3, 4);
    source.GetDabRect(rect);
    return rect;
}

}  // namespace

// The middle of 6 by 4 pixels, (3, 2), goes to (10, 20).
TEST_CASE("A cutout in one frame is the picture and its alpha, placed by the middle") {
    const Image picture = NoiseImage({0, 0, 5, 3}, PixelType::Colour, Depth::Eight, 8);
    Cutout cutout(picture, 1, 1, SelectionPolicy::Forward);
    const DabImages dab = DabAt(cutout.source, 10.0, 20.0);
    REQUIRE(dab.made);
    REQUIRE(dab.colour->Bounds() == Rect(7, 18, 12, 21));
    REQUIRE(dab.mask->Bounds() == dab.colour->Bounds());
    CHECK(dab.mask->IsMask());
    for (std::int32_t y = 0; y < 4; ++y) {
        for (std::int32_t x = 0; x < 6; ++x) {
            CHECK_EQ(ValuesAt(*dab.colour, 7 + x, 18 + y), ValuesAt(picture, x, y));
            CHECK_EQ(ValuesAt(*dab.mask, 7 + x, 18 + y)[0], ValuesAt(picture, x, y)[3]);
        }
    }
}

// The picture is read as the mask it is; so is its colour image.
TEST_CASE("A cutout of one channel is its own mask") {
    const Image picture = NoiseImage({0, 0, 5, 3}, PixelType::Mask, Depth::Eight, 8);
    Cutout cutout(picture, 1, 1, SelectionPolicy::Forward);
    const DabImages dab = DabAt(cutout.source, 3.0, 2.0);
    REQUIRE(dab.made);
    CHECK(dab.colour->IsMask());
    CHECK_EQ(ValuesAt(*dab.mask, 4, 1)[0], ValuesAt(picture, 4, 1)[0]);
}

TEST_CASE("A cutout is converted to the depth of the target") {
    const Image picture = MapPicture(4, 4);
    Cutout cutout(picture, 1, 1, SelectionPolicy::Forward, Depth::Fourteen);
    const DabImages dab = DabAt(cutout.source, 2.0, 2.0);
    CHECK_EQ(dab.colour->depth, 1);
    CHECK_EQ(dab.mask->depth, 1);
    CHECK_EQ(ValuesAt(*dab.colour, 3, 0)[0], 30 * 64 + 7);
}

TEST_CASE("In one frame the policy draws no numbers and moves no frame") {
    const Image picture = MapPicture(4, 4);
    for (const SelectionPolicy policy :
         {SelectionPolicy::Random, SelectionPolicy::Forward, SelectionPolicy::ForwardAndBack}) {
        Cutout cutout(picture, 1, 1, policy);
        SeedRandom(0);
        CHECK(cutout.NextColumns(3) == std::vector{0, 0, 0});
        CHECK_EQ(Random(), 38);  // the first number from seed 0
    }
}

// The index moves before it is used, so the second frame comes first.
TEST_CASE("Forward plays the frames round, beginning with the second") {
    Cutout cutout(MapPicture(8, 2), 1, 4, SelectionPolicy::Forward);
    CHECK(cutout.NextColumns(6) == std::vector{2, 4, 6, 0, 2, 4});
}

// Three frames: the period is 3 * 2 - 2 = 4. Two: 2, which is to and fro.
TEST_CASE("Forward and back plays the ends once") {
    Cutout three(MapPicture(6, 2), 1, 3, SelectionPolicy::ForwardAndBack);
    CHECK(three.NextColumns(8) == std::vector{2, 4, 2, 0, 2, 4, 2, 0});
    Cutout two(MapPicture(4, 2), 1, 2, SelectionPolicy::ForwardAndBack);
    CHECK(two.NextColumns(4) == std::vector{2, 0, 2, 0});
}

// Numbers from seed 0: 38 modulo 3 columns is 2, 7719 modulo 2 rows is 1, the lower row; then 21238 is 1, 2437 is 1.
TEST_CASE("Random draws a column, then a row") {
    Cutout cutout(MapPicture(6, 4), 2, 3, SelectionPolicy::Random);
    SeedRandom(0);
    CHECK(cutout.NextCorner() == std::pair(4, 0));
    CHECK(cutout.NextCorner() == std::pair(2, 0));
}

TEST_CASE("Frames lie row by row from the top left") {
    Cutout cutout(MapPicture(4, 6), 3, 2, SelectionPolicy::Forward);
    CHECK(cutout.NextCorner() == std::pair(2, 4));
    CHECK(cutout.NextCorner() == std::pair(0, 2));
    CHECK(cutout.NextCorner() == std::pair(2, 2));
    CHECK(cutout.NextCorner() == std::pair(0, 0));
    CHECK(cutout.NextCorner() == std::pair(2, 0));
    CHECK(cutout.NextCorner() == std::pair(0, 4));
}

// 7 / 3 = 2 and 5 / 2 = 2: what is left over at the right and at the bottom is in no frame.
TEST_CASE("The size of a frame is a whole quotient") {
    Cutout cutout(MapPicture(7, 5), 2, 3, SelectionPolicy::Forward);
    CHECK_EQ(cutout.source.GetSize(), 2.0);
    CHECK(RectOf(cutout.source) == Rect(0, 0, 1, 1));
    CHECK(cutout.NextCorner() == std::pair(2, 3));
    const DabImages dab = DabAt(cutout.source, 10.0, 10.0);
    CHECK(dab.colour->Bounds() == Rect(9, 9, 10, 10));
    CHECK(dab.mask->Bounds() == Rect(9, 9, 10, 10));
}

TEST_CASE("A stroke does not reset the frames") {
    Cutout cutout(MapPicture(8, 2), 1, 4, SelectionPolicy::Forward);
    CHECK(cutout.NextColumns(2) == std::vector{2, 4});
    cutout.source.DropPickup();
    CHECK(cutout.NextColumns(1) == std::vector{6});
}

TEST_CASE("The size of a cutout is its longer side, and 20 without a picture") {
    CHECK_EQ(Cutout(MapPicture(6, 4), 1, 1, SelectionPolicy::Random).source.GetSize(), 6.0);
    CHECK_EQ(Cutout(MapPicture(6, 4), 1, 3, SelectionPolicy::Random).source.GetSize(), 4.0);
    CHECK_EQ(CutoutBrushSource(FileName("nowhere"), Depth::Eight).GetSize(), 20.0);
}

TEST_CASE("The dab rectangle of a cutout is the picture's, or a frame's at its corner") {
    Image picture = MapPicture(6, 4);
    picture.MoveTo(10, 20);
    CHECK(RectOf(Cutout(picture, 1, 1, SelectionPolicy::Random).source) == Rect(10, 20, 15, 23));
    CHECK(RectOf(Cutout(picture, 2, 3, SelectionPolicy::Random).source) == Rect(10, 20, 11, 21));
}

// Half of 6 by 4 off (10.9, 20.0): 7.9 and 18.
TEST_CASE("The plain mask is the whole picture's, with its middle at the point") {
    Cutout cutout(MapPicture(6, 4), 2, 3, SelectionPolicy::Random);
    const auto mask = cutout.source.MakePlainMask(10.9, 20.0);
    CHECK(mask->Bounds() == Rect(7, 18, 12, 21));
    CHECK_EQ(ValuesAt(*mask, 7, 18)[0], 255);
    CHECK_FALSE(cutout.source.MakePlainMask(notANumber, 0.0));
    CHECK_FALSE(cutout.source.MakePlainMask(0.0, 1e300));
    CHECK_FALSE(cutout.source.GetMask(10.0, 10.0, 0.0));
}

// The right end of a picture of 6 by 2 points down after a quarter turn. Fixed-point positions cost a few levels.
TEST_CASE("A cutout turns clockwise about its middle") {
    Cutout cutout(MapPicture(6, 2), 1, 1, SelectionPolicy::Random);
    const DabImages dab = DabAt(cutout.source, 10.0, 10.0, 90.0);
    REQUIRE(dab.made);
    CHECK_GE(ValuesAt(*dab.colour, 10, 7)[0], 46);
    CHECK_LE(ValuesAt(*dab.colour, 10, 12)[0], 4);
    CHECK(dab.mask->Bounds() == dab.colour->Bounds());
}

TEST_CASE("A cutout comes from a file") {
    SetImageFileLoader([](const std::string& name) -> std::unique_ptr<Image> {
        return name == "art\\star.png" ? MapPicture(5, 3).Clone() : nullptr;
    });
    const auto source = MakeBrushSource(SourceType::Cutout, FileName("art/star.png"), Depth::Eight);
    CHECK_EQ(source->GetSize(), 5.0);
    CHECK_EQ(MakeBrushSource(SourceType::Cutout, FileName("star.png"), Depth::Eight)->GetSize(), 20.0);
    SetImageFileLoader({});
}

TEST_CASE("A cutout source is made around an image") {
    const Image picture = MapPicture(5, 3);
    const auto source = MakeCutoutSource(picture, Depth::Eight);
    CHECK_EQ(source->GetSize(), 5.0);
    CHECK(DabAt(*source, 1.0, 1.0).made);
}

TEST_CASE("Rows and columns below 1 count as 1, and more than there are pixels leave no dab") {
    for (const std::int32_t few : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        Cutout cutout(MapPicture(4, 4), few, few, SelectionPolicy::ForwardAndBack);
        CHECK_EQ(cutout.source.GetSize(), 4.0);
        CHECK(DabAt(cutout.source, 1.0, 1.0).made);
        Cutout columns(MapPicture(4, 4), few, 2, SelectionPolicy::Forward);
        CHECK(columns.NextColumns(2) == std::vector{2, 0});
    }
    for (const std::int32_t many : {5, std::numeric_limits<std::int32_t>::max()}) {
        for (const SelectionPolicy policy : {SelectionPolicy::Random, SelectionPolicy::Forward,
                                             SelectionPolicy::ForwardAndBack, static_cast<SelectionPolicy>(77)}) {
            Cutout cutout(MapPicture(4, 4), many, many, policy);
            CHECK_FALSE(DabAt(cutout.source, 1.0, 1.0).made);
            Cutout wide(MapPicture(4, 4), 1, many, policy);
            CHECK_FALSE(DabAt(wide.source, 1.0, 1.0).made);
            CHECK_EQ(cutout.source.GetSize(), 0.0);
        }
    }
}

TEST_CASE("A policy that is none stays at the first frame") {
    Cutout cutout(MapPicture(8, 2), 1, 4, static_cast<SelectionPolicy>(77));
    CHECK(cutout.NextColumns(3) == std::vector{0, 0, 0});
}

TEST_CASE("A cutout of nothing paints nothing") {
    const Image nothing = Image::Colour(0, 0, Depth::Eight, AlphaForm::Straight);
    for (const std::int32_t frames : {1, 3}) {
        Cutout cutout(nothing, frames, frames, SelectionPolicy::ForwardAndBack);
        CHECK_FALSE(DabAt(cutout.source, 1.0, 1.0).made);
        CHECK_FALSE(cutout.source.MakePlainMask(1.0, 1.0));
        CHECK(RectOf(cutout.source) == Rect());
        CHECK_EQ(cutout.source.GetSize(), 20.0);
    }
}

TEST_CASE("A cutout that cannot be placed is not made") {
    Cutout cutout(MapPicture(4, 4), 2, 2, SelectionPolicy::Forward);
    for (const double far : {notANumber, 1e300, -1e300}) {
        CHECK_FALSE(DabAt(cutout.source, far, 0.0).made);
        CHECK_FALSE(DabAt(cutout.source, 0.0, far, 30.0).made);
    }
    CHECK_FALSE(DabAt(cutout.source, 0.0, 0.0, notANumber).made);
    CHECK(DabAt(cutout.source, 0.0, 0.0, 1e300).made);
}

}  // namespace chalkpane
