#include "apps/chalkpane/filtering/filter_texts.h"

#include <doctest/doctest.h>

#include "apps/chalkpane/filtering/filter_run.h"
#include "chalkpane/filters/filter_registry.h"
#include "tests/apps/chalkpane/pictures.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using cli::testing::Thrown;

// What the value of a filter's parameter tells.
std::string Told(const Filter& filter, const std::string& parameter) {
    const ParameterTexts texts = TextsOf(filter);
    return texts.TextOf(*filter.m_values->findValue(&texts.Find(parameter)));
}

std::string Refusal(const std::string& text) {
    return Thrown([&] { (void)FilterFromText(text); });
}

// Texts that a parameter takes: both ends of its range, its default, every choice.
std::vector<std::string> TextsFor(const ParameterDescription& parameter) {
    std::vector<std::string> texts = parameter.choices;
    texts.push_back(parameter.defaultText);
    if (!parameter.minimum.empty()) texts.insert(texts.end(), {parameter.minimum, parameter.maximum});
    if (parameter.type == "boolean") texts.insert(texts.end(), {"true", "false"});
    if (parameter.type == "color") texts.insert(texts.end(), {"#000000", "#ffffff"});
    if (parameter.type == "graph") texts.insert(texts.end(), {"0,0;1,0", "0,1;0.25,0.5;1,0"});
    return texts;
}

}  // namespace

TEST_CASE("A filter goes by label or name, whatever the case") {
    CHECK_EQ(FindFilter("median").Label(), "Median");
    CHECK_EQ(FindFilter(" MEDIAN FILTER ").Label(), "Median");
    CHECK_EQ(FindFilter("Softener").Label(), "Blur");
    CHECK_EQ(FindFilter("brightness/contrast").Name(), "BrightnessContrast");
    CHECK_EQ(Thrown([] { (void)FindFilter("Medain"); }), "there is no filter \"Medain\"; did you mean \"Median\"?");
}

TEST_CASE("A filter without parameters has its declared defaults") {
    const auto filter = FilterFromText("Oil");
    CHECK_EQ(Told(*filter, "Levels"), "100");
    CHECK_EQ(Told(*filter, "Use Intensity"), "true");
    CHECK_EQ(Told(*FilterFromText("Film Grain"), "RandomSeed"), "-1");  // not one from the clock
}

TEST_CASE("Parameters stand between colons") {
    const auto filter = FilterFromText("Brightness/Contrast: Brightness = 0.2 :contrast=-0.1");
    CHECK_EQ(Told(*filter, "Brightness"), "0.2");
    CHECK_EQ(Told(*filter, "Contrast"), "-0.1");
    CHECK_EQ(Told(*filter, "Gamma"), "0");
    CHECK_EQ(Told(*FilterFromText("Halftone:Red/Black Angle=45:Shape=diamond"), "Red Angle"), "45");
    CHECK_EQ(Told(*FilterFromText("Add Noise:Density %=30"), "Density"), "30");
}

TEST_CASE("A colon in a parameter's name stands for a blank") {
    for (const char* text : {"Luma Graph:LUT Graph=0,0;0.3,0.6;1,1", "Luma Graph:LUT:Graph=0,0;0.3,0.6;1,1"})
        CHECK_EQ(Told(*FilterFromText(text), "LUT Graph"), "0,0;0.3,0.6;1,1");
    const auto filter = FilterFromText("Component Correct:Component=All:lut:graph=0,1;1,0");
    CHECK_EQ(Told(*filter, "Component"), "All");
    CHECK_EQ(Told(*filter, "LUT Graph"), "0,1;1,0");
}

TEST_CASE("What is no filter is refused with the nearest that is one") {
    CHECK_EQ(Refusal("Hlaftone:Size=3"), "there is no filter \"Hlaftone\"; did you mean \"Halftone\"?");
    CHECK_EQ(Refusal("Median:Radus=3"), "Median: there is no parameter \"Radus\"; did you mean \"Radius\"?");
    CHECK_EQ(Refusal("Median:Radius"), "Median: Radius: has no value; write \"Radius=VALUE\"");
    CHECK_EQ(Refusal("Median:Radius=21"), "Median: Radius: 21 lies outside 1 .. 20");
    CHECK_EQ(Refusal("Median:Radius=2:"), "Median: there is no parameter \"\"; there is only \"Radius\"");
    CHECK_EQ(Refusal("Median:Radius=2\\:3"), "Median: Radius: \"2:3\" is not a whole number");
    CHECK_EQ(Refusal("Median:Radius=3:Radius=4"), "Median: Radius: is given twice");
    CHECK_EQ(Refusal("Blur:Softness=3:Filter Softness=4"), "Blur: Softness: is given twice");
    CHECK_EQ(Refusal("Xyzzyx"),
             "there is no filter \"Xyzzyx\"; the nearest are \"Blur\", \"Tint\" and \"Marble\"; `chalkpane filters` "
             "lists all");
    CHECK_EQ(Refusal("Invert Color:Amount=1"), "Invert Color: there is no parameter \"Amount\"; there are none");
    CHECK_EQ(Refusal("Marble:Edges=Mirror"),
             "Marble: Edges: there is no choice \"Mirror\"; there are \"Transparent\", \"Reflect\", \"Wrap\", "
             "\"Clamp\"");
    CHECK(Refusal("").starts_with("there is no filter \"\"; "));
}

TEST_CASE("The texts of a filter outlive it") {
    auto filter = FilterFromText("Marble");
    const ParameterTexts texts = TextsOf(*filter);
    filter.reset();
    CHECK_EQ(texts.Describe().back().choices.front(), "Transparent");
}

TEST_CASE("Every filter takes its defaults and both ends of every parameter, and runs") {
    const auto pictures = {testing::Varied(12, 9, Depth::Eight), testing::Varied(12, 9, Depth::Fourteen)};
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        const std::string label(prototype->Label());
        std::vector<std::string> texts{label};
        for (const ParameterDescription& parameter : TextsOf(*prototype).Describe())
            for (const std::string& text : TextsFor(parameter))
                texts.push_back(std::string(label).append(":").append(parameter.label).append("=").append(text));
        for (const std::string& text : texts) {
            CAPTURE(text);
            const auto filter = FilterFromText(text);
            const std::size_t equals = text.find('=');
            if (equals != std::string::npos) {
                const std::string parameter = text.substr(label.size() + 1, equals - label.size() - 1);
                CHECK_EQ(Told(*filter, parameter), text.substr(equals + 1));
            }
            for (const auto& picture : pictures) {
                const auto result = RunFilter(*filter, std::make_unique<Image>(*picture), {});
                CHECK(result->Bounds() == picture->Bounds());
                CHECK_EQ(result->depth, picture->depth);
            }
        }
    }
}

}  // namespace chalkpane::app
