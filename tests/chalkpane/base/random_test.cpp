#include "chalkpane/base/random.h"

#include <doctest/doctest.h>

using namespace chalkpane;

// 1 * 214013 + 2531011 = 2745024, over 65536 = 41. 2745024 * 214013 + 2531011 = 587473352323, less 136 * 2^32 it is
// 3357800067, over 65536 = 51235, without bit 15 = 18467.
TEST_CASE("The numbers after seed 1 come from the formula, in 15 bits") {
    SeedRandom(1);
    CHECK_EQ(Random(), 41);
    CHECK_EQ(Random(), 18467);
    SeedRandom(1);
    CHECK_EQ(Random(), 41);
}

// (2^32 - 1) * 214013 + 2531011 is 2531011 - 214013 = 2316998 in 32 bits, over 65536 = 35.
TEST_CASE("The state wraps at 32 bits") {
    SeedRandom(0xffffffffu);
    CHECK_EQ(Random(), 35);
}

TEST_CASE("No number leaves 0 to 32767") {
    SeedRandom(1);
    for (int i = 0; i < 100000; ++i) {
        const int number = Random();
        REQUIRE(number >= 0);
        REQUIRE(number <= 32767);
    }
}

TEST_CASE("Numbers taken at once are those drawn one by one, and the next draw goes on behind them") {
    for (const std::uint32_t draws : {0u, 1u, 2u, 3u, 255u, 1024u, 65537u}) {
        CAPTURE(draws);
        SeedRandom(77);
        std::uint32_t state = TakeRandom(draws);
        const std::int32_t behind = Random();
        SeedRandom(77);
        for (std::uint32_t i = 0; i < draws; ++i) {
            state = detail::NextRandomState(state);
            REQUIRE_EQ(detail::RandomOfState(state), Random());
        }
        CHECK_EQ(Random(), behind);
    }
}
