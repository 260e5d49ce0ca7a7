#include <doctest/doctest.h>

#include "apps/chalkpane/strokes/brush_choices.h"
#include "apps/chalkpane/strokes/brush_parser.h"
#include "apps/chalkpane/strokes/stroke_work.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/composite/blending_modes.h"
#include "tests/apps/chalkpane/strokes/painting.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using cli::testing::Thrown;

std::string Refusal(const std::string& text) {
    return Thrown([&] { (void)ParseStrokes(text, "s.json"); });
}

// What is said of a brush that has this in it.
std::string RefusalOfBrush(const std::string& members) {
    const std::string refusal = Refusal(
        R"({"canvas": {"width": 4, "height": 4}, "strokes": [{"points": [[0, 0]], "brush": {)" + members + "}}]}");
    const std::string place = "s.json: /strokes/0/brush";
    return refusal.starts_with(place) ? refusal.substr(place.size()) : refusal;
}

std::string RefusalOfPoints(const std::string& points) {
    return Refusal(R"({"canvas": {"width": 4, "height": 4}, "strokes": [{"points": )" + points + "}]}");
}

std::string RefusalOfCanvas(const std::string& canvas) {
    return Refusal(R"({"canvas": )" + canvas + R"(, "strokes": []})");
}

}  // namespace

