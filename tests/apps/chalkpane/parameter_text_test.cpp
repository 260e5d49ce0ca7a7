#include "apps/chalkpane/values/parameter_text.h"

#include <doctest/doctest.h>

#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using cli::testing::Thrown;

// One parameter of each kind.
const ParameterList& Zoo() {
    static const ParameterList& list = []() -> const ParameterList& {
        auto* const made = new ParameterList;
        made->addInteger("Brush Size", "Size", 5, 1, 30, 0);
        made->addFloat("Brush Fade", "Fade", 0.1F, 0.1F, 1.0F, 1);
        made->addPercent("Brush Opacity", "Opacity", 2, 1.0, 0.0, 1.0);
        made->addBoolean("Brush Smooth", "Smooth", 1, 3);
        made->addColour("Brush Color", "Color", Colour{16383, 0, 0}, 4);
        made->addEnumeration("Brush Type", "Type", 0, 5);
        made->add("Brush Graph", "Graph", ParameterType::graph, 6);
        made->add("Brush Place", "Place", ParameterType::position, 7).setLimits(-1.0, 1.0);
        made->add("Brush File", "File", ParameterType::fileName, 8);
        made->addTypeNineteen("Group", "Group", 9);
        made->addInteger("Size", "Length", 50, 1, 10, 10);  // its key is another's label, its default above its range
        return *made;
    }();
    return list;
}

ParameterTexts ZooTexts() {
    return {"brush", Zoo(), [](const ParameterDef&) { return std::vector<std::string>{"Paint", "Erase"}; }};
}

// The text that a fresh value tells once `text` was set.
std::string Told(const std::string& name, const std::string& text) {
    DataSet values;
    const ParameterTexts texts = ZooTexts();
    return texts.TextOf(texts.Set(values, name, text));
}

std::string Refusal(const std::string& name, const std::string& text) {
    DataSet values;
    return Thrown([&] { ZooTexts().Set(values, name, text); });
}

}  // namespace

TEST_CASE("A parameter goes by label or key, whatever the case") {
    CHECK_EQ(ZooTexts().Find("opacity").name, "Brush Opacity");
    CHECK_EQ(ZooTexts().Find(" BRUSH OPACITY ").label, "Opacity");
    CHECK_EQ(ZooTexts().Find("Size").label, "Size");
    CHECK_EQ(Thrown([] { (void)ZooTexts().Find("Opacty"); }),
             "brush: there is no parameter \"Opacty\"; did you mean \"Opacity\"?");
    CHECK_NE(Thrown([] { (void)ZooTexts().Find("Group"); }), "nothing");
}

TEST_CASE("A number is kept within its declared range") {
    CHECK_EQ(Told("Size", " 30 "), "30");
    CHECK_EQ(Refusal("Size", "31"), "brush: Size: 31 lies outside 1 .. 30");
    CHECK_EQ(Refusal("Size", "3.5"), "brush: Size: \"3.5\" is not a whole number");
    CHECK_EQ(Refusal("Size", "99999999999"), "brush: Size: \"99999999999\" is not a whole number");
    CHECK_EQ(Told("Opacity", "0.25"), "0.25");
    CHECK_EQ(Refusal("Opacity", "1.01"), "brush: Opacity: 1.01 lies outside 0 .. 1");
    for (const char* text : {"nan", "inf", "1e999", "", "0,5", "0.5x", "--1"}) {
        CAPTURE(text);
        CHECK_EQ(Refusal("Opacity", text), "brush: Opacity: \"" + std::string(text) + "\" is not a number");
    }
}

// As a double, 0.1 is below the float 0.1.
TEST_CASE("A float's limits are floats") {
    CHECK_EQ(Told("Fade", "0.1"), "0.1");
    CHECK_EQ(Refusal("Fade", "0.09"), "brush: Fade: 0.09 lies outside 0.1 .. 1");
    CHECK_EQ(Refusal("Fade", "1e60"), "brush: Fade: \"1e60\" is too large");
}

TEST_CASE("A default outside the range may be said") {
    CHECK_EQ(Told("Length", "50"), "50");
    CHECK_EQ(Refusal("Length", "49"), "brush: Length: 49 lies outside 1 .. 10");
}

TEST_CASE("A boolean has four words for either answer") {
    for (const char* text : {"true", "Yes", "ON", "1"}) CHECK_EQ(Told("Smooth", text), "true");
    for (const char* text : {"false", "No", "OFF", "0"}) CHECK_EQ(Told("Smooth", text), "false");
    CHECK_EQ(Refusal("Smooth", "2"), "brush: Smooth: \"2\" is neither true nor false");
}

TEST_CASE("A choice goes by word or number") {
    CHECK_EQ(Told("Type", "erase"), "Erase");
    CHECK_EQ(Told("Type", "1"), "Erase");
    CHECK_EQ(Refusal("Type", "2"), "brush: Type: \"2\" lies outside 0 .. 1");
    CHECK_EQ(Refusal("Type", "-1"), "brush: Type: there is no choice \"-1\"; there are \"Paint\", \"Erase\"");
    CHECK_EQ(Refusal("Type", "Eras"), "brush: Type: there is no choice \"Eras\"; did you mean \"Erase\"?");
}

