#include <doctest/doctest.h>

#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <random>

#include "chalkpane/base/random.h"
#include "chalkpane/brush/profiles/feather_brush_profile.h"
#include "chalkpane/brush/profiles/graph_brush_profile.h"
#include "chalkpane/brush/profiles/one_pixel_brush_profile.h"
#include "chalkpane/brush/profiles/texture_brush_profile.h"
#include "tests/chalkpane/composite/paste_fixture.h"
#include "tests/reference/brush_profiles.h"

namespace chalkpane {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

// From the middle of a mask, which is `c` pixels from its lower left one.
int Around(const Image& mask, std::int32_t c, std::int32_t xx, std::int32_t yy) {
    return ValuesAt(mask, c + xx, c + yy)[0];
}

int GraphAt(const DabShape& shape, std::int32_t xx, std::int32_t yy) {
    const GraphBrushProfile profile(shape, Matrix3(), Depth::Eight, nullptr);
    return Around(*profile.BaseMask(), shape.radius + shape.margin, xx, yy);
}

int FeatherAt(const DabShape& shape, double hardness, std::int32_t xx, std::int32_t yy) {
    const FeatherBrushProfile profile(shape, Matrix3(), Depth::Eight, hardness);
    return Around(*profile.BaseMask(), shape.radius + shape.margin, xx, yy);
}

std::unique_ptr<RoundBrushProfile> Cone(const DabShape& shape) {
    auto cone = std::make_unique<RoundBrushProfile>(Matrix3(), Depth::Eight);
    cone->Prepare(shape, Matrix3());
    return cone;
}

// Of radius 2: side 5, and the dab's point 2.5 from the lower left corner.
GraphBrushProfile Small(const Matrix3& matrix = Matrix3()) {
    return {{2, 1.0, 0.0, 1.0, 0}, matrix, Depth::Eight, nullptr};
}

// Straight lines from point to point.
GraphValue GraphOf(std::initializer_list<DoublePair> points) {
    ShapePointList list;
    list.clear();
    for (const DoublePair& point : points) list.insert(point.x, point.y);
    return GraphValue(list);
}

bool Shares(const Image* image, const Image* other) { return image->buffer == other->buffer; }

bool EqualsGrid(const Image& mask, const reference::MaskGrid& grid) {
    if (mask.Bounds() != Rect(0, 0, grid.side - 1, grid.side - 1)) return false;
    reference::Picture picture(mask);
    for (std::int32_t y = 0; y < grid.side; ++y) {
        for (std::int32_t x = 0; x < grid.side; ++x) {
            const auto wanted = static_cast<std::uint8_t>(grid.At(x, y));
            const int got = picture.At(x, y, 0);
            if (got == (mask.GetDepth() == Depth::Eight ? wanted : Widen(wanted))) continue;
            MESSAGE("at ", x, ", ", y, " wanted ", static_cast<int>(wanted), " in 8 bits, got ", got);
            return false;
        }
    }
    return true;
}

}  // namespace

// w = (0 + 0) * 2 + 1, and one more for speckle. The middle has q = 0, t = 1.
TEST_CASE("A radius of 0 gives one pixel, or two by two for speckle") {
    const DabShape point{0, 1.0, 0.0, 1.0, 0};
    const GraphBrushProfile graph(point, Matrix3(), Depth::Eight, nullptr);
    const FeatherBrushProfile feather(point, Matrix3(), Depth::Eight, 0.5);
    const TextureBrushProfile texture(point, Matrix3(), Depth::Eight);
    CHECK(graph.BaseMask()->Bounds() == Rect(0, 0, 0, 0));
    CHECK(feather.BaseMask()->Bounds() == Rect(0, 0, 0, 0));
    CHECK(texture.BaseMask()->Bounds() == Rect(0, 0, 1, 1));
    CHECK_EQ(ValuesAt(*graph.BaseMask(), 0, 0)[0], 255);
    CHECK_EQ(ValuesAt(*feather.BaseMask(), 0, 0)[0], 255);
}

