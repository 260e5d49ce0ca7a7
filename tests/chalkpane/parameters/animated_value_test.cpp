#include "chalkpane/parameters/animation/animated_value.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "chalkpane/parameters/animation/animated_file_name.h"
#include "chalkpane/parameters/animation/animated_numbers.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"
#include "tests/chalkpane/parameters/frame_clock.h"
#include "tests/reference/key_segment.h"

namespace {

using namespace chalkpane;

const FrameClock frames;

double At(const AnimatedValue& value, std::int32_t frame) {
    double out = -1.0;
    value.valueAtFrameDouble(frame, out);
    return out;
}

AnimatedDouble Free() { return {nullptr, false, &frames}; }

// An AnimatedDouble is not copied: it is filled where it stands.
void Fill(AnimatedValue& value, std::initializer_list<std::pair<std::int32_t, double>> keys) {
    for (const auto& [frame, number] : keys) value.addKeyDouble(frame, number);
}

TEST_CASE("Without keys the parent answers, without a parent zero") {
    AnimatedDouble value(nullptr, false, &frames);
    CHECK_EQ(At(value, 5), 0.0);
    DoubleValue parent(2.5);
    value.setParent(&parent);
    CHECK_EQ(At(value, 5), 2.5);
    FloatValue floatParent(1.5f);
    AnimatedFloat narrow(nullptr, false, &frames);
    narrow.setParent(&floatParent);
    CHECK_EQ(At(narrow, 5), 1.5);
    IntegerValue integerParent(7);
    AnimatedInt whole(nullptr, false, &frames);
    whole.setParent(&integerParent);
    std::int32_t number = 0;
    whole.valueAtFrameInteger(0, number);
    CHECK_EQ(number, 7);
    ParameterDef definition("Test", "Test", ParameterType::boolean, 0);
    definition.setDefault(true);
    const AnimatedBoolean flag(&definition, false, &frames);
    bool isTrue = false;
    flag.getBoolean(isTrue);
    CHECK(isTrue);
}

TEST_CASE("A single key answers everywhere") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{10, 3.0}});
    for (const std::int32_t frame : {-100, 9, 10, 11, 1000}) CHECK_EQ(At(value, frame), 3.0);
    CHECK(value.isSetLocally());
}

TEST_CASE("Beyond the ends the span is exact on the end key, between two keys it names the left one") {
    AnimatedDouble value(nullptr, false, &frames);
    CHECK_FALSE(value.findKeySpan(0).exact);
    CHECK_FALSE(value.findKeySpan(0).between);
    Fill(value, {{10, 1.0}, {20, 2.0}, {30, 3.0}});
    CHECK(value.findKeySpan(9).exact);
    CHECK_EQ(value.findKeySpan(9).index, 0);
    CHECK(value.findKeySpan(31).exact);
    CHECK_EQ(value.findKeySpan(31).index, 2);
    CHECK(value.findKeySpan(20).exact);
    CHECK_EQ(value.findKeySpan(20).index, 1);
    CHECK(value.findKeySpan(29).between);
    CHECK_FALSE(value.findKeySpan(29).exact);
    CHECK_EQ(value.findKeySpan(29).index, 1);
}

TEST_CASE("A key on a frame that has one keeps the handles and replaces the value") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{10, 1.0}});
    value.keyAt(0)->setHandles(0.25, -0.5);
    Fill(value, {{10, 7.0}});
    REQUIRE_EQ(value.keyCount(), 1);
    CHECK_EQ(value.keyAt(0)->inHandle, 0.25);
    CHECK_EQ(value.keyAt(0)->outHandle, -0.5);
    CHECK_EQ(At(value, 10), 7.0);
}

TEST_CASE("Keys added in any order stand by frame, and times come from the clock") {
    const FrameClock quarters(4.0);
    AnimatedDouble value(nullptr, false, &quarters);
    Fill(value, {{20, 2.0}, {0, 0.0}, {10, 1.0}});
    REQUIRE_EQ(value.keyCount(), 3);
    for (std::int32_t i = 0; i < 3; ++i) CHECK_EQ(value.keyValue(i), i);
    CHECK_EQ(value.keyAt(1)->time, 2.5);
    CHECK_EQ(value.keyAt(3), nullptr);
    CHECK_EQ(value.keyAt(-1), nullptr);
}

