#include "kel/module_loading/parameter.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

namespace kel {
namespace {

Parameter Make(ParameterKind kind, double minimum = 0, double maximum = 0) {
    Parameter parameter;
    parameter.kind = kind;
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    parameter.options = {"Color", "Erase"};
    return parameter;
}

}  // namespace

TEST_CASE("Both limits of a whole number are allowed and nothing beyond them") {
    const Parameter width = Make(ParameterKind::Int, 1, 30);
    CHECK_EQ(width.Refusal(1), "");
    CHECK_EQ(width.Refusal(30), "");
    CHECK_EQ(width.Refusal(0), "0 is below the minimum 1");
    CHECK_EQ(width.Refusal(31), "31 is above the maximum 30");
}

TEST_CASE("A number with a point keeps to its limits and has to be one") {
    const Parameter alpha = Make(ParameterKind::Float, 0, 100);
    CHECK_EQ(alpha.Refusal(100.0F), "");
    CHECK_EQ(alpha.Refusal(-0.5F), "-0.5 is below the minimum 0");
    CHECK_EQ(alpha.Refusal(std::nanf("")), "is not a number");
    CHECK_NE(alpha.Refusal(std::numeric_limits<float>::infinity()), "");
}

TEST_CASE("A switch is 0 or 1") {
    const Parameter active = Make(ParameterKind::Bool);
    CHECK_EQ(active.Refusal(0), "");
    CHECK_EQ(active.Refusal(1), "");
    CHECK_EQ(active.Refusal(2), "2 is neither 0 nor 1");
}

TEST_CASE("A choice names one of its options by number") {
    const Parameter type = Make(ParameterKind::Radio);
    CHECK_EQ(type.Refusal(1), "");
    CHECK_EQ(type.Refusal(2), "there is no option 2; there are: \"Color\" \"Erase\"");
    CHECK_NE(type.Refusal(-1), "");
}

TEST_CASE("A value of another kind is refused") {
    CHECK_EQ(Make(ParameterKind::Int, 1, 30).Refusal(5.0F), "wants a whole number");
    CHECK_EQ(Make(ParameterKind::Colour).Refusal(5), "wants a color");
    CHECK_EQ(Make(ParameterKind::Image).Refusal(5), "wants the name of an image");
    CHECK_EQ(Make(ParameterKind::Image).Refusal(std::string("chalk.png")), "");
    CHECK_EQ(Make(ParameterKind::Colour).Refusal(ColourBytes{255, 0, 0, 255}), "");
}

}  // namespace kel
