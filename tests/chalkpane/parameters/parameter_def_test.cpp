#include "chalkpane/parameters/parameter_def.h"

#include <doctest/doctest.h>

#include <limits>

#include "chalkpane/parameters/compound_values.h"
#include "chalkpane/parameters/number_conversion.h"
#include "chalkpane/parameters/parameter_list.h"
#include "chalkpane/parameters/scalar_values.h"

namespace {

using namespace chalkpane;
using enum ParameterType;

ParameterDef Definition(ParameterType type) { return {"Test", "Test", type, 0}; }

template <typename Value>
bool Is(const ValuePointer& value) {
    return dynamic_cast<Value*>(value.get()) != nullptr;
}

// The range of a type without declared limits, or (-1, -1).
DoublePair FallbackRange(ParameterType type) {
    DoublePair range{-1.0, -1.0};
    Definition(type).getRange(range.x, range.y);
    return range;
}

TEST_CASE("A declaration starts as stated and ids rise by one") {
    const ParameterDef first("Long Name", "Label", colour, 7);
    const ParameterDef second("Other", "Other", real, 8);
    CHECK_EQ(first.name, "Long Name");
    CHECK_EQ(first.label, "Label");
    CHECK_EQ(static_cast<int>(first.type), 3);
    CHECK_EQ(first.code, 7);
    CHECK_EQ(first.flagA, 0);
    CHECK_EQ(first.flagB, 0);
    CHECK_EQ(first.flagC, 0);
    CHECK(first.inherits);
    CHECK_EQ(first.clampMode, 3);
    CHECK(first.minimum == nullptr);
    CHECK(first.maximum == nullptr);
    CHECK(first.defaultValue == nullptr);
    CHECK_EQ(second.id, first.id + 1);
}

TEST_CASE("Limits are built in the class that fits the type and the form") {
    struct Case {
        ParameterType type;
        char whole;  // class of the limits given as integers, doubles, floats: i, f, d, or - for none
        char real;
        char single;
    };
    for (const Case& c : {Case{integer, 'i', 'i', 'i'},
                          {integerPair, 'i', 'i', 'i'},
                          {float32, 'f', 'f', 'f'},
                          {angle0To360, 'f', 'f', 'f'},
                          {angle720, 'f', 'f', 'f'},
                          {angle360, 'f', 'f', 'f'},
                          {real, 'd', 'd', 'd'},
                          {position, 'd', 'd', 'd'},
                          {position3d, 'd', 'd', 'd'},
                          {scaledPosition, 'd', 'd', 'd'},
                          {doublePair, 'd', 'd', 'd'},
                          {mappedPair, 'd', '-', '-'},
                          {logarithmic, '-', 'd', '-'},
                          {boolean, '-', '-', '-'},
                          {colour, '-', '-', '-'},
                          {enumeration, '-', '-', '-'},
                          {plainInteger, '-', '-', '-'},
                          {string, '-', '-', '-'}}) {
        CAPTURE(static_cast<int>(c.type));
        const auto check = [&](auto low, auto high, char wanted) {
            ParameterDef definition = Definition(c.type);
            definition.setLimits(low, high);
            CHECK_EQ(Is<IntegerValue>(definition.minimum), wanted == 'i');
            CHECK_EQ(Is<FloatValue>(definition.minimum), wanted == 'f');
            CHECK_EQ(Is<DoubleValue>(definition.maximum), wanted == 'd');
            CHECK_EQ(definition.minimum == nullptr, wanted == '-');
            CHECK_EQ(definition.maximum == nullptr, wanted == '-');
        };
        check(1, 2, c.whole);
        check(1.0, 2.0, c.real);
        check(1.0f, 2.0f, c.single);
    }
}

TEST_CASE("A default whose form does not fit the type leaves the default as it was") {
    ParameterDef flag = Definition(boolean);
    flag.setDefault(1);
    CHECK(flag.defaultValue == nullptr);
    flag.setDefault(true);
    CHECK(Is<BooleanValue>(flag.defaultValue));
    flag.setDefault(std::uint8_t{0});
    bool value = false;
    flag.defaultValue->getBoolean(value);
    CHECK(value);

    ParameterDef plain = Definition(plainInteger);
    plain.setDefault(5);
    CHECK(Is<IntegerValue>(plain.defaultValue));
    ParameterDef whole = Definition(integer);
    whole.setDefault(5.0);
    CHECK(whole.defaultValue == nullptr);
    ParameterDef angle = Definition(angle720);
    angle.setDefault(5);
    CHECK(Is<FloatValue>(angle.defaultValue));
    ParameterDef number = Definition(real);
    number.setDefault(5.0f);
    CHECK(Is<DoubleValue>(number.defaultValue));
    ParameterDef log = Definition(logarithmic);
    log.setDefault(5.0);
    CHECK(log.defaultValue == nullptr);
    ParameterDef paint = Definition(colour);
    paint.setDefault(Colour::fromIndex(0));
    CHECK(Is<ColourValue>(paint.defaultValue));
    ParameterDef choice = Definition(enumeration);
    choice.setDefault(std::uint8_t{200});
    CHECK(Is<EnumerationValue>(choice.defaultValue));
}

TEST_CASE("The angle types have a range without limits; other types have none") {
    CHECK(FallbackRange(angle0To360) == DoublePair{0.0, 360.0});
    CHECK(FallbackRange(angle720) == DoublePair{-720.0, 720.0});
    CHECK(FallbackRange(angle360) == DoublePair{-360.0, 360.0});
    for (const ParameterType type : {integer, real, float32, colour, logarithmic})
        CHECK(FallbackRange(type) == DoublePair{-1.0, -1.0});
}

TEST_CASE("Declared limits go before the range of an angle type") {
    ParameterDef angle = Definition(angle0To360);
    angle.setLimits(10.0, 20.0);
    double low = 0.0;
    double high = 0.0;
    REQUIRE(angle.getRange(low, high));
    CHECK_EQ(low, 10.0);
    CHECK_EQ(high, 20.0);
}

TEST_CASE("The range of a colour is told by its red components") {
    ParameterDef paint = Definition(colour);
    paint.minimum = makeValue<ColourValue>(Colour{1, 2, 3});
    paint.maximum = makeValue<ColourValue>(Colour{4000, 5, 6});
    double low = 0.0;
    double high = 0.0;
    REQUIRE(paint.getRange(low, high));
    CHECK_EQ(low, 1.0);
    CHECK_EQ(high, 4000.0);
}

TEST_CASE("Other types have no range even with limits") {
    ParameterDef flag = Definition(boolean);
    flag.minimum = makeValue<IntegerValue>(0);
    flag.maximum = makeValue<IntegerValue>(1);
    double low = 0.0;
    double high = 0.0;
    CHECK_FALSE(flag.getRange(low, high));
}

TEST_CASE("normalise runs in the scaled range and answers the value itself without one") {
    ParameterDef number = Definition(real);
    CHECK_EQ(number.normalise(5.0, 2.0), 5.0);
    CHECK_EQ(number.denormalise(5.0, 2.0), 5.0);
    number.setLimits(2.0, 10.0);
    // (4 - 2/2) / (10/2 - 2/2) = 3 / 4
    CHECK_EQ(number.normalise(4.0, 2.0), 0.75);
}

TEST_CASE("denormalise interpolates in the scaled range and limits by the unscaled one") {
    ParameterDef number = Definition(real);
    number.setLimits(2.0, 10.0, 0);
    // 2/2 + (10/2 - 2/2) * 0.25 = 1 + 4 * 0.25 = 2; at 0 it is 1, below the declared minimum of 2
    CHECK_EQ(number.denormalise(0.25, 2.0), 2.0);
    CHECK_EQ(number.denormalise(0.0, 2.0), 1.0);
    number.clampMode = 1;
    CHECK_EQ(number.denormalise(0.0, 2.0), 2.0);
    // at scale 1: 2 + 8 * 2 = 18
    CHECK_EQ(number.denormalise(2.0, 1.0), 18.0);
    number.clampMode = 2;
    CHECK_EQ(number.denormalise(2.0, 1.0), 10.0);
    CHECK_EQ(number.denormalise(-1.0, 1.0), -6.0);
    number.clampMode = 3;
    CHECK_EQ(number.denormalise(-1.0, 1.0), 2.0);
    CHECK_EQ(number.denormalise(2.0, 1.0), 10.0);
}

TEST_CASE("find looks at the index first and scans otherwise") {
    ParameterList list;
    ParameterDef& zero = list.addBoolean("A", "A", 1, 0);
    ParameterDef& five = list.addInteger("B", "B", 3, 1, 9, 5);
    ParameterDef& one = list.addFloat("C", "C", 0.5f, 0.0f, 1.0f, 1);
    ParameterDef& two = list.addUnitFloat("D", "D", 0.5f, 0.0f, 1.0f, 2);
    CHECK_EQ(list.find(0), &zero);
    CHECK_EQ(list.find(5), &five);
    CHECK_EQ(list.find(1), &one);
    CHECK_EQ(list.find(2), &two);
    CHECK_EQ(list.find(4), nullptr);
    CHECK_EQ(list.find(255), nullptr);
    CHECK_EQ(ParameterList().find(0), nullptr);
}

TEST_CASE("find prefers the entry at the code's own index to an earlier one of the same code") {
    ParameterList list;
    list.addBoolean("A", "A", 1, 1);
    ParameterDef& atIndex = list.addBoolean("B", "B", 1, 1);
    CHECK_EQ(list.find(1), &atIndex);
}

TEST_CASE("The helpers declare type, code and slider flag") {
    ParameterList list;
    const auto check = [](const ParameterDef& added, ParameterType type, int code, int flagC) {
        CAPTURE(static_cast<int>(type));
        CHECK(added.type == type);
        CHECK_EQ(added.code, code);
        CHECK_EQ(added.flagC, flagC);
        CHECK_EQ(added.clampMode, 3);
        CHECK_EQ(added.name, "N");
        CHECK_EQ(added.label, "L");
    };
    check(list.addBoolean("N", "L", 7, 1), boolean, 1, 0);
    check(list.addInteger("N", "L", 1, 0, 2, 2), integer, 2, 0);
    check(list.addFloat("N", "L", 1, 0, 2, 3), float32, 3, 0);
    check(list.addUnitFloat("N", "L", 1, 0, 2, 4), float32, 4, 1);
    check(list.addAngle360("N", "L", 1, 0, 2, 5), angle0To360, 5, 0);
    check(list.addAngle("N", "L", 1, 0, 2, 6), angle360, 6, 0);
    check(list.addPercent("N", "L", 7, 1, 0, 2), real, 7, 1);
    check(list.addColour("N", "L", Colour::fromIndex(2), 8), colour, 8, 0);
    check(list.addGraph("N", "L"), graph, 0, 0);
    check(list.addEnumeration("N", "L", 3, 9), enumeration, 9, 0);
    check(list.addTypeNineteen("N", "L", 10), groupBegin, 10, 0);
    check(list.addTypeTwenty("N", "L", 11), groupEnd, 11, 0);
    double percentDefault = 0.0;
    list[6].defaultValue->getDouble(percentDefault);
    CHECK_EQ(percentDefault, 1.0);
    bool flag = false;
    list[0].defaultValue->getBoolean(flag);
    CHECK(flag);
}

TEST_CASE("Colour literals follow the index") {
    CHECK(Colour::fromIndex(0) == Colour{16383, 0, 0});
    CHECK(Colour::fromIndex(1) == Colour{0, 16383, 0});
    CHECK(Colour::fromIndex(2) == Colour{0, 0, 16383});
    CHECK(Colour::fromIndex(3) == Colour{16383, 16383, 16383});
    CHECK(Colour::fromIndex(4) == Colour{0, 0, 0});
    CHECK(Colour::fromIndex(-1) == Colour{0, 0, 0});
}

TEST_CASE("Numbers out of range narrow without harm") {
    CHECK_EQ(toFloat(1e300), std::numeric_limits<float>::infinity());
    CHECK_EQ(toFloat(-1e300), -std::numeric_limits<float>::infinity());
    CHECK_EQ(toFloat(std::numeric_limits<float>::max()), std::numeric_limits<float>::max());
    CHECK_EQ(truncateToInteger(-2.9), -2);
    CHECK_EQ(truncateToInteger(2147483647.9), 2147483647);
    CHECK_EQ(truncateToInteger(-2147483648.9), std::numeric_limits<std::int32_t>::min());
    CHECK_EQ(truncateToInteger(1e20), std::numeric_limits<std::int32_t>::min());
    CHECK_EQ(truncateToInteger(std::numeric_limits<double>::quiet_NaN()), std::numeric_limits<std::int32_t>::min());
}

}  // namespace