// R = 2.5. One pixel aside and one up, |u| / R = |v| / R = 0.4.
//   roundness 1: q = sqrt(0.16 + 0.16) = 0.565685, (1 - q) * 255 + 0.5 = 111.25
//   roundness 2: q = 0.4 + 0.4, 0.2 * 255 + 0.5 = 51.5
//   roundness 0.01: q = 0.4 * 2^0.005 = 0.401389, 0.598611 * 255 + 0.5 = 153.1
TEST_CASE("Roundness 1 is an ellipse, 2 a rhombus, towards 0 a square") {
    CHECK_EQ(GraphAt({2, 1.0, 0.0, 1.0, 0}, 1, 1), 111);
    CHECK_EQ(GraphAt({2, 1.0, 0.0, 2.0, 0}, 1, 1), 51);
    CHECK_EQ(GraphAt({2, 1.0, 0.0, 0.01, 0}, 1, 1), 153);
}

// Without the limit, 0.4^(2 / 0.001) is 0 in a double, and so would be q: full coverage.
TEST_CASE("A roundness below 0.01 acts as 0.01") {
    for (const double roundness : {0.001, 0.0, -1.0}) CHECK_EQ(GraphAt({2, 1.0, 0.0, roundness, 0}, 1, 1), 153);
}

// v = xx * 2: at xx = 1 q = 2 / 2.5 = 0.8, 51.5; at xx = 2 q = 1.6, outside; u = yy: at yy = 1 q = 0.4, 153.5, at
// yy = 2 q = 0.8.
TEST_CASE("A flatness of 2 halves the dab along x") {
    const DabShape flat{2, 2.0, 0.0, 1.0, 0};
    CHECK_EQ(GraphAt(flat, 1, 0), 51);
    CHECK_EQ(GraphAt(flat, 2, 0), 0);
    CHECK_EQ(GraphAt(flat, 0, 1), 153);
    CHECK_EQ(GraphAt(flat, 0, 2), 51);
    CHECK_EQ(GraphAt({2, 1.0, 0.0, 1.0, 0}, 1, 0), GraphAt({2, 1.0, 0.0, 1.0, 0}, 0, 1));
}

// a = -45 degrees: u = (yy + xx) * 0.7071, v = (xx - yy) * 0.7071 * 2. At (1, 1) u = 1.4142, v = 0, q = 0.565685; at
// (1, -1) u = 0, v = 2.8284, q = 1.13.
TEST_CASE("Rotation turns the dab clockwise") {
    const DabShape rotated{2, 2.0, 45.0, 1.0, 0};
    CHECK_EQ(GraphAt(rotated, 1, 1), 111);
    CHECK_EQ(GraphAt(rotated, 1, -1), 0);
}

// The side grows by twice the margin; the radius of the shape does not.
TEST_CASE("A margin surrounds the shape") {
    const GraphBrushProfile profile({2, 1.0, 0.0, 1.0, 3}, Matrix3(), Depth::Eight, nullptr);
    CHECK(profile.BaseMask()->Bounds() == Rect(0, 0, 10, 10));
    CHECK_EQ(Around(*profile.BaseMask(), 5, 1, 1), 111);
    CHECK_EQ(Around(*profile.BaseMask(), 5, 3, 0), 0);
}

// d = sqrt(2) / 2.5 = 0.565685; at (2, 2) it is above 1.
TEST_CASE("The cone goes by the plain distance, whatever the roundness") {
    for (const double roundness : {0.01, 1.0, 2.0}) {
        const auto cone = Cone({2, 1.0, 0.0, roundness, 0});
        CHECK_EQ(Around(*cone->BaseMask(), 2, 1, 1), 111);
        CHECK_EQ(Around(*cone->BaseMask(), 2, 0, 0), 255);
        CHECK_EQ(Around(*cone->BaseMask(), 2, 2, 2), 0);
    }
}

