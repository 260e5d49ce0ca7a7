#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>

#include "apps/chalkpane/curves/curve_plot.h"
#include "apps/chalkpane/curves/curve_series.h"
#include "apps/chalkpane/presets/preset_places.h"
#include "chalkpane/parameters/animation/animated_map_xy.h"
#include "chalkpane/parameters/animation/animated_numbers.h"
#include "cli/error.h"

namespace {

using namespace chalkpane;
using namespace chalkpane::app;

std::string Refusal(void (*attempt)()) {
    try {
        attempt();
    } catch (const cli::Error& error) {
        return error.what();
    }
    return "";
}

Preset Read(const std::string& text, const FrameRateClock& clock) { return ReadPresetText(text, "look", {}, clock); }

TEST_CASE("A clock of frames counts seconds at its rate and takes the nearest frame") {
    const FrameRateClock clock(30.0);
    CHECK_EQ(clock.timeToFrame(0.033333), 1);  // as six decimals say it
    CHECK_EQ(clock.timeToFrame(-0.5), -15);
    CHECK_EQ(clock.timeToFrame(1e300), 1 << 30);
    CHECK_EQ(clock.timeToFrame(-1e300), -(1 << 30));
    CHECK_EQ(clock.timeToFrame(std::nan("")), 0);
    for (const std::int32_t frame : {-7, 0, 1, 12345}) CHECK_EQ(clock.timeToFrame(clock.frameToTime(frame)), frame);
}

TEST_CASE("A parameter is found by its name or its label, and where several have one, by its object too") {
    const FrameRateClock clock;
    const Preset preset = Read(
        "chain 'C' { filter 'Softener' {} filter 'Edge Detect' { 'Brightness' true 1 }\n"
        "filter 'Edge Detect' { 'Brightness' true 2 } }",
        clock);
    const auto numberOf = [&](std::string_view name) {
        return SeriesAt(*FindPlace(preset, "look", name).value, clock).at(0);
    };
    CHECK_EQ(numberOf("filter Edge Detect: Brightness"), 1.0);
    CHECK_EQ(numberOf("Filter edge detect 2: brightness"), 2.0);
    CHECK_THROWS_WITH_AS(
        (void)FindPlace(preset, "look", "Brightness"),
        "look: there are several parameters \"Brightness\"; say which: \"filter Edge Detect: Brightness\" or "
        "\"filter Edge Detect 2: Brightness\"",
        cli::Error);
    const Preset brush = Read("brush 'B' { 'Brush Size' true 9 }", clock);
    CHECK_EQ(SeriesAt(*FindPlace(brush, "look", " size ").value, clock).at(0), 9.0);
    CHECK_THROWS_WITH_AS((void)FindPlace(brush, "look", "Brush Sice"),
                         "look: there is no parameter \"Brush Sice\"; did you mean \"Brush Size\"?", cli::Error);
}

TEST_CASE("Frames are two whole numbers with two stops between them, not backwards") {
    CHECK_EQ(ParseFrames("-3..12").first, -3);
    CHECK_EQ(ParseFrames("-3..12").last, 12);
    CHECK_EQ(ParseFrames("7..7").last, 7);
    CHECK_EQ(Refusal([] { (void)ParseFrames("7"); }), "--frames: \"7\" is not a range such as 0..99");
    CHECK_EQ(Refusal([] { (void)ParseFrames("7..3"); }), "--frames: \"7..3\" runs backwards");
    CHECK_NE(Refusal([] { (void)ParseFrames("a..3"); }), "");
    CHECK_NE(Refusal([] { (void)ParseFrames("0..99999999999"); }), "");
}

TEST_CASE("The frames of keys run from the first of all to the last; without keys there is frame 0") {
    const FrameRateClock clock(10.0);
    const Preset preset = Read(
        "brush 'B' { 'Brush Size' keys { 1 0 0 3\n 2 0 0 4 } 'Brush Opacity' keys { -1 0 0 1 } 'Brush Decay' true 0 }",
        clock);
    const FrameRange range = FramesOfKeys(PlacesIn(preset), clock);
    CHECK_EQ(range.first, -10);
    CHECK_EQ(range.last, 20);
    const FrameRange none = FramesOfKeys({FindPlace(preset, "look", "Brush Decay")}, clock);
    CHECK_EQ(none.first, 0);
    CHECK_EQ(none.last, 0);
}

TEST_CASE("Each kind of value is told as its numbers") {
    FrameRateClock clock;
    const Preset preset = Read(
        "brush 'B' { 'Brush Size' true 9 'Brush Opacity' true 0.5 'Brush Rotation' true 0.25\n"
        "'Brush Color' keys { 0 0 0 true 10 20 30\n 1 0 0 true 60 20 30 } 'Brush Offset' true 1 -2\n"
        "'Brush Match Path' true true 'Brush Space Type' true 1 'Cutout File' keys { 0 0 0 'a' 1 0 0 'b' } }",
        clock);
    clock.StandAt(5);
    const auto numbers = [&](const char* name) { return SeriesAt(*FindPlace(preset, "look", name).value, clock); };
    CHECK(numbers("Brush Size") == std::vector{9.0});
    CHECK(numbers("Brush Opacity") == std::vector{0.5});
    CHECK(numbers("Brush Rotation") == std::vector{0.25});
    CHECK(numbers("Brush Color") == std::vector{20.0, 20.0, 30.0});  // a fifth of the way
    CHECK(numbers("Brush Offset") == std::vector{1.0, -2.0});
    CHECK(numbers("Brush Match Path") == std::vector{1.0});
    CHECK(numbers("Brush Space Type") == std::vector{1.0});
    CHECK(numbers("Cutout File").at(0) == doctest::Approx(0.8));
    const ParameterValue& file = *FindPlace(preset, "look", "Cutout File").value;
    CHECK(TextsAt(file, clock) == std::vector<std::string>{"a", "b"});
    CHECK(SeriesNames(*FindPlace(preset, "look", "Brush Group").value).empty());
    CHECK(SeriesNames(*FindPlace(preset, "look", "Profile Graph").value).empty());
}

TEST_CASE("Handles end where the curve's controls stand") {
    const FrameRateClock clock(1.0);
    ParameterDef definition("Test", "Test", ParameterType::real, 0);
    AnimatedDouble value(&definition, false, &clock);
    value.addKeyDouble(0, 0.0);
    value.addKeyDouble(10, 10.0);
    value.addKeyDouble(20, 40.0);
    CHECK(HandleEnds(value, 0, clock).empty());  // straight on both sides
    value.keyAt(0)->setHandles(0.0, 0.5);
    value.keyAt(1)->setHandles(-0.3, 0.0);
    const auto ends = HandleEnds(value, 0, clock);
    REQUIRE_EQ(ends.size(), 2);
    CHECK_EQ(ends[0].end.frame, 5.0);  // flat: half of 10 frames
    CHECK_EQ(ends[0].end.value, 0.0);
    CHECK_EQ(ends[1].key.frame, 10.0);
    CHECK(ends[1].end.frame == doctest::Approx(7.0));
    CHECK(ends[1].end.value == doctest::Approx(4.0));  // 10 - 3 frames of the slope 40 / 20

    ParameterDef mapped("Test", "Test", ParameterType::mappedPair, 0);
    AnimatedMapXY map(&mapped, false, &clock);
    map.addKeyDoubleXY(0, 0.0, 0.0);
    map.addKeyDoubleXY(10, 1.0, 1.0);
    map.keyAt(0)->setHandles(0.5, 0.5);
    CHECK(HandleEnds(map, 0, clock).empty());  // it runs on a path of its own
    CHECK_EQ(KeyNumber(map, 1, 1), 1.0);
}

TEST_CASE("The handles of a logarithmic value end at plain numbers") {
    const FrameRateClock clock(1.0);
    ParameterDef definition("Test", "Test", ParameterType::logarithmic, 0);
    AnimatedLogDouble value(&definition, false, &clock);
    value.addKeyDouble(0, 1.0);
    value.addKeyDouble(10, 100.0);
    value.keyAt(0)->setHandles(0.0, -0.5);
    const auto ends = HandleEnds(value, 0, clock);
    REQUIRE_EQ(ends.size(), 1);
    CHECK(ends[0].end.value == doctest::Approx(10.0));  // half of the way in factors
}

TEST_CASE("A plot shows the curve above where it is high and the keys in white rings") {
    FrameRateClock clock(1.0);
    ParameterDef definition("Test", "Test", ParameterType::real, 0);
    AnimatedDouble value(&definition, false, &clock);
    value.addKeyDouble(0, 0.0);
    value.addKeyDouble(100, 1.0);
    const picture_io::Picture picture = PlotCurve(value, "Test", {0, 100}, clock);
    // The lowest of the curve's yellow pixels in a column, -1 for none.
    const auto lowest = [&](std::int32_t x) {
        for (std::int32_t y = picture.height - 1; y >= 0; --y) {
            const auto pixel = picture.At(x, y);
            if (pixel[0] > 200 && pixel[1] > 150 && pixel[2] < 120) return y;
        }
        return -1;
    };
    const std::int32_t early = lowest(picture.width / 4);
    const std::int32_t late = lowest(3 * picture.width / 4);
    REQUIRE_GT(early, 0);
    REQUIRE_GT(late, 0);
    CHECK_LT(late, early - 100);
    // A single frame and a film of years are plotted as well.
    for (const FrameRange& frames : {FrameRange{50, 50}, FrameRange{-1000000000, 1000000000}})
        CHECK_NOTHROW((void)PlotCurve(value, "", frames, clock));
    // So are numbers that differ by less than they can be told apart, and the largest that there are.
    for (const auto& [low, high] : {std::pair{1e18, 1e18 + 128}, {-1.7e308, 1.7e308}, {1e-320, 0.0}}) {
        AnimatedDouble odd(&definition, false, &clock);
        odd.addKeyDouble(0, low);
        odd.addKeyDouble(100, high);
        odd.keyAt(0)->setHandles(0.0, -0.5);
        CHECK_NOTHROW((void)PlotCurve(odd, "", {0, 100}, clock));
    }
}

}  // namespace
