#include "chalkpane/filters/noise/sparse_rows.h"

#include <doctest/doctest.h>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"

using namespace chalkpane;

namespace {

// Goes through all rows and compares the words of the generator as each begins. Stops at the first that differs.
bool StartsAsDrawn(const SparseRows& rows, const GrainRandom& first, std::int64_t pixelsPerRow, std::int64_t count,
                   const SparseDraws& draws) {
    GrainRandom random = first;
    for (std::int64_t row = 0; row < count; ++row) {
        const GrainRandom start = rows.StartOf(static_cast<std::size_t>(row));
        const bool same = start.A() == random.A() && start.B() == random.B() && start.C() == random.C();
        CAPTURE(row);
        CHECK(same);
        if (!same) return false;
        for (std::int64_t pixel = 0; pixel < pixelsPerRow; ++pixel)
            if (static_cast<std::int32_t>(random.Next() % 100u) <= draws.density)
                for (std::uint32_t i = 0; i < draws.more; ++i) random.Next();
    }
    return true;
}

void FindAndCompare(std::uint32_t seed, std::int64_t pixelsPerRow, std::int64_t count, const SparseDraws& draws) {
    if constexpr (builtWithAvx2) {
        CAPTURE(seed);
        CAPTURE(pixelsPerRow);
        CAPTURE(count);
        CAPTURE(draws.density);
        CAPTURE(draws.more);
        SparseRows rows;
        rows.FindAvx2(GrainRandom(seed), pixelsPerRow, count, draws);
        REQUIRE_FALSE(rows.IsEmpty());
        CHECK(StartsAsDrawn(rows, GrainRandom(seed), pixelsPerRow, count, draws));
    }
}

}  // namespace

TEST_CASE("Sparse rows begin where they do when all before them are drawn, at every density") {
    if (!HasAvx2()) return;
    for (std::int32_t density = -1; density <= 98; ++density)
        for (const std::uint32_t more : {1u, 3u, 6u, 18u}) FindAndCompare(0, 251, 41, {density, more});
}

TEST_CASE("Sparse rows begin where they do for rows of any length and number") {
    if (!HasAvx2()) return;
    for (const std::int64_t pixels : {1, 2, 7, 63, 64, 65, 1000, 20000})
        for (const std::int64_t count : {1, 2, 97})
            for (const std::int32_t density : {0, 50, 98}) FindAndCompare(0, pixels, count, {density, 3});
}

// 128 sections of 16 * 16 blocks of 256 numbers are 8,388,608, and a pixel draws 18.82 of them: some 446,000 pixels.
TEST_CASE("Sparse rows begin where they do beyond the sections that are counted at once") {
    if (!HasAvx2()) return;
    FindAndCompare(0, 1000, 500, {98, 18});
}

TEST_CASE("Sparse rows are found from any seed and by any number of workers") {
    if (!HasAvx2()) return;
    for (const std::int32_t workers : {1, 2, 3, 5}) {
        MultiProcessor::Restart(workers);
        CAPTURE(workers);
        for (const std::uint32_t seed : {1u, 190423u, 2025259005u}) FindAndCompare(seed, 300, 200, {25, 6});
    }
    MultiProcessor::Restart(0);
}

TEST_CASE("There are no sparse rows of nothing") {
    if constexpr (builtWithAvx2) {
        SparseRows rows;
        CHECK(rows.IsEmpty());
        rows.FindAvx2(GrainRandom(0), 0, 5, {50, 1});
        CHECK(rows.IsEmpty());
        rows.FindAvx2(GrainRandom(0), 5, 0, {50, 1});
        CHECK(rows.IsEmpty());
    }
}