TEST_CASE("A choice without words goes by its number alone") {
    DataSet values;
    const ParameterTexts texts("brush", Zoo());
    CHECK_EQ(texts.TextOf(texts.Set(values, "Type", "255")), "255");
    CHECK_EQ(Thrown([&] { texts.Set(values, "Type", "256"); }), "brush: Type: \"256\" lies outside 0 .. 255");
}

// 0x80 widens to 128 * 64 + 32 = 8224, and 0x01 to 64.
TEST_CASE("A color is told in bytes where bytes say it exactly") {
    DataSet values;
    const ParameterTexts texts = ZooTexts();
    Colour colour;
    texts.Set(values, "Color", "#ff8001").getColour(colour);
    CHECK(colour == Colour{16383, 8224, 64});
    CHECK_EQ(texts.TextOf(**values.begin()), "#ff8001");
    CHECK_EQ(Told("Color", "16383, 8225, 64"), "16383,8225,64");
    CHECK_EQ(Told("Color", "16383,8224,64"), "#ff8001");
}

// Twice the digits: #f80 is #ff8800, and 0x88 widens to 136 * 64 + 34 = 8738.
TEST_CASE("A color has a name, or three digits that stand for six") {
    DataSet values;
    const ParameterTexts texts = ZooTexts();
    Colour colour;
    texts.Set(values, "Color", "#f80").getColour(colour);
    CHECK(colour == Colour{16383, 8738, 0});
    CHECK_EQ(Told("Color", "red"), "#ff0000");
    CHECK_EQ(Told("Color", "orange"), "#ffa500");
    CHECK_EQ(Refusal("Color", "#f808"), "brush: Color: \"#f808\" has an alpha, which this color does not");
}

TEST_CASE("What is no color is refused") {
    CHECK_EQ(Refusal("Color", "rd"), "brush: Color: \"rd\" is not a color such as #ff8000; did you mean \"red\"?");
    CHECK_EQ(Refusal("Color", "#ff800"), "brush: Color: \"#ff800\" is not a color such as #ff8000");
    CHECK_EQ(Refusal("Color", "#ff80-1"), "brush: Color: \"#ff80-1\" is not a color such as #ff8000");
    CHECK_EQ(Refusal("Color", "#ff800080"), "brush: Color: \"#ff800080\" has an alpha, which this color does not");
    CHECK_EQ(Refusal("Color", "1,2,16384"), "brush: Color: the color \"1,2,16384\" lies outside 0 .. 16383");
    CHECK_EQ(Refusal("Color", "1,2"), "brush: Color: \"1,2\" is not 3 numbers with commas between them");
}

TEST_CASE("A graph is points, with handles where it bends") {
    CHECK_EQ(Told("Graph", "0,0; 0.3,0.6 ;1,1"), "0,0;0.3,0.6;1,1");
    CHECK_EQ(Told("Graph", "0,0,0,0,0.5,0;1,1"), "0,0,0,0,0.5,0;1,1");
    CHECK_EQ(Refusal("Graph", "0,0;2,1"), "brush: Graph: the point \"2,1\" of a graph lies outside 0 .. 1");
    CHECK_EQ(Refusal("Graph", "0.5,0;0.4,1"),
             "brush: Graph: the point \"0.4,1\" of a graph lies left of the one before it");
    CHECK_EQ(Refusal("Graph", "0;1"), "brush: Graph: \"0;1\" is not a graph such as 0,0;0.3,0.6;1,1: \"0\"");
    CHECK_EQ(Refusal("Graph", ""), "brush: Graph: \"\" is not a graph such as 0,0;0.3,0.6;1,1: \"\"");
}

TEST_CASE("A position has two numbers, both within the range") {
    CHECK_EQ(Told("Place", "0.5, -1"), "0.5,-1");
    CHECK_EQ(Refusal("Place", "0.5,-1.5"), "brush: Place: -1.5 lies outside -1 .. 1");
    CHECK_EQ(Refusal("Place", "0.5"), "brush: Place: \"0.5\" is not 2 numbers with commas between them");
}

TEST_CASE("A file is told as it was said") { CHECK_EQ(Told("File", "art/brush.png"), "art/brush.png"); }

TEST_CASE("A value that could not be set stays") {
    DataSet values;
    const ParameterTexts texts = ZooTexts();
    const ParameterValue& value = texts.Set(values, "Size", "7");
    CHECK_NE(Thrown([&] { texts.Set(values, "Size", "700"); }), "nothing");
    CHECK_EQ(texts.TextOf(value), "7");
    CHECK_EQ(values.size(), 1);
}

TEST_CASE("A description tells range, default and choices, and leaves groups out") {
    const auto all = ZooTexts().Describe();
    REQUIRE_EQ(all.size(), 10);
    CHECK_EQ(all[0].label, "Size");
    CHECK_EQ(all[0].key, "Brush Size");
    CHECK_EQ(all[0].type, "integer");
    CHECK_EQ(all[0].minimum + ".." + all[0].maximum + " " + all[0].defaultText, "1..30 5");
    CHECK_EQ(all[1].minimum + ".." + all[1].maximum + " " + all[1].defaultText, "0.1..1 0.1");
    CHECK_EQ(all[3].minimum, "");
    CHECK_EQ(all[4].defaultText, "#ff0000");
    CHECK_EQ(all[5].type, "choice");
    CHECK(all[5].choices == std::vector<std::string>{"Paint", "Erase"});
    CHECK_EQ(all[6].defaultText, "0,0;1,1");
    CHECK_EQ(all[9].label, "Length");
}

}  // namespace chalkpane::app
