#include "obs/upload_plan.h"

#include <doctest/doctest.h>

#include <random>
#include <vector>

#include "telestrator/telestrator.h"

using chalkpane::canvasSize;
using chalkpane::obs::PlanUpload;
using chalkpane::obs::UploadSquare;

namespace {

std::int64_t PixelsOf(const std::vector<UploadSquare>& squares) {
    std::int64_t pixels = 0;
    for (const UploadSquare& square : squares) pixels += std::int64_t{square.side} * square.side;
    return pixels;
}

}  // namespace

TEST_CASE("A dab is one small square") {
    const auto squares = PlanUpload({100, 200, 130, 240});
    REQUIRE_EQ(squares.size(), 1);
    CHECK_EQ(squares[0].side, 64);
    CHECK_EQ(squares[0].x, 100);
    CHECK_EQ(squares[0].y, 200);
}

TEST_CASE("Squares at the edge are moved into the canvas") {
    const auto squares = PlanUpload({1020, 0, 1023, 3});
    REQUIRE_EQ(squares.size(), 1);
    CHECK_EQ(squares[0].x, 960);
    CHECK_EQ(squares[0].y, 0);
}

TEST_CASE("All of the canvas is one square, and nothing none") {
    const auto squares = PlanUpload({0, 0, canvasSize - 1, canvasSize - 1});
    REQUIRE_EQ(squares.size(), 1);
    CHECK_EQ(squares[0].side, canvasSize);
    CHECK(PlanUpload({}).empty());
}

TEST_CASE("Squares cover any change, within the canvas, with no more pixels than it has") {
    std::mt19937 random(7);
    std::uniform_int_distribution<std::int32_t> place(0, canvasSize - 1);
    std::vector<bool> covered(std::size_t{canvasSize} * canvasSize);
    for (int round = 0; round < 60; ++round) {
        const auto [x0, x1] = std::minmax({place(random), place(random)});
        const auto [y0, y1] = std::minmax({place(random), place(random)});
        const auto squares = PlanUpload({x0, y0, x1, y1});
        covered.assign(covered.size(), false);
        for (const UploadSquare& square : squares) {
            REQUIRE(square.x >= 0);
            REQUIRE(square.y >= 0);
            REQUIRE(square.x + square.side <= canvasSize);
            REQUIRE(square.y + square.side <= canvasSize);
            for (std::int32_t y = square.y; y < square.y + square.side; ++y)
                for (std::int32_t x = square.x; x < square.x + square.side; ++x)
                    covered[static_cast<std::size_t>(y) * canvasSize + static_cast<std::size_t>(x)] = true;
        }
        bool isCovered = true;
        for (std::int32_t y = y0; y <= y1; ++y)
            for (std::int32_t x = x0; x <= x1; ++x)
                isCovered =
                    isCovered && covered[static_cast<std::size_t>(y) * canvasSize + static_cast<std::size_t>(x)];
        CAPTURE(round);
        CHECK(isCovered);
        CHECK(PixelsOf(squares) <= std::int64_t{canvasSize} * canvasSize);
    }
}