TEST_CASE("Handles of 0 make a line; the frame is truncated first") {
    const AnimatedDouble value = Free();
    // 0 + 100 * (2 - 0) / 10
    CHECK_EQ(value.evaluateKeySegment(0, 10, 2.9, 0, 0, 99, 0, 100, -99), 20.0);
    CHECK_EQ(value.evaluateKeySegment(-10, 10, -2.9, 0, 0, 0, 0, 100, 0), 40.0);
}

TEST_CASE("Positive handles are flat at both ends whatever the slopes") {
    const AnimatedDouble value = Free();
    for (const double slope : {0.0, 50.0, -1000.0}) {
        // Handles of 1/3 make x(u) = 10 u. At u = 1/4: 3 * 3/4 * 1/16 * 100 + 100/64 = 15.625.
        CHECK(value.evaluateKeySegment(0, 10, 2.5, 1.0 / 3, 0, slope, 1.0 / 3, 100, slope) == doctest::Approx(15.625));
        CHECK(value.evaluateKeySegment(0, 10, 5, 1.0 / 3, 0, slope, 1.0 / 3, 100, slope) == doctest::Approx(50.0));
    }
}

TEST_CASE("Negative handles run along the slopes") {
    const AnimatedDouble value = Free();
    // Controls 0 + 1/3 * 10 * 10 and 100 - 1/3 * 10 * 10: a line.
    CHECK(value.evaluateKeySegment(0, 10, 2.5, -1.0 / 3, 0, 10, -1.0 / 3, 100, 10) == doctest::Approx(25.0));
}

TEST_CASE("The slope at a key runs from its left neighbour to its right one, or stops at the ends") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 0.0}, {10, 10.0}, {20, 40.0}});
    for (std::int32_t i = 0; i < 3; ++i) value.keyAt(i)->setHandles(-1.0 / 3, -1.0 / 3);
    // Slopes 10/10 = 1 and 40/20 = 2; controls 10/3 and 10 - 20/3 = 10/3; middle (0 + 10 + 10 + 10) / 8 = 3.75.
    CHECK(At(value, 5) == doctest::Approx(3.75));
    // Second span: slopes 2 and 30/10 = 3; controls 10 + 20/3 and 40 - 10; middle (10 + 50 + 90 + 40) / 8 = 23.75.
    CHECK(At(value, 15) == doctest::Approx(23.75));
}

TEST_CASE("A disabled curve answers far-off numbers, one for lines and one for cubics") {
    AnimatedDouble value(nullptr, false, &frames);
    value.setCurveDisabled(1);
    CHECK_EQ(value.evaluateKeySegment(0, 10, 5, 0, 0, 0, 0, 1, 0), -9999000000000.0);
    CHECK_EQ(value.evaluateKeySegment(0, 10, 5, 0.1, 0, 0, 0, 1, 0), -99999000000000.0);
    value.setCurveDisabled(0);
    CHECK_EQ(value.evaluateKeySegment(0, 10, 5, 0, 0, 0, 0, 1, 0), 0.5);
}

TEST_CASE("The cubic agrees with its plain reference") {
    const AnimatedDouble value = Free();
    constexpr unsigned seed = 20260;
    std::mt19937 random(seed);
    const auto uniform = [&random](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int i = 0; i < 10000; ++i) {
        const double t0 = std::floor(uniform(-1000, 1000));
        const double t1 = t0 + 1 + std::floor(uniform(0, 500));
        const double frame = t0 + std::floor(uniform(0, t1 - t0 + 1));
        const double a = uniform(-1, 1);  // beyond, x may turn back
        const double b = uniform(-1, 1);
        const double va = uniform(-100, 100);
        const double vb = uniform(-100, 100);
        const double sa = uniform(-2, 2);
        const double sb = uniform(-2, 2);
        const auto wanted = static_cast<double>(reference::KeySegment(t0, t1, frame, a, va, sa, b, vb, sb));
        const double got = value.evaluateKeySegment(t0, t1, frame, a, va, sa, b, vb, sb);
        // The solver stops within 1e-8 of the frame and is refined from there. The span is that of the four controls,
        // between which the course stays.
        const auto [low, high] =
            std::minmax({va, a < 0 ? va - a * sa * (t1 - t0) : va, vb, b < 0 ? vb + b * sb * (t1 - t0) : vb});
        const double span = high - low;
        CAPTURE(seed);
        CAPTURE(i);
        CHECK(std::fabs(got - wanted) <= 1e-6 * span);
    }
}

