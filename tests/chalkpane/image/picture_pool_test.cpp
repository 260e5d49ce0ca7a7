#include "chalkpane/image/picture_pool.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

#include "chalkpane/image/image.h"

using namespace chalkpane;

namespace {

constexpr std::size_t large = std::size_t{4} << 20;

// Memory that the pool was given and may have kept.
void* Given(std::size_t bytes) {
    void* const memory = std::malloc(bytes);
    PicturePool::Give(memory, bytes);
    return memory;
}

}  // namespace

TEST_CASE("A pool hands out what it was given, once, for sizes down to the half of it") {
    const PicturePool pool;
    for (const std::size_t wanted : {large, large / 2}) {
        void* const memory = Given(large);
        CHECK_EQ(PicturePool::Take(wanted), memory);
        CHECK_EQ(PicturePool::Take(wanted), nullptr);
        std::free(memory);
    }
}

TEST_CASE("A pool keeps nothing that is too small for the next picture, or much too large") {
    const PicturePool pool;
    Given(large);
    CHECK_EQ(PicturePool::Take(large + 1), nullptr);
    CHECK_EQ(PicturePool::Take(large), nullptr);
    Given(large);
    CHECK_EQ(PicturePool::Take(large / 2 - 1), nullptr);
    CHECK_EQ(PicturePool::Take(large), nullptr);
}

TEST_CASE("A pool leaves small memory to the allocator") {
    const PicturePool pool;
    Given(1000);
    CHECK_EQ(PicturePool::Take(1000), nullptr);
}

TEST_CASE("Nothing is kept without a pool, or beyond the last of several") {
    Given(large);
    CHECK_EQ(PicturePool::Take(large), nullptr);
    std::optional<PicturePool> first(std::in_place);
    {
        const PicturePool second;
        first.reset();
        void* const memory = Given(large);
        CHECK_EQ(PicturePool::Take(large), memory);
        PicturePool::Give(memory, large);
    }
    CHECK_EQ(PicturePool::Take(large), nullptr);
}

TEST_CASE("A picture on memory of another one begins zeroed all the same") {
    const PicturePool pool;
    const Rect bounds(0, 0, 1023, 511);
    const std::byte* pixels = nullptr;
    {
        Image before = Image::Colour(bounds, Depth::Eight, AlphaForm::Straight);
        pixels = before.origin;
        for (std::int32_t y = before.y0; y <= before.y1; ++y) std::ranges::fill(before.Row8(y), std::uint8_t{77});
    }
    const Image after = Image::Colour(bounds, Depth::Eight, AlphaForm::Straight);
    CHECK_EQ(after.origin, pixels);
    bool isZero = true;
    for (std::int32_t y = after.y0; y <= after.y1; ++y)
        isZero = isZero && std::ranges::count(after.Row8(y), 0) == 4 * 1024;
    CHECK(isZero);
}
