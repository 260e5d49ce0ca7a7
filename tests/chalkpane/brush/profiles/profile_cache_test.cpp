#include "chalkpane/brush/profiles/profile_cache.h"

#include <doctest/doctest.h>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/profiles/feather_brush_profile.h"
#include "chalkpane/brush/profiles/graph_brush_profile.h"
#include "chalkpane/brush/profiles/texture_brush_profile.h"
#include "chalkpane/brush/sources/brush_source.h"

namespace chalkpane {

namespace {

constexpr DabShape plainShape{4, 1.0, 0.0, 1.0, 0};

std::shared_ptr<const ProfileMasks> MasksOf(std::int32_t side) {
    auto masks = std::make_shared<ProfileMasks>();
    masks->baseMask = std::make_unique<Image>(side, side, PixelType::Mask, Depth::Eight, AlphaForm::Straight);
    return masks;
}

const ImageBuffer* PixelsOf(const RoundBrushProfile& profile) { return profile.BaseMask()->buffer; }

}  // namespace

TEST_CASE("Profiles that are alike share their masks, wherever they lie") {
    const GraphBrushProfile first(plainShape, Matrix3(), Depth::Eight, nullptr);
    const GraphBrushProfile again(plainShape, Matrix3::Translation(5.0, 6.0), Depth::Eight, nullptr);
    CHECK_EQ(PixelsOf(first), PixelsOf(again));
    CHECK_EQ(first.Shifted(3, 5)->buffer, again.Shifted(3, 5)->buffer);
}

TEST_CASE("Whatever shapes a mask tells profiles apart") {
    ShapePointList curve;
    curve.insert(0.5, 0.25);
    GraphValue graph(curve);
    const GraphBrushProfile plain(plainShape, Matrix3(), Depth::Eight, nullptr);
    const GraphBrushProfile others[] = {{{5, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr},
                                        {{4, 1.5, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr},
                                        {{4, 1.0, 9.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr},
                                        {{4, 1.0, 0.0, 0.5, 0}, Matrix3(), Depth::Eight, nullptr},
                                        {{4, 1.0, 0.0, 1.0, 1}, Matrix3(), Depth::Eight, nullptr},
                                        {plainShape, Matrix3(), Depth::Fourteen, nullptr},
                                        {plainShape, Matrix3(), Depth::Eight, &graph}};
    for (const auto& other : others) CHECK_NE(PixelsOf(plain), PixelsOf(other));
    const FeatherBrushProfile feather(plainShape, Matrix3(), Depth::Eight, 0.5);
    CHECK_NE(PixelsOf(feather), PixelsOf(plain));
    CHECK_NE(PixelsOf(feather), PixelsOf(FeatherBrushProfile(plainShape, Matrix3(), Depth::Eight, 0.25)));
    CHECK_NE(PixelsOf(feather), PixelsOf(TextureBrushProfile(plainShape, Matrix3(), Depth::Eight)));
}

TEST_CASE("A graph that is changed makes new masks and leaves the old ones") {
    GraphValue graph{ShapePointList()};
    const GraphBrushProfile before(plainShape, Matrix3(), Depth::Eight, &graph);
    const auto middle = before.BaseMask()->GetMaskEdge8(4, 4, edgeTransparent);
    graph.list().clear();
    const GraphBrushProfile after(plainShape, Matrix3(), Depth::Eight, &graph);
    CHECK_NE(PixelsOf(before), PixelsOf(after));
    CHECK_EQ(after.BaseMask()->GetMaskEdge8(4, 4, edgeTransparent), 0);  // an empty curve answers 0
    CHECK_EQ(before.BaseMask()->GetMaskEdge8(4, 4, edgeTransparent), middle);
    CHECK_EQ(middle, 255);
}

TEST_CASE("The last profile takes the cache and all images with it") {
    const std::int32_t before = Image::LivingImages();
    {
        const GraphBrushProfile profile(plainShape, Matrix3(), Depth::Eight, nullptr);
        CHECK_EQ(Image::LivingImages(), before + 65);
        const GraphBrushProfile sharing(plainShape, Matrix3(), Depth::Eight, nullptr);
        CHECK_EQ(Image::LivingImages(), before + 65);
    }
    CHECK_EQ(Image::LivingImages(), before);
}

TEST_CASE("Whoever holds the cache keeps it between two profiles") {
    const auto cache = ProfileCache::Shared();
    const ImageBuffer* pixels = PixelsOf(GraphBrushProfile(plainShape, Matrix3(), Depth::Eight, nullptr));
    CHECK_EQ(cache->Size(), 1);
    CHECK_EQ(PixelsOf(GraphBrushProfile(plainShape, Matrix3(), Depth::Eight, nullptr)), pixels);
    CHECK_EQ(cache->Size(), 1);
    cache->Clear();
    CHECK_EQ(cache->Size(), 0);
}

TEST_CASE("A brush keeps the cache while it changes its source") {
    BasicBrush brush("Lone");
    const std::weak_ptr<ProfileCache> cache = ProfileCache::Shared();
    REQUIRE_FALSE(cache.expired());
    brush.SetSize(7);
    CHECK_FALSE(cache.expired());
    CHECK_EQ(ProfileCache::Shared()->Size(), 2);  // of radius 20 and of radius 7
}

TEST_CASE("The cache forgets what was not used for longest") {
    ProfileCache cache;
    for (std::uint64_t i = 0; i < ProfileCache::maximumEntries; ++i) cache.Add({i}, MasksOf(1));
    CHECK(cache.Find({0}));
    cache.Add({100}, MasksOf(1));
    CHECK_EQ(cache.Size(), ProfileCache::maximumEntries);
    CHECK(cache.Find({0}));
    CHECK_FALSE(cache.Find({1}));
    CHECK(cache.Find({100}));
}

// 2048 x 2048 bytes are 4 MiB, of which 8 make 32 MiB; 6000 x 6000 are beyond that.
TEST_CASE("The cache is bounded in bytes") {
    ProfileCache cache;
    for (std::uint64_t i = 0; i < 8; ++i) cache.Add({i}, MasksOf(2048));
    CHECK_EQ(cache.Size(), 8);
    cache.Add({8}, MasksOf(4));
    CHECK_EQ(cache.Size(), 8);
    CHECK_FALSE(cache.Find({0}));
    cache.Add({9}, MasksOf(6000));
    CHECK_EQ(cache.Size(), 8);
    CHECK_FALSE(cache.Find({9}));
}

TEST_CASE("Masks that nobody could build are not kept") {
    const auto cache = ProfileCache::Shared();
    const GraphBrushProfile none({-1, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr);
    CHECK_EQ(cache->Size(), 0);
}

}  // namespace chalkpane