TEST_CASE("A float narrows, an integer and a colour truncate, a colour keeps its low 16 bits") {
    const std::initializer_list<std::pair<std::int32_t, double>> keys = {{0, 0.0}, {10, 0.0}, {20, 300.0}};
    // Left flat, right along the slope 300/20 = 15: control 0 - 1/3 * 15 * 10 = -50; middle 3/8 * -50 = -18.75.
    const auto shape = [](AnimatedValue& value) {
        value.keyAt(0)->setHandles(0.0, 1.0 / 3);
        value.keyAt(1)->setHandles(-1.0 / 3, 0.0);
    };
    AnimatedFloat narrow(nullptr, false, &frames);
    Fill(narrow, keys);
    shape(narrow);
    CHECK(At(narrow, 5) == doctest::Approx(-18.75));
    CHECK_EQ(At(narrow, 5), static_cast<double>(static_cast<float>(At(narrow, 5))));

    AnimatedInt whole(nullptr, false, &frames);
    AnimatedIntXY pair(nullptr, false, &frames);
    AnimatedColour paint(nullptr, false, &frames);
    for (const auto& [frame, number] : keys) {
        const auto n = static_cast<std::int32_t>(number);
        whole.setIntegerXY(frame, n);
        pair.addKeyIntegerXY(frame, 10 * frame, n);
        paint.addKeyColour(frame, {static_cast<std::uint16_t>(n), 100, static_cast<std::uint16_t>(frame)});
    }
    shape(whole);
    shape(pair);
    shape(paint);
    std::int32_t number = 0;
    whole.valueAtFrameInteger(5, number);
    CHECK_EQ(number, -18);
    std::int32_t x = 0;
    std::int32_t y = 0;
    pair.valueAtFrameIntegerXY(5, x, y);
    CHECK_EQ(y, -18);
    // x: 0 and 100, right slope 200/20 = 10: control 100 - 100/3; middle (0 + 0 + 3 * 66.67 + 100) / 8 = 37.5
    CHECK_EQ(x, 37);
    Colour colour;
    paint.valueAtFrameColour(5, colour);
    CHECK_EQ(colour.red, 65536 - 18);
    CHECK_EQ(colour.green, 100);
    CHECK_EQ(colour.blue, 3);  // as x above, a tenth: 3.75
}

TEST_CASE("An integer's pair setter takes a frame and a value") {
    FrameClock clock;
    clock.current = 99;
    AnimatedInt whole(nullptr, false, &clock);
    whole.setIntegerXY(12, 34);
    REQUIRE_EQ(whole.keyCount(), 1);
    CHECK_EQ(whole.keyAt(0)->time, 12.0);
    std::int32_t number = 0;
    whole.getInteger(number);
    CHECK_EQ(number, 34);
    whole.setInteger(5);
    CHECK_EQ(whole.keyAt(1)->time, 99.0);
}

TEST_CASE("Plain accessors act at the clock's current frame") {
    FrameClock clock;
    AnimatedDouble value(nullptr, false, &clock);
    value.setDouble(1.0);
    clock.current = 10;
    value.setFloat(2.0f);
    clock.current = 5;
    double out = 0.0;
    value.getDouble(out);
    CHECK_EQ(out, 1.5);
    value.getStoredDouble(out);
    CHECK_EQ(out, 1.5);
    float ignored = 9.0f;
    value.getFloat(ignored);
    CHECK_EQ(ignored, 9.0f);
    std::string text = "kept";
    value.getString(text);
    CHECK_EQ(text, "kept");
}

TEST_CASE("A boolean holds its left key and is the one discrete class") {
    AnimatedBoolean flag(nullptr, false, &frames);
    flag.addKeyBoolean(0, true);
    flag.addKeyBoolean(10, false);
    bool out = false;
    flag.valueAtFrameBoolean(9, out);
    CHECK(out);
    flag.valueAtFrameBoolean(10, out);
    CHECK_FALSE(out);
    CHECK(flag.isDiscrete());
    CHECK_FALSE(Free().isDiscrete());
}

TEST_CASE("A logarithmic value grows by equal factors") {
    AnimatedLogDouble value(nullptr, false, &frames);
    Fill(value, {{0, 1.0}, {10, 100.0}});
    CHECK(At(value, 5) == doctest::Approx(10.0));
    double parentAnswer = 0.0;
    AnimatedLogDouble empty(nullptr, false, &frames);
    CHECK_EQ(At(empty, 0), 0.0);
    DoubleValue parent(5.0);
    empty.setParent(&parent);
    empty.valueAtFrameDouble(0, parentAnswer);
    CHECK_EQ(parentAnswer, 5.0);  // plain, not taken for a logarithm
}

