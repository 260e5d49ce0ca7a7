#include "chalkpane/filters/noise/grain_random.h"

#include <doctest/doctest.h>

#include <array>

using chalkpane::GrainJump;
using chalkpane::GrainRandom;

// Seed 0: a = 3, b = 1, c = 1. First: t = 3, c = 30903, result 30906. Then t = 1 * 3 = 3, c = 30903 * 30903 =
// 954995409, result 954995412.
TEST_CASE("GrainRandom starts from its three words") {
    GrainRandom random(0);
    CHECK_EQ(random.Next(), 30906u);
    CHECK_EQ(random.Next(), 954995412u);
}

// The carry: c = 954995409 = 14572 * 65536 + 4817, so c becomes 14572 + 4817 * 30903 = 148874323; a = b = 3, t = 9.
TEST_CASE("GrainRandom carries the upper half of its third word") {
    GrainRandom random(0);
    random.Next();
    random.Next();
    CHECK_EQ(random.Next(), 148874332u);
}

// Only the top bit of the seed is masked away for c, and its lowest is set: seed 0x80000000 gives c = 1, but
// a = 0x80000000 * 8 + 3 = 3 and b = 1, as seed 0.
TEST_CASE("GrainRandom drops the top bit of the seed") {
    GrainRandom top(0x80000000u);
    CHECK_EQ(top.Next(), 30906u);
}

TEST_CASE("GrainRandom's bell curve stays within -1 and 1 and takes six draws") {
    GrainRandom curve(5);
    GrainRandom draws(5);
    for (int i = 0; i < 1000; ++i) {
        std::int32_t sum = 0;
        for (int draw = 0; draw < 6; ++draw) sum += static_cast<std::int32_t>(draws.Next() & 0x7fff);
        const float value = curve.Gauss();
        CHECK_EQ(value, static_cast<float>(sum) / 98301.0F - 1.0F);
        CHECK(value >= -1.0F);
        CHECK(value <= 1.0F);
    }
}

TEST_CASE("A jump of GrainRandom is as many draws") {
    for (const std::uint32_t seed : std::array{0u, 1u, 5u, 190423u, 2025259005u}) {
        GrainRandom drawn(seed);
        for (std::uint64_t draws = 0; draws < 300; ++draws) {
            CAPTURE(seed);
            CAPTURE(draws);
            GrainRandom jumped(seed);
            jumped.Jump(GrainJump::Of(draws));
            GrainRandom after = drawn;
            for (int more = 0; more < 3; ++more) CHECK_EQ(jumped.Next(), after.Next());
            drawn.Next();
        }
    }
}

TEST_CASE("Jumps of GrainRandom one after the other are the jump of their sum") {
    GrainRandom one(7);
    GrainRandom many(7);
    one.Jump(GrainJump::Of(1000003u * 7u + 12345u));
    many.Jump(GrainJump::Of(7).Repeated(1000003).Then(GrainJump::Of(12345)));
    for (int draw = 0; draw < 10; ++draw) CHECK_EQ(one.Next(), many.Next());
}
