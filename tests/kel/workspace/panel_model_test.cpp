#include "kel/workspace/panel_model.h"

#include <doctest/doctest.h>

#include "tests/cli/thrown.h"
#include "tests/kel/workspace/some_module.h"

namespace kel {
namespace {

using cli::testing::Thrown;

const Parameter& Named(const Registration& module, const char* name) { return *module.FindParameter(name); }

std::string TypingRefused(const char* parameter, const std::string& text) {
    const Registration module = testing::SomeModule();
    return Thrown([&] { (void)TypedValue(Named(module, parameter), text); });
}

ParameterValue Typed(const char* parameter, const std::string& text) {
    const Registration module = testing::SomeModule();
    return TypedValue(Named(module, parameter), text);
}

ParameterValue Stepped(const char* parameter, const ParameterValue& value, double by) {
    const Registration module = testing::SomeModule();
    return SteppedValue(Named(module, parameter), value, by);
}

}  // namespace

TEST_CASE("A panel shows what a module registered and does not hide, known parameters in their groups") {
    const Registration module = testing::SomeModule();
    const PanelLayout layout =
        ParsePanelLayout(R"({"pen": {}, "groups": [{"title": "Ink", "parameters": ["Ink", "Elsewhere", "Wide", "Deep"]},
                                                  {"title": "Nothing of it", "parameters": ["Elsewhere"]}],
                            "tips": {"Wide": "How wide."}})");
    const PanelModel model = MakePanelModel(module, layout);
    REQUIRE_EQ(model.groups.size(), 2);
    CHECK_EQ(model.groups[0].title, "Ink");
    REQUIRE_EQ(model.groups[0].controls.size(), 2);
    CHECK_EQ(model.groups[0].controls[0].parameter, 3);
    CHECK_EQ(model.groups[0].controls[1].parameter, 1);
    CHECK_EQ(model.groups[0].controls[1].tip, "How wide.");
    CHECK_EQ(model.groups[1].title, "Some");
    REQUIRE_EQ(model.groups[1].controls.size(), 4);
    CHECK_EQ(model.groups[1].controls[0].parameter, 0);
    CHECK_EQ(model.groups[1].controls[3].parameter, 5);
}

TEST_CASE("The layout that the program carries can be read") {
    CHECK_GE(ThePanelLayout().groups.size(), 3);
    CHECK_GE(ThePanelLayout().pen.size(), 2);
}

TEST_CASE("A typed value within the limits is taken") {
    CHECK_EQ(Typed("Wide", "9") == ParameterValue(std::int32_t{9}), true);
    CHECK_EQ(Typed("Wide", " 1 ") == ParameterValue(std::int32_t{1}), true);
    CHECK_EQ(Typed("Share", "0.25") == ParameterValue(0.25F), true);
    CHECK_EQ(Typed("Ink", "#ff0080") == ParameterValue(ColourBytes{255, 0, 128, 255}), true);
    CHECK_EQ(Typed("Stamp", "12") == ParameterValue(std::string("12")), true);
    CHECK_EQ(Typed("Kind", "Rub out") == ParameterValue(std::int32_t{1}), true);
}

TEST_CASE("A typed value beyond the limits, or of another kind, is not taken") {
    CHECK_EQ(TypingRefused("Wide", "10"), "Width must be from 1 to 9, not 10");
    CHECK_EQ(TypingRefused("Wide", "0"), "Width must be from 1 to 9, not 0");
    CHECK_EQ(TypingRefused("Wide", "99999999999999999999"), "Width must be from 1 to 9, not 1e+20");
    CHECK_EQ(TypingRefused("Wide", "2.5"), "Width must be a whole number");
    CHECK_EQ(TypingRefused("Wide", ""), "Width must be a whole number");
    CHECK_EQ(TypingRefused("Wide", "5x"), "Width must be a whole number");
    CHECK_EQ(TypingRefused("Share", "1.01"), "Share must be from 0 to 1, not 1.01");
    CHECK_EQ(TypingRefused("Share", "nan"), "Share must be a number");
    CHECK_EQ(TypingRefused("Ink", "red"), "Ink must be a color, \"#rrggbb\" or \"#rrggbbaa\"");
}

TEST_CASE("Stepping stops at the limits") {
    CHECK_EQ(Stepped("Wide", std::int32_t{8}, 1) == ParameterValue(std::int32_t{9}), true);
    CHECK_EQ(Stepped("Wide", std::int32_t{9}, 1) == ParameterValue(std::int32_t{9}), true);
    CHECK_EQ(Stepped("Wide", std::int32_t{2}, -5) == ParameterValue(std::int32_t{1}), true);
    CHECK_EQ(Stepped("Share", 0.5F, 1) == ParameterValue(1.0F), true);
}

}  // namespace kel