TEST_CASE("A logarithmic 0 is raised to the minimum, 0.01 without a range") {
    AnimatedLogDouble free(nullptr, false, &frames);
    CHECK_EQ(free.toLog(0.0), std::log(0.01));
    ParameterDef definition("Test", "Test", ParameterType::logarithmic, 0);
    definition.setLimits(0.5, 10.0);
    AnimatedLogDouble limited(&definition, false, &frames);
    limited.addKeyDouble(0, 0.0);
    CHECK(At(limited, 0) == doctest::Approx(0.5));
    definition.setLimits(0.0, 10.0);
    CHECK_EQ(limited.toLog(-3.0), -10000.0);
    CHECK_EQ(AnimatedLogDouble::fromLog(-10000.0), 0.0);
    limited.addKeyDouble(0, 0.0);
    CHECK_EQ(At(limited, 0), 0.0);
    CHECK(AnimatedLogDouble::fromLog(-9999.0) == 0.0);  // e to it, which underflows
}

TEST_CASE("File names cross-fade between keys") {
    AnimatedFileName value(nullptr, false, &frames);
    CHECK(value.blendAt(0).nameA.empty());
    FileNameValue parent(FileName("parent"));
    value.setParent(&parent);
    CHECK_EQ(value.blendAt(0).nameA.string(), "parent");
    value.addKey(0, FileName("a"));
    value.addKey(10, FileName("b"));
    value.keyAt(1)->setHandles(0.0, 0.0);
    FileNameBlend blend = value.blendAt(2);
    CHECK_EQ(blend.nameA.string(), "a");
    CHECK_EQ(blend.nameB.string(), "b");
    CHECK(blend.weight == doctest::Approx(0.8));
    value.keyAt(1)->setHandles(0.5, -0.25);
    blend = value.blendAt(10);
    CHECK_EQ(blend.nameA.string(), "b");
    CHECK_EQ(blend.weight, 1.0);
    CHECK_EQ(blend.timeA, 0.5);
    CHECK_EQ(blend.timeB, -0.25);
}

TEST_CASE("The weight of a file name takes its slopes as the others do, from 1 down to 0") {
    AnimatedFileName value(nullptr, false, &frames);
    for (const std::int32_t frame : {0, 10, 30}) value.addKey(frame, FileName("x"));
    value.keyAt(0)->setHandles(0.0, -1.0 / 3);
    value.keyAt(1)->setHandles(-1.0 / 3, 0.0);
    // Slopes -1/10 and -1/30: controls 1 - 1/3 and 0 + 1/3 * 10/30 = 1/9; middle (1 + 2 + 1/3 + 0) / 8 = 10/24.
    CHECK(value.blendAt(5).weight == doctest::Approx(10.0 / 24.0));
}

TEST_CASE("resortKey follows the time; a tie goes left; in order nothing happens") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 0.0}, {10, 1.0}, {20, 2.0}, {30, 3.0}});
    CHECK_EQ(value.resortKey(1), 1);
    value.keyAt(0)->setTime(25.0);
    CHECK_EQ(value.resortKey(0), 2);
    CHECK_EQ(value.keyValue(2), 0.0);
    value.keyAt(3)->setTime(10.0);
    CHECK_EQ(value.resortKey(3), 0);  // left of the key that already stood at 10
    CHECK_EQ(value.keyValue(0), 3.0);
    CHECK_EQ(value.resortKey(9), 9);
}

TEST_CASE("removeCoincidentKeys leaves the named key alone on its frame") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 0.0}, {10, 1.0}, {20, 2.0}, {30, 3.0}, {40, 4.0}});
    value.keyAt(1)->setTime(20.0);
    value.keyAt(3)->setTime(20.0);
    CHECK_EQ(value.removeCoincidentKeys(2), 1);
    REQUIRE_EQ(value.keyCount(), 3);
    CHECK_EQ(value.keyValue(1), 2.0);
    CHECK_EQ(value.removeCoincidentKeys(1), 1);
    CHECK_EQ(value.keyCount(), 3);
}

