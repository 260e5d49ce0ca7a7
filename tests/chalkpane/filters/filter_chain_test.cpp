#include "chalkpane/filters/filter_chain.h"

#include <doctest/doctest.h>

#include "tests/chalkpane/filters/filter_pictures.h"
#include "tests/chalkpane/filters/test_filters.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

class EmptyForTest final : public FilterClass<EmptyForTest, Filter> {
public:
    static constexpr FilterIdentity identity{"Empty", "Empty", ""};
    static constexpr auto Parameters() { return noParameters<EmptyForTest>; }
    void Apply(const Image&, std::unique_ptr<Image>&, bool, const Rect*, bool) override {}
    [[nodiscard]] bool MovesPixels() const override { return true; }
    [[nodiscard]] bool FiltersMask() const override { return true; }
};

// A chain and the images of a dab that go through it.
struct Dab {
    explicit Dab(Depth depth = Depth::Eight)
        : colour(NoisePicture({0, 0, 10, 10}, PixelType::Colour, depth, AlphaForm::Straight, 11).Clone()),
          mask(NoisePicture({0, 0, 10, 10}, PixelType::Mask, depth, AlphaForm::Straight, 12).Clone()),
          oldColour(*colour),
          oldMask(*mask) {}
    template <typename F>
    F& Add() {
        auto filter = std::make_unique<F>();
        F& added = *filter;
        chain.push_back(std::move(filter));
        return added;
    }
    void Run(ChainScope scope = ChainScope::EveryFilter) { RunFilterChain(chain, colour, mask, scope); }
    [[nodiscard]] bool ColourChanged() const { return !SamePixels(*colour, oldColour); }
    [[nodiscard]] bool MaskChanged() const { return !SamePixels(*mask, oldMask); }

    std::vector<std::unique_ptr<Filter>> chain;
    std::unique_ptr<Image> colour;
    std::unique_ptr<Image> mask;
    Image oldColour;
    Image oldMask;
};

}  // namespace

TEST_CASE("an empty chain leaves the images themselves") {
    Dab dab;
    const Image* const colour = dab.colour.get();
    dab.Run();
    CHECK_EQ(dab.colour.get(), colour);
    CHECK_FALSE(dab.MaskChanged());
}

TEST_CASE("a point filter changes colour alone, while it is active and every filter runs") {
    Dab dab;
    auto& invert = dab.Add<InvertForTest>();
    invert.m_active = false;
    dab.Run();
    CHECK_FALSE(dab.ColourChanged());
    invert.m_active = true;
    dab.Run(ChainScope::SpatialOnly);
    CHECK_FALSE(dab.ColourChanged());
    dab.Run();
    CHECK(dab.ColourChanged());
    CHECK_FALSE(dab.MaskChanged());
    dab.Run();
    CHECK_FALSE(dab.ColourChanged());
}

TEST_CASE("a filter that moves pixels runs even while inactive, the colour growing and the mask not") {
    for (const auto scope : {ChainScope::EveryFilter, ChainScope::SpatialOnly}) {
        Dab dab;
        auto& shift = dab.Add<ShiftForTest>();
        shift.m_active = false;
        dab.Run(scope);
        CHECK_EQ(dab.colour->Bounds(), Rect(10, 0, 20, 10));
        CHECK_EQ(dab.mask->Bounds(), Rect(10, 0, 20, 10));
        CHECK_EQ(shift.expands, std::vector<bool>{true, false});
        CHECK_EQ(shift.begun, 1);
        CHECK_EQ(shift.ended, 1);
    }
}

TEST_CASE("a filter that does not filter masks leaves the mask where it was") {
    Dab dab;
    dab.Add<ShiftForTest>().m_filtersMask = false;
    dab.Run();
    CHECK_EQ(dab.colour->x0, 10);
    CHECK_FALSE(dab.MaskChanged());
}

TEST_CASE("a filter works in the depth it asks for, and the images have their own again behind the chain") {
    Dab dab(Depth::Fourteen);
    auto& bytes = dab.Add<ShiftForTest>();
    bytes.m_bytesOnly = true;
    auto& words = dab.Add<ShiftForTest>();
    dab.Run();
    CHECK_EQ(bytes.depths, std::vector<std::int32_t>{0, 0});
    // What was made 8 bits stays so up to the end of the chain.
    CHECK_EQ(words.depths, std::vector<std::int32_t>{0, 0});
    CHECK_EQ(dab.colour->depth, 1);
    CHECK_EQ(dab.mask->depth, 1);
    CHECK_EQ(dab.colour->x0, 20);
    const std::uint16_t before = dab.oldMask.Row14(3)[3];
    CHECK_EQ(dab.mask->Row14(3)[3], Widen(Narrow(before)));
}

TEST_CASE("a filter that makes nothing leaves the image as it was") {
    Dab dab;
    dab.Add<EmptyForTest>();
    dab.Run();
    CHECK_FALSE(dab.ColourChanged());
    CHECK_FALSE(dab.MaskChanged());
}

TEST_CASE("a dab without a mask goes through the chain without one") {
    Dab dab;
    dab.Add<ShiftForTest>();
    dab.mask.reset();
    dab.Run();
    CHECK_EQ(dab.colour->x0, 10);
    CHECK_EQ(dab.mask, nullptr);
}

// Grown by 10 and by 3 on the way in, moved by 3 and by 10 on the way back: 0 - 13 + 13 = 0 and 4 + 13 + 13 = 30.
TEST_CASE("the area of a dab runs inward through all filters and back outward") {
    Dab dab;
    dab.Add<ShiftForTest>();
    dab.Add<ShiftForTest>().m_distance = 3;
    CHECK_EQ(FilteredArea(dab.chain, Rect(0, 0, 4, 4)), Rect(0, -13, 30, 17));
    CHECK_EQ(FilteredArea({}, Rect(0, 0, 4, 4)), Rect(0, 0, 4, 4));
}