// R = 2.5: q = 0.4 one pixel aside, 0.8 two aside, 1.13 in the corner. (1 - (0.8 - 0.5) / 0.5) * 255 + 0.5 = 102.5.
TEST_CASE("A feather has a full core and a straight slope") {
    const DabShape shape{2, 1.0, 0.0, 1.0, 0};
    CHECK_EQ(FeatherAt(shape, 0.5, 1, 0), 255);
    CHECK_EQ(FeatherAt(shape, 0.5, 2, 0), 102);
    CHECK_EQ(FeatherAt(shape, 0.5, 2, 2), 0);
    // Hardness 0 is the cone: 0.6 * 255 + 0.5 = 153.5.
    CHECK_EQ(FeatherAt(shape, 0.0, 1, 0), 153);
}

// Flatness 1.25: v = 2 * 1.25 = 2.5, q = 1 to the bit, neither above 1 nor below the hardness of 1; the slope is then
// 0 / 0, stored as 0.
TEST_CASE("A feather of hardness 1 ends in a pixel of 0 where q is 1") {
    const DabShape shape{2, 1.25, 0.0, 1.0, 0};
    CHECK_EQ(FeatherAt(shape, 1.0, 2, 0), 0);
    CHECK_EQ(FeatherAt(shape, 1.0, 0, 2), 255);
    // At hardness 0 the same pixel is (1 - 1) * 255 + 0.5.
    CHECK_EQ(FeatherAt(shape, 0.0, 2, 0), 0);
}

// Radius 1, side 4, R = 1.5: inside are the four pixels half a pixel from the middle, where q = 0.4714; the next are at
// sqrt(1 + 1 / 9). The generator from seed 0: state 2531011, answer 38, n = 0.00116, n * n * 255 + 0.5 = 0.50; then
// 7719 (14.65), 21238 (107.63), 2437 (1.91).
TEST_CASE("Speckle draws its numbers inside the shape alone, the bottom row first") {
    const TextureBrushProfile profile({1, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight);
    const Image& mask = *profile.BaseMask();
    CHECK(mask.Bounds() == Rect(0, 0, 3, 3));
    CHECK_EQ(ValuesAt(mask, 1, 1)[0], 0);
    CHECK_EQ(ValuesAt(mask, 2, 1)[0], 14);
    CHECK_EQ(ValuesAt(mask, 1, 2)[0], 107);
    CHECK_EQ(ValuesAt(mask, 2, 2)[0], 1);
    CHECK_EQ(ValuesAt(mask, 0, 0)[0], 0);
    CHECK_EQ(ValuesAt(mask, 3, 2)[0], 0);
}

// The fifth number from seed 0 is 8855. The second profile shares the masks of the first.
TEST_CASE("Two speckles of one size are the same, and leave the generator the same") {
    const DabShape shape{1, 1.0, 0.0, 1.0, 0};
    SeedRandom(99);
    const TextureBrushProfile first(shape, Matrix3(), Depth::Eight);
    CHECK_EQ(Random(), 8855);
    SeedRandom(7);
    const TextureBrushProfile second(shape, Matrix3(), Depth::Eight);
    CHECK_EQ(Random(), 8855);
    CHECK(Shares(first.BaseMask(), second.BaseMask()));
    ProfileCache::Shared()->Clear();
    const TextureBrushProfile drawnAnew(shape, Matrix3(), Depth::Eight);
    CHECK_FALSE(Shares(first.BaseMask(), drawnAnew.BaseMask()));
    CHECK_EQ(Random(), 8855);
    CHECK_EQ(ValuesAt(*drawnAnew.BaseMask(), 1, 2)[0], 107);
}

// 111 * 64 + 111 / 4 = 7131.
TEST_CASE("At 14 bits a mask is the 8-bit one widened") {
    const GraphBrushProfile profile({2, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Fourteen, nullptr);
    CHECK_EQ(profile.BaseMask()->depth, 1);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 1, 1), 7131);
}