TEST_CASE("removeKey takes those behind it on its frame too") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 0.0}, {10, 1.0}, {20, 2.0}, {30, 3.0}});
    value.keyAt(2)->setTime(10.0);
    value.removeKey(1);
    REQUIRE_EQ(value.keyCount(), 2);
    CHECK_EQ(value.keyValue(1), 3.0);
    value.removeKey(17);
    value.removeKey(-1);
    CHECK_EQ(value.keyCount(), 2);
}

TEST_CASE("Adding on a crowded frame leaves one key there") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 0.0}, {10, 1.0}, {20, 2.0}, {30, 3.0}});
    value.keyAt(1)->setHandles(0.5, 0.5);
    value.keyAt(2)->setTime(10.0);
    Fill(value, {{10, 9.0}});
    REQUIRE_EQ(value.keyCount(), 3);
    CHECK_EQ(value.keyValue(1), 9.0);
    CHECK_EQ(value.keyAt(1)->inHandle, 0.5);
}

TEST_CASE("retimeKeys keeps frames under another clock") {
    const FrameClock quarters(4.0);
    AnimatedDouble value(nullptr, false, &quarters);
    Fill(value, {{10, 1.0}});
    value.keyAt(0)->setTime(10.0);  // as if it had been made under one frame to a unit
    value.retimeKeys(frames);
    CHECK_EQ(value.keyAt(0)->time, 2.5);
}

TEST_CASE("clearKeys and reset empty the list and leave the value set; clearValue unsets it") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 1.0}});
    value.reset();
    CHECK_EQ(value.keyCount(), 0);
    CHECK(value.isSetLocally());
    value.clearValue();
    CHECK_FALSE(value.isSetLocally());
}

TEST_CASE("addKeyAtFrame holds what the curve is there") {
    AnimatedDouble value(nullptr, false, &frames);
    Fill(value, {{0, 0.0}, {10, 10.0}});
    value.addKeyAtFrame(3);
    REQUIRE_EQ(value.keyCount(), 3);
    CHECK_EQ(value.keyValue(1), 3.0);
}

TEST_CASE("The curve editor's accessors store") {
    AnimatedDouble value(nullptr, false, &frames);
    CHECK_FALSE(value.getCurveLocked());
    CHECK_EQ(value.getCurveRange(), 120);
    CHECK_EQ(value.getCurveScale(), 1.0);
    value.setCurveLocked(true);
    value.setCurveRange(50);
    value.setCurveScale(0.1f);
    CHECK(value.getCurveLocked());
    CHECK_EQ(value.getCurveRange(), 50);
    CHECK_EQ(value.getCurveScale(), static_cast<double>(0.1f));
    CHECK(value.isEditable());
    CHECK(value.isAnimated());
}

TEST_CASE("Normalised numbers run in the range over the curve scale") {
    ParameterDef definition("Test", "Test", ParameterType::real, 0);
    definition.setLimits(2.0, 10.0);
    AnimatedDouble value(&definition, false, &frames);
    Fill(value, {{0, 4.0}});
    CHECK_EQ(value.normalisedKeyValue(0, 0), 0.25);  // (4 - 2) / 8
    CHECK_EQ(value.normalisedValue(0), 0.25);
    value.setCurveScale(2.0f);
    CHECK_EQ(value.normalisedKeyValue(0, 0), 0.75);  // (4 - 1) / (5 - 1)
    value.keyAt(0)->setHandles(0.5, 0.25);
    value.setNormalisedKeyValue(0, 0.5, 0);  // 1 + 4 * 0.5
    CHECK_EQ(value.keyValue(0), 3.0);
    CHECK_EQ(value.keyAt(0)->outHandle, 0.25);
    value.setNormalisedKeyValue(0, 0.0, 0);  // 1, raised to the unscaled minimum
    CHECK_EQ(value.keyValue(0), 2.0);
    value.setNormalisedKeyValue(5, 0.5, 0);
    CHECK_EQ(value.normalisedKeyValue(5, 0), 0.0);
}