TEST_CASE("What a brush says wrongly is named with its place and the nearest right word") {
    CHECK_EQ(RefusalOfBrush(R"("Opacty": 1)"), R"(/Opacty: unknown key; did you mean "Opacity"?)");
    CHECK_EQ(RefusalOfBrush(R"("colour": "#ffffff")"), R"(/colour: unknown key; did you mean "color"?)");
    CHECK_EQ(RefusalOfBrush(R"("Opacity": 1.5)"), "/Opacity: Opacity: 1.5 lies outside 0 .. 1");
    CHECK_EQ(RefusalOfBrush(R"("Opacity": "much")"), R"(/Opacity: Opacity: "much" is not a number)");
    CHECK_EQ(RefusalOfBrush(R"("Opacity": true)"), R"(/Opacity: Opacity: "true" is not a number)");
    CHECK_EQ(RefusalOfBrush(R"("Opacity": null)"), "/Opacity: a value cannot be null");
    CHECK_EQ(RefusalOfBrush(R"("Opacity": {})"), "/Opacity: a value cannot be object");
    CHECK_EQ(RefusalOfBrush(R"("Roundness": 2.5)"), "/Roundness: Roundness: 2.5 lies outside 0 .. 2");
    CHECK_EQ(RefusalOfBrush(R"("Size": 2.5)"), R"(/Size: Size: "2.5" is not a whole number)");
    CHECK_EQ(RefusalOfBrush(R"("Size": -1)"), "/Size: -1 lies outside 0 .. 1024");
    CHECK_EQ(RefusalOfBrush(R"("Brush Size": 1025)"), "/Brush Size: 1025 lies outside 0 .. 1024");
    CHECK_EQ(RefusalOfBrush(R"("Size": 3, "Brush Size": 3)"),
             R"(/Size: "Size" stands here already, by its other name "Brush Size")");
    CHECK_EQ(RefusalOfBrush(R"("Blend Mode": "Mutiply")"),
             R"(/Blend Mode: Blend Mode: there is no choice "Mutiply"; did you mean "Multiply"?)");
    const std::string beyond = std::to_string(blendModeCount);
    CHECK_EQ(RefusalOfBrush(R"("Blend Mode": )" + beyond),
             "/Blend Mode: Blend Mode: \"" + beyond + "\" lies outside 0 .. " + std::to_string(blendModeCount - 1));
    CHECK_EQ(RefusalOfBrush(R"("Source Type": "Eraze")"),
             R"(/Source Type: Source Type: there is no choice "Eraze"; did you mean "Eraser"?)");
    CHECK_EQ(RefusalOfBrush(R"("Source Type": 9)"), R"(/Source Type: Source Type: "9" lies outside 0 .. 8)");
    CHECK_EQ(RefusalOfBrush(R"("Profile Name": "Feather")"),
             R"(/Profile Name: there is no profile "Feather"; did you mean "Feathered"?)");
    CHECK_EQ(RefusalOfBrush(R"("Match Path": "maybe")"),
             R"(/Match Path: Match Path: "maybe" is neither true nor false)");
    CHECK_EQ(RefusalOfBrush(R"("Offset": [1])"), R"(/Offset: Offset: "1" is not 2 numbers with commas between them)");
    CHECK_EQ(RefusalOfBrush(R"("Profile Graph": [[0, 0], [2, 1]])"),
             R"(/Profile Graph: Profile Graph: the point "2,1" of a graph lies outside 0 .. 1)");
    CHECK_EQ(RefusalOfBrush(R"("File": 7)"), "/File: must be a text, not 7");
    CHECK_EQ(RefusalOfBrush(R"("color": "ret")"),
             R"(/color: "ret" is not a color such as #ff8000; did you mean "red"?)");
    CHECK_EQ(RefusalOfBrush(R"("color": "#ff800080")"),
             "/color: has an alpha, which a brush does not; set its Opacity");
    CHECK_EQ(RefusalOfBrush(R"("color": [0, 0, 16384])"), R"(/color: the color "0,0,16384" lies outside 0 .. 16383)");
    CHECK_EQ(RefusalOfBrush(R"("picture": {"fiel": "a.png"})"), R"(/picture/fiel: unknown key; did you mean "file"?)");
    CHECK_EQ(RefusalOfBrush(R"("picture": {"file": "a.png", "at": [1, 2, 3]})"), "/picture/at: must have 2 numbers");
    CHECK_EQ(RefusalOfBrush(R"("like": "soft")"), R"(/like: there is no brush "soft")");
}

TEST_CASE("What a filter of a chain says wrongly is named with its place and the nearest right word") {
    CHECK_EQ(RefusalOfBrush(R"("filters": [{"filter": "Medain"}])"),
             R"(/filters/0/filter: there is no filter "Medain"; did you mean "Median"?)");
    CHECK_EQ(RefusalOfBrush(R"("filters": [{"Radius": 3}])"), R"(/filters/0: "filter" is missing)");
    CHECK_EQ(RefusalOfBrush(R"("filters": [{"filter": "Median"}, {"filter": "Median", "Radios": 3}])"),
             R"(/filters/1/Radios: unknown key; did you mean "Radius"?)");
    CHECK_EQ(RefusalOfBrush(R"("filters": [{"filter": "Median", "Radius": 300}])"),
             "/filters/0/Radius: Radius: 300 lies outside 1 .. 20");
    CHECK_EQ(RefusalOfBrush(R"("filters": [{"filter": "Median", "active": 1}])"),
             "/filters/0/active: must be true or false, not 1");
    CHECK_EQ(RefusalOfBrush(R"("filters": ["Median"])"), R"(/filters/0: must be an object, not the text "Median")");
}

TEST_CASE("What a file says wrongly around its brushes is named with its place") {
    CHECK_EQ(RefusalOfPoints("[]"), "s.json: /strokes/0/points: must be a list of at least one point");
    CHECK_EQ(RefusalOfPoints("[[1]]"), "s.json: /strokes/0/points/0: must be a point, [x, y] or [x, y, pressure]");
    CHECK_EQ(RefusalOfPoints("[[1, 2], [1, 2, 1.5]]"),
             "s.json: /strokes/0/points/1/2: must be a number from 0 to 1, not 1.5");
    CHECK_EQ(RefusalOfPoints("[[1, 2e9]]"),
             "s.json: /strokes/0/points/0/1: must be a number from -1e+06 to 1e+06, not 2000000000.0");
    CHECK_EQ(RefusalOfPoints("[[1, 1e999]]"), "s.json: /strokes/0/points/0/1: the number is too large");
    CHECK(RefusalOfPoints("[[1, NaN]]").starts_with("s.json: line 1, column "));
    CHECK_EQ(RefusalOfCanvas(R"({"width": 4})"), R"(s.json: /canvas: "height" is missing)");
    CHECK_EQ(RefusalOfCanvas(R"({"width": 0, "height": 4})"),
             "s.json: /canvas/width: must be a whole number from 1 to 16384, not 0");
    CHECK_EQ(RefusalOfCanvas(R"({"picture": "a.png", "width": 4})"),
             "s.json: /canvas/width: does not go with a picture, which has its own size");
    CHECK_EQ(RefusalOfCanvas(R"({"width": 4, "hieght": 4})"),
             R"(s.json: /canvas/hieght: unknown key; did you mean "height"?)");
    CHECK_EQ(Refusal(R"({"canvas": {"width": 4, "height": 4}, "strokes": [], "depth": 16})"),
             "s.json: /depth: must be a whole number from 8 to 14, not 16");
    CHECK_EQ(Refusal(R"({"canvas": {"width": 4, "height": 4}, "strokes": [], "depth": 9})"),
             "s.json: /depth: must be 8 or 14");
    CHECK_EQ(Refusal(R"({"canvas": {"width": 4, "height": 4}, "strokes": [], "seed": -1})"),
             "s.json: /seed: must be a whole number from 0 to 4294967295, not -1");
    CHECK_EQ(Refusal(R"({"strokes": []})"), R"(s.json: /: "canvas" is missing)");
    CHECK_EQ(Refusal("[]"), "s.json: /: must be an object, not a list");
}

TEST_CASE("Brushes that are like one another must come to an end") {
    const auto refusal = [](const std::string& brushes) {
        return Refusal(R"({"canvas": {"width": 4, "height": 4}, "strokes": [], "brushes": {)" + brushes + "}}");
    };
    CHECK_EQ(refusal(R"("a": {"like": "a"})"), "s.json: /brushes/a/like: brushes are like one another in a circle");
    CHECK_EQ(refusal(R"("a": {"like": "b"}, "b": {"like": "a"})"),
             "s.json: /brushes/b/like: brushes are like one another in a circle");
    CHECK_EQ(refusal(R"("a": {"like": "bb"}, "b": {})"),
             R"(s.json: /brushes/a/like: there is no brush "bb"; did you mean "b"?)");
    std::string row = R"("b200": {})";
    for (int i = 199; i >= 100; --i)
        row += ", \"b" + std::to_string(i) + R"(": {"like": "b)" + std::to_string(i + 1) + "\"}";
    CHECK(refusal(row).ends_with("/like: is like more than 32 brushes in a row"));
}

TEST_CASE("Names of parameters are told apart from one another and from the keys of the file") {
    std::vector<std::string> names = BrushParameterNames();
    for (const std::string& key : BrushKeys()) names.push_back(key);
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t k = i + 1; k < names.size(); ++k) CHECK_MESSAGE(!SameName(names[i], names[k]), names[i]);
    CHECK_EQ(names.size(), 2 * (14 + 13) - 2 + 5);  // "Profile Mask" and "Profile Graph" are label and long name in one
}

TEST_CASE("Every enumeration of a brush has its words") {
    for (const ParameterList* list : {&BasicBrush::ClassParameters(), &BrushSource::ClassParameters()})
        for (const auto& definition : *list) {
            CAPTURE(definition->name);
            CHECK_EQ(BrushChoices(*definition).empty(), definition->type != ParameterType::enumeration);
        }
}

TEST_CASE("Files of a strokes file lie beside it, and names go by label or long name in any case") {
    const StrokesFile file = ParseStrokes(R"({"canvas": {"picture": "a/b.png"}, "strokes": [
        {"points": [[1, 2, 0.5]], "brush": {"cutout file": "c.png", "SIZE": 4, "mask": "../m.png"}}]})",
                                          "folder/s.json");
    CHECK_EQ(file.canvas.picture, "folder/a/b.png");
    const BrushDescription& brush = file.brushes.at(file.strokes.at(0).brush);
    CHECK_EQ(brush.mask.value().file, "m.png");
    CHECK_EQ(brush.settings.at(0).parameter->label, "Size");
    CHECK_EQ(brush.settings.at(1).text, "folder/c.png");
    CHECK_EQ(file.strokes.at(0).points.at(0).pressure, 0.5);
}

}  // namespace chalkpane::app