TEST_CASE("A graph profile follows its graph and shows it") {
    GraphValue graph = GraphOf({{0.0, 0.5}, {1.0, 0.5}});
    const GraphBrushProfile profile({2, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, &graph);
    CHECK_EQ(profile.GetGraph(), &graph);
    // 0.5 * 255 + 0.5 = 128 inside; 0 in the corner, where t is below 0.
    CHECK_EQ(Around(*profile.BaseMask(), 2, 0, 0), 128);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 1, 1), 128);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 2, 2), 0);
    const FeatherBrushProfile feather({2, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, 0.5);
    CHECK_EQ(feather.GetGraph(), nullptr);
}

// The middle has t = 1, exactly on the last point, whose y is answered as it stands: 1.5 * 255 + 0.5 = 383, of which
// 127 is the low byte. One pixel aside the curve is limited: t = 0.6, at least the line 0.9, so 230 or more.
TEST_CASE("A point of the graph above 1 stores the low byte of its coverage") {
    GraphValue graph = GraphOf({{0.0, 0.0}, {1.0, 1.5}});
    const GraphBrushProfile profile({2, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, &graph);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 0, 0), 127);
    CHECK_GE(Around(*profile.BaseMask(), 2, 1, 0), 229);
}

// Handles at 0.5 steps: t = 0.6 one pixel aside holds the y of the left point, 0.25 * 255 + 0.5 = 64.25.
TEST_CASE("A stepped graph makes steps") {
    GraphValue graph = GraphOf({{0.0, 0.25}, {1.0, 1.0}});
    graph.list().stepped = true;
    const GraphBrushProfile profile({2, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, &graph);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 1, 0), 64);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 0, 0), 255);
}

