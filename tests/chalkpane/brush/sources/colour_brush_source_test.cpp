#include "chalkpane/brush/sources/colour_brush_source.h"

#include <doctest/doctest.h>

#include "tests/chalkpane/brush/sources/source_fixture.h"

namespace chalkpane {

namespace {

using Values = SourceValues;

void SetUp(ColourBrushSource& source, std::int32_t radius, PickupMode pickup = PickupMode::Off,
           Depth depth = Depth::Eight) {
    Values values;
    values.Integer(SourceParameter::Size, radius).Choice(SourceParameter::Pickup, pickup).SetUp(source, depth);
    source.SetColour({16383, 8191, 63});
}

bool IsAll(const Image& image, const ChannelValues& pixel) {
    for (std::int32_t y = image.y0; y <= image.y1; ++y)
        for (std::int32_t x = image.x0; x <= image.x1; ++x)
            if (ValuesAt(image, x, y) != pixel) return false;
    return true;
}

}  // namespace

// 16383 / 64 = 255, 8191 / 64 = 127, 63 / 64 = 0, truncated.
TEST_CASE("A colour dab is the upper eight bits of the colour, opaque, over its mask") {
    ColourBrushSource source(ColourUse::Paint);
    SetUp(source, 2);
    const DabImages dab = DabAt(source, 10.25, 10.5);
    REQUIRE(dab.made);
    CHECK(dab.mask->Bounds() == Rect(7, 8, 12, 12));
    CHECK(dab.colour->Bounds() == dab.mask->Bounds());
    CHECK_EQ(dab.colour->depth, 0);
    CHECK_EQ(dab.colour->flag, 0);
    CHECK(IsAll(*dab.colour, {0, 127, 255, 255}));
}

TEST_CASE("At 14 bits a colour dab is the colour as it is") {
    ColourBrushSource source(ColourUse::Paint);
    SetUp(source, 2, PickupMode::Off, Depth::Fourteen);
    const DabImages dab = DabAt(source, 10.25, 10.5);
    REQUIRE(dab.made);
    CHECK_EQ(dab.mask->depth, 1);
    CHECK(IsAll(*dab.colour, {63, 8191, 16383, 16383}));
}

// 20000 / 64 = 312, of which 56 is the low byte.
TEST_CASE("A colour beyond full scale keeps its low byte at 8 bits and its word at 14") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        ColourBrushSource source(ColourUse::Paint);
        SetUp(source, 1, PickupMode::Off, depth);
        source.SetColour({20000, 0, 0});
        CHECK_EQ(ValuesAt(*DabAt(source, 5.0, 5.0).colour, 5, 5)[2], depth == Depth::Eight ? 56 : 20000);
    }
}

TEST_CASE("Dabs share one colour image until the colour changes") {
    ColourBrushSource source(ColourUse::Paint);
    SetUp(source, 2);
    const DabImages first = DabAt(source, 10.25, 10.25);
    const DabImages second = DabAt(source, 30.5, 40.5);
    CHECK_EQ(first.colour->buffer, second.colour->buffer);
    CHECK(second.colour->Bounds() == Rect(28, 38, 32, 42));
    source.SetColour({0, 0, 0});
    const DabImages third = DabAt(source, 30.5, 40.5);
    CHECK_NE(third.colour->buffer, second.colour->buffer);
    CHECK(IsAll(*third.colour, {0, 0, 0, 255}));
    CHECK(IsAll(*second.colour, {0, 127, 255, 255}));
    CHECK(IsAll(*first.colour, {0, 127, 255, 255}));
}

TEST_CASE("A dab larger than those before gets its colour in full") {
    ColourBrushSource source(ColourUse::Paint);
    SetUp(source, 4);
    const DabImages small = DabAt(source, 10.5, 10.5);
    const DabImages rotated = DabAt(source, 10.5, 10.5, 45.0);
    CHECK_GT(rotated.colour->Width(), small.colour->Width());
    CHECK(rotated.colour->Bounds() == rotated.mask->Bounds());
    CHECK(IsAll(*rotated.colour, {0, 127, 255, 255}));
    CHECK(IsAll(*small.colour, {0, 127, 255, 255}));
}

TEST_CASE("With pickup 1 the first dab is dragged along the stroke") {
    ColourBrushSource source(ColourUse::Paint);
    SetUp(source, 2, PickupMode::OncePerStroke);
    CHECK(DabAt(source, 10.5, 10.5).made);
    source.DabPlaced(10.5, 10.5, 0.0);
    source.SetColour({0, 0, 0});
    const DabImages dragged = DabAt(source, 13.5, 9.5);
    REQUIRE(dragged.made);
    CHECK(dragged.colour->Bounds() == Rect(11, 7, 15, 11));
    CHECK(dragged.mask->Bounds() == Rect(11, 7, 15, 11));
    CHECK(IsAll(*dragged.colour, {0, 127, 255, 255}));
    source.DropPickup();
    CHECK(IsAll(*DabAt(source, 13.5, 9.5).colour, {0, 0, 0, 255}));
}

TEST_CASE("Without pickup every dab is fresh, and with pickup 2 every one after the next") {
    for (const PickupMode pickup : {PickupMode::Off, PickupMode::EveryDab}) {
        ColourBrushSource source(ColourUse::Paint);
        SetUp(source, 2, pickup);
        CHECK(DabAt(source, 10.5, 10.5).made);
        source.SetColour({0, 0, 0});
        CHECK(IsAll(*DabAt(source, 13.5, 9.5).colour,
                    pickup == PickupMode::Off ? ChannelValues{0, 0, 0, 255} : ChannelValues{0, 127, 255, 255}));
        source.DabPlaced(13.5, 9.5, 0.0);
        CHECK(IsAll(*DabAt(source, 20.5, 9.5).colour, {0, 0, 0, 255}));
    }
}

TEST_CASE("The mask plane gets the paint dab") {
    ColourBrushSource source(ColourUse::Erase);
    SetUp(source, 2);
    const DabImages dab = MaskDabAt(source, 10.5, 10.5);
    REQUIRE(dab.made);
    CHECK(dab.colour->Bounds() == Rect(8, 8, 12, 12));
    CHECK(IsAll(*dab.colour, {0, 127, 255, 255}));
    CHECK_EQ(source.GetMask(10.5, 10.5, 0.0)->buffer, dab.mask->buffer);
}

}  // namespace chalkpane