TEST_CASE("Pairs have components X and Y, colours Red, Green and Blue, each in its colour") {
    const AnimatedDoubleXY pair(nullptr, false, &frames);
    const AnimatedColour paint(nullptr, false, &frames);
    CHECK_EQ(pair.componentCount(), 2);
    CHECK_EQ(paint.componentCount(), 3);
    CHECK_EQ(Free().componentCount(), 1);
    std::string name;
    Colour colour;
    const char* const names[] = {"Red", "Green", "Blue"};
    for (std::int32_t i = 0; i < 3; ++i) {
        paint.componentName(name, i);
        CHECK_EQ(name, names[i]);
        paint.componentColour(colour, i);
        CHECK(colour == Colour{static_cast<std::uint16_t>(i == 0 ? 12850 : 0),
                               static_cast<std::uint16_t>(i == 1 ? 12850 : 0),
                               static_cast<std::uint16_t>(i == 2 ? 12850 : 0)});
    }
    pair.componentName(name, 1);
    CHECK_EQ(name, "Y");
    pair.componentColour(colour, 2);
    CHECK(colour == Colour{});
    Free().componentColour(colour, 0);
    CHECK(colour == Colour{});
}

TEST_CASE("Operations of another type do nothing") {
    AnimatedDouble value(nullptr, false, &frames);
    value.addKeyBoolean(0, true);
    value.addKeyColour(0, {});
    value.addKeyDoubleXY(0, 1.0, 2.0);
    value.addKeyIntegerXY(0, 1, 2);
    CHECK_EQ(value.keyCount(), 0);
    std::int32_t number = 42;
    value.valueAtFrameInteger(0, number);
    CHECK_EQ(number, 42);
}

TEST_CASE("The animated column of the factory, each built to record undo") {
    const auto make = [](int type) {
        static std::vector<std::unique_ptr<ParameterDef>> kept;
        kept.push_back(
            std::make_unique<ParameterDef>("Test", "Test", static_cast<ParameterType>(type), std::uint8_t{0}));
        return DataSet::createValue(kept.back().get(), true, &frames);
    };
    CHECK(dynamic_cast<AnimatedInt*>(make(0).get()) != nullptr);
    const auto isExactly = [&](int type, const std::type_info& wanted) {
        const auto value = make(type);
        const ParameterValue& made = *value;
        return typeid(made) == wanted;
    };
    CHECK(isExactly(1, typeid(AnimatedDouble)));
    CHECK(dynamic_cast<AnimatedBoolean*>(make(2).get()) != nullptr);
    CHECK(dynamic_cast<AnimatedColour*>(make(3).get()) != nullptr);
    CHECK(dynamic_cast<AnimatedIntXY*>(make(4).get()) != nullptr);
    CHECK(isExactly(5, typeid(AnimatedDoubleXY)));
    CHECK(dynamic_cast<AnimatedLogDouble*>(make(13).get()) != nullptr);
    for (const int type : {16, 23, 24, 25}) CHECK(dynamic_cast<AnimatedFloat*>(make(type).get()) != nullptr);
    CHECK(dynamic_cast<AnimatedFileName*>(make(17).get()) != nullptr);
}

TEST_CASE("Keys out of order and clocks that answer nonsense are survived") {
    class WildClock final : public AnimationClock {
    public:
        double frameToTime(std::int32_t frame) const override { return frame; }
        std::int32_t timeToFrame(double time) const override {
            return time > 0 ? std::numeric_limits<std::int32_t>::max() : std::numeric_limits<std::int32_t>::min();
        }
        std::int32_t currentFrame() const override { return std::numeric_limits<std::int32_t>::min(); }
    };
    const WildClock wild;
    AnimatedInt whole(nullptr, false, &wild);
    AnimatedColour paint(nullptr, false, nullptr);
    for (const std::int32_t frame : {5, -5, 7, -7, 0}) {
        whole.setIntegerXY(frame, std::numeric_limits<std::int32_t>::max());
        paint.addKeyColour(frame, {65535, 0, 1});
    }
    for (std::int32_t i = 0; i < whole.keyCount(); ++i) {
        whole.keyAt(i)->setTime(i % 2 == 0 ? 1e300 : std::numeric_limits<double>::quiet_NaN());
        whole.keyAt(i)->setHandles(1e300, -1e300);
        whole.resortKey(i);
    }
    std::int32_t number = 0;
    for (const std::int32_t frame : {0, 1, std::numeric_limits<std::int32_t>::max()})
        whole.valueAtFrameInteger(frame, number);
    for (std::int32_t i = 0; i < paint.keyCount(); ++i) paint.keyAt(i)->setTime(-i);
    Colour colour;
    for (std::int32_t frame = -10; frame < 10; ++frame) paint.valueAtFrameColour(frame, colour);
    CHECK_EQ(paint.keyCount(), 5);
}

}  // namespace