TEST_CASE("A graph that inherits gives its parent's curve") {
    GraphValue parent = GraphOf({{0.0, 0.5}});
    GraphValue graph{ShapePointList()};
    graph.setParent(&parent);
    const GraphBrushProfile profile({2, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, &graph);
    CHECK_EQ(Around(*profile.BaseMask(), 2, 1, 0), 128);
}

// A quarter of a pixel to the right, one pixel of 255 spreads over two: read at 0.25 and 0.75 from the new centres, so
// 192 * 255 / 256 = 191 and 64 * 255 / 256 = 63, truncated.
TEST_CASE("The shifted copies are eighths of a pixel in x, then in y") {
    const GraphBrushProfile profile({0, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr);
    CHECK(profile.Shifted(0, 0)->Bounds() == Rect(0, 0, 0, 0));
    REQUIRE(profile.Shifted(2, 0)->Bounds() == Rect(0, 0, 1, 0));
    CHECK_EQ(ValuesAt(*profile.Shifted(2, 0), 0, 0)[0], 191);
    CHECK_EQ(ValuesAt(*profile.Shifted(2, 0), 1, 0)[0], 63);
    REQUIRE(profile.Shifted(0, 2)->Bounds() == Rect(0, 0, 0, 1));
    CHECK_EQ(ValuesAt(*profile.Shifted(0, 2), 0, 0)[0], 191);
    CHECK_EQ(ValuesAt(*profile.Shifted(0, 2), 0, 1)[0], 63);
    for (std::size_t i = 0; i < 8; ++i)
        for (std::size_t j = 0; j < 8; ++j)
            CHECK(profile.Shifted(j, i)->Bounds() == Rect(0, 0, j == 0 ? 0 : 1, i == 0 ? 0 : 1));
}

// (10 + 0.5 - 10) * 8 = 4; 10.25 gives 6; 10.5 gives 8, which is 0. Placing: 10 - 2.5 = 7.5, 7.75 and 8.
TEST_CASE("A mask is the copy for its eighth of a pixel, half a pixel on") {
    auto profile = Small();
    const auto whole = profile.GetMask(10.0, 10.25, 0.0);
    CHECK(Shares(whole.get(), profile.Shifted(4, 6)));
    CHECK(whole->Bounds() == Rect(7, 7, 12, 12));
    const auto half = profile.GetMask(10.5, 10.0, 0.0);
    CHECK(Shares(half.get(), profile.Shifted(0, 4)));
    CHECK(half->Bounds() == Rect(8, 7, 12, 12));
    CHECK(profile.Shifted(4, 6)->Bounds() == Rect(0, 0, 5, 5));
}

// -0.3: (-0.3 + 0.5 - 0) * 8 = 1.6, copy 1; -0.3 - 2.5 = -2.8, truncated to -2. -0.9: (-0.9 + 0.5) * 8 = -3.2, copy 3.
TEST_CASE("Below zero positions are truncated towards it") {
    auto profile = Small();
    const auto mask = profile.GetMask(-0.3, -0.9, 0.0);
    CHECK(Shares(mask.get(), profile.Shifted(1, 3)));
    CHECK_EQ(mask->x0, -2);
    CHECK_EQ(mask->y0, -3);
}

TEST_CASE("An angle of up to 0.0001 degrees does not turn a mask") {
    auto profile = Small();
    CHECK(Shares(profile.GetMask(10.5, 10.5, 0.0001).get(), profile.Shifted(0, 0)));
    CHECK(Shares(profile.GetMask(10.5, 10.5, -0.0001).get(), profile.Shifted(0, 0)));
    CHECK_FALSE(Shares(profile.GetMask(10.5, 10.5, 0.00011).get(), profile.Shifted(0, 0)));
}

// Radius 3, R = 3.5, narrow in x: at (2, 0) q = 4 / 3.5, outside; at (0, 2) q = 0.5714, 0.4286 * 255 = 109. A quarter
// turn swaps the two, but for positions that are stored in 1/65536 and read in 1/256 of a pixel, which costs a few
// levels.
TEST_CASE("A rotated mask is rotated clockwise about the middle of its copy") {
    GraphBrushProfile profile({3, 2.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr);
    const auto quarter = profile.GetMask(3.5, 3.5, 90.0);
    CHECK_GT(Around(*quarter, 3, 2, 0), 105);
    CHECK_LT(Around(*quarter, 3, 0, 2), 5);
    const auto eighth = profile.GetMask(3.5, 3.5, 45.0);
    CHECK_GT(Around(*eighth, 3, 1, 1), 130);  // from (0, 1.414): 0.596 * 255 = 152
    CHECK_LT(Around(*eighth, 3, 1, -1), 80);  // from (1.414, 0): 0.192 * 255 = 49
}

// At 10.25 the copy is shifted by six eighths: the dab's point lies at 2.5 + 0.75 = 3.25 in it, and its middle at 3.
// Half a turn mirrors it about the middle, so the dab moves by half a pixel. Few levels of tolerance as above.
TEST_CASE("Half a turn mirrors a shifted copy about its middle, not about the dab") {
    auto profile = Small();
    const Image& copy = *profile.Shifted(6, 0);
    const auto rotated = profile.GetMask(10.25, 10.5, 180.0);
    for (std::int32_t x = 0; x < 6; ++x) {
        const int wanted = ValuesAt(copy, 5 - x, 2)[0];
        CHECK_LE(std::abs(ValuesAt(*rotated, 7 + x, 10)[0] - wanted), 3);
    }
}

// 10.7 - 2 = 8.7, 3.2 - 2 = 1.2; -1.5 - 2 = -3.5.
TEST_CASE("The fast mask is the base mask in whole pixels, past the matrix") {
    auto profile = Small(Matrix3::Scaling(2.0, 2.0));
    const auto mask = profile.GetMaskFast(10.7, 3.2);
    CHECK(Shares(mask.get(), profile.BaseMask()));
    CHECK(mask->Bounds() == Rect(8, 1, 12, 5));
    CHECK_EQ(profile.GetMaskFast(-1.5, 0.0)->x0, -3);
}

// Scaled by 2: (10, 20) is (20, 40) and the offset 2.5 is 5. Moved by 100: both move, and the mask stays.
TEST_CASE("The matrix moves the position and the offset of a mask") {
    auto scaled = Small(Matrix3::Scaling(2.0, 2.0));
    CHECK_EQ(scaled.GetMask(10.0, 20.0, 0.0)->x0, 15);
    CHECK_EQ(scaled.GetMask(10.0, 20.0, 0.0)->y0, 35);
    auto moved = Small(Matrix3::Translation(100.0, 0.0));
    CHECK_EQ(moved.GetMask(10.0, 20.0, 0.0)->x0, 7);
}

TEST_CASE("A profile of one pixel is a full square that is never rotated") {
    OnePixelBrushProfile pixel(0, Matrix3::Scaling(2.0, 2.0), Depth::Fourteen);
    Rect rect;
    pixel.GetRect(rect);
    CHECK(rect == Rect(0, 0, 0, 0));
    const auto mask = pixel.GetMask(10.7, 3.2, 45.0);
    CHECK(mask->Bounds() == Rect(21, 6, 21, 6));
    CHECK_EQ(ValuesAt(*mask, 21, 6)[0], 16383);
    CHECK(pixel.GetMaskFast(10.7, -0.5)->Bounds() == Rect(10, 0, 10, 0));
    OnePixelBrushProfile square(2, Matrix3(), Depth::Eight);
    const auto large = square.GetMask(10.7, 3.2, 0.0);  // 8.7 and 1.2
    REQUIRE(large->Bounds() == Rect(8, 1, 12, 5));
    for (std::int32_t y = 1; y <= 5; ++y)
        for (std::int32_t x = 8; x <= 12; ++x) CHECK_EQ(ValuesAt(*large, x, y)[0], 255);
}

TEST_CASE("A shape without pixels, or one beyond the largest, has no masks") {
    for (const std::int32_t radius : {-1, -100, 1025, largest, std::numeric_limits<std::int32_t>::min()}) {
        GraphBrushProfile graph({radius, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, nullptr);
        FeatherBrushProfile feather({radius, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight, 0.5);
        TextureBrushProfile texture({radius, 1.0, 0.0, 1.0, 0}, Matrix3(), Depth::Eight);
        OnePixelBrushProfile pixel(radius, Matrix3(), Depth::Eight);
        for (BrushProfile* profile : std::initializer_list<BrushProfile*>{&graph, &feather, &texture, &pixel}) {
            Rect rect(1, 2, 3, 4);
            profile->GetRect(rect);
            CHECK(rect == Rect());
            CHECK_FALSE(profile->GetMask(10.0, 10.0, 0.0));
            CHECK_FALSE(profile->GetMaskFast(10.0, 10.0));
        }
    }
    const GraphBrushProfile overflowing({largest, 1.0, 0.0, 1.0, largest}, Matrix3(), Depth::Eight, nullptr);
    CHECK_FALSE(overflowing.BaseMask());
    const RoundBrushProfile unprepared(Matrix3(), Depth::Eight);
    CHECK_FALSE(unprepared.BaseMask());
}

// NaN is no distance, so it is not outside: a graph answers its last point for it, a feather stores 0, speckle leaves
// 0.
TEST_CASE("Numbers that are none make masks that can be had") {
    const double hostile[] = {notANumber, std::numeric_limits<double>::infinity(), -1e300, 1e300, 0.0};
    for (const double number : hostile) {
        for (const DabShape& shape : {DabShape{3, number, 0.0, 1.0, 0}, DabShape{3, 1.0, number, 1.0, 0},
                                      DabShape{3, 1.0, 0.0, number, 0}, DabShape{3, number, number, number, 2}}) {
            CHECK(GraphBrushProfile(shape, Matrix3(), Depth::Eight, nullptr).BaseMask());
            CHECK(FeatherBrushProfile(shape, Matrix3(), Depth::Eight, number).BaseMask());
            CHECK(TextureBrushProfile(shape, Matrix3(), Depth::Fourteen).BaseMask());
            CHECK(Cone(shape)->BaseMask());
        }
    }
}

TEST_CASE("A mask that cannot be placed is not there") {
    auto profile = Small();
    OnePixelBrushProfile pixel(0, Matrix3(), Depth::Eight);
    for (const double far : {notANumber, std::numeric_limits<double>::infinity(), 1e300, -1e300, 1.1e9}) {
        CHECK_FALSE(profile.GetMask(far, 0.0, 0.0));
        CHECK_FALSE(profile.GetMask(0.0, far, 30.0));
        CHECK_FALSE(profile.GetMaskFast(far, 0.0));
        CHECK_FALSE(pixel.GetMask(0.0, far, 0.0));
    }
    CHECK_FALSE(profile.GetMask(5.0, 5.0, notANumber));
    auto broken = Small(Matrix3::Translation(notANumber, 0.0));
    CHECK_FALSE(broken.GetMask(5.0, 5.0, 0.0));
    CHECK(profile.GetMask(5.0, 5.0, 1e300));  // an angle like any other
}

TEST_CASE("Masks equal the plain reference for shapes of all kinds") {
    constexpr std::uint32_t seed = 20240;
    std::mt19937 random(seed);
    const auto pick = [&](const auto& from) { return from[random() % std::size(from)]; };
    const auto real = [&](double low, double high) { return std::uniform_real_distribution<>(low, high)(random); };
    const double exact[] = {0.0, 45.0, 90.0, 180.0, 360.0};
    const double flats[] = {0.5, 1.0, 1.0, 2.0, 3.7};
    for (int round = 0; round < 400; ++round) {
        const DabShape shape{static_cast<std::int32_t>(random() % 12), pick(flats),
                             random() % 2 == 0 ? pick(exact) : real(-720.0, 720.0),
                             random() % 4 == 0 ? 1.0 : real(-0.1, 2.0), static_cast<std::int32_t>(random() % 3)};
        const reference::Shape plain{shape.radius, shape.flatness, shape.rotation, shape.roundness, shape.margin};
        const double hardness = random() % 5 == 0 ? 1.0 : real(0.0, 1.0);
        const Depth depth = random() % 2 == 0 ? Depth::Eight : Depth::Fourteen;
        ShapePointList curve;
        curve.insert(real(0.0, 1.0), real(0.0, 1.0));
        curve[0].setOutHandle(real(0.0, 0.5), real(0.0, 1.0));
        GraphValue graph(curve);
        const auto reference = [&](reference::Kind kind) {
            return reference::ProfileMask(
                kind, plain, [&](double t) { return curve.evaluate(t); }, hardness);
        };
        CAPTURE(seed);
        CAPTURE(round);
        CAPTURE(shape.rotation);
        CHECK(EqualsGrid(*GraphBrushProfile(shape, Matrix3(), depth, &graph).BaseMask(),
                         reference(reference::Kind::Graph)));
        CHECK(EqualsGrid(*FeatherBrushProfile(shape, Matrix3(), depth, hardness).BaseMask(),
                         reference(reference::Kind::Feather)));
        CHECK(
            EqualsGrid(*TextureBrushProfile(shape, Matrix3(), depth).BaseMask(), reference(reference::Kind::Texture)));
        CHECK(EqualsGrid(*Cone(shape)->BaseMask(), reference(reference::Kind::Round)));
    }
}

}  // namespace chalkpane
