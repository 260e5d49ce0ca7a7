#include "kel/window/stylus_device.h"

#include <doctest/doctest.h>

#include <array>
#include <limits>

namespace kel {
namespace {

// As tablets list them: places, then pressure, then tilts.
const std::array<InputAxis, 4> tabletAxes{
    {{0, "Abs X", 0, 44704}, {1, "Abs Y", 0, 27940}, {2, "Abs Pressure", 0, 2048}, {3, "Abs Tilt X", -64, 63}}};
const std::array<InputAxis, 2> mouseAxes{{{0, "Rel X", -1, -1}, {1, "Rel Y", -1, -1}}};

double Pressure(const StylusDevice& device, unsigned char mask, std::initializer_list<double> values) {
    return PressureIn(device, std::array{mask}, std::vector<double>(values)).value_or(-1);
}

}  // namespace

TEST_CASE("A device with an axis of pressure is a pen, and its end that erases is known by its name") {
    const auto tip = DescribeStylus(12, "Tablet Pen stylus", tabletAxes);
    REQUIRE(tip);
    CHECK_EQ(tip->id, 12);
    CHECK_FALSE(tip->isEraser);
    CHECK_EQ(tip->pressureAxis, 2);
    CHECK_EQ(tip->most, 2048);
    const auto end = DescribeStylus(13, "TABLET Pen ERASER", tabletAxes);
    REQUIRE(end);
    CHECK(end->isEraser);
    CHECK_FALSE(DescribeStylus(2, "Optical Mouse", mouseAxes));
    CHECK(DescribeStylus(3, "Pen eraser", mouseAxes)->pressureAxis == -1);
    // An axis without a range tells nothing.
    CHECK_FALSE(DescribeStylus(4, "Pad", std::array{InputAxis{2, "Abs Pressure", 5, 5}}));
}

TEST_CASE("Pressure is the value's share of its axis, wherever it stands among those that have changed") {
    const StylusDevice pen = *DescribeStylus(12, "Pen", tabletAxes);
    CHECK_EQ(Pressure(pen, 0b0111, {100, 200, 512}), 0.25);  // 512 / 2048
    CHECK_EQ(Pressure(pen, 0b0101, {100, 1024}), 0.5);
    CHECK_EQ(Pressure(pen, 0b1100, {2048, -30}), 1.0);
    CHECK_EQ(Pressure(pen, 0b0100, {4096}), 1.0);
    CHECK_EQ(Pressure(pen, 0b0100, {-1}), 0.0);
    const std::array axes{InputAxis{9, "Abs Pressure", 100, 300}};
    const StylusDevice other = *DescribeStylus(12, "Pen", axes);
    // The tenth axis: the second bit of the second byte.
    CHECK_EQ(PressureIn(other, std::array<unsigned char, 2>{0b1, 0b10}, std::array{7.0, 150.0}).value_or(-1), 0.25);
}

TEST_CASE("Pressure that is not told, or is no number, stays what it was") {
    const StylusDevice pen = *DescribeStylus(12, "Pen", tabletAxes);
    CHECK_EQ(Pressure(pen, 0b0011, {100, 200}), -1);
    CHECK_EQ(Pressure(pen, 0b0111, {100, 200}), -1);  // fewer values than the mask says
    CHECK_EQ(Pressure(pen, 0b0100, {std::numeric_limits<double>::quiet_NaN()}), -1);
    CHECK_FALSE(PressureIn(pen, {}, {}));
    const StylusDevice end = *DescribeStylus(3, "Pen eraser", mouseAxes);
    CHECK_FALSE(PressureIn(end, std::array<unsigned char, 1>{0xFF}, std::array{1.0, 2.0}));
}

}  // namespace kel
