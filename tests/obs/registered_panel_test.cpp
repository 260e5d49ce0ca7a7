#include "obs/registered_panel.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <string>

#include "module/abi/host_api.h"

using chalkpane::obs::PanelValues;
using chalkpane::obs::RegisteredPanel;

namespace {

std::size_t PlaceOf(const RegisteredPanel& panel, const std::string& name) {
    const auto& parameters = panel.Registration().parameters;
    const auto found = std::ranges::find(parameters, name, &kel::Parameter::name);
    REQUIRE(found != parameters.end());
    return static_cast<std::size_t>(found - parameters.begin());
}

bool IsShown(const RegisteredPanel& panel, const PanelValues& values, const std::string& name) {
    return panel.Shown(values)[PlaceOf(panel, name)];
}

}  // namespace

TEST_CASE("The panel is what the telestrator registers") {
    const RegisteredPanel panel;
    CHECK_EQ(panel.Registration().name, "Chalkpane");
    const kel::Parameter& width = panel.Registration().parameters[PlaceOf(panel, "BrushWidth")];
    CHECK_EQ(width.label, "Brush Width");
    CHECK_EQ(width.minimum, 1);
    CHECK_EQ(width.maximum, 30);
    const kel::Parameter& type = panel.Registration().parameters[PlaceOf(panel, "BrushType")];
    CHECK_EQ(type.options, std::vector<std::string>{"Color", "Erase"});
    REQUIRE_EQ(panel.Registration().buttons.size(), 2);
    CHECK_EQ(panel.Registration().buttons[0].label, "Clear");
    CHECK_EQ(panel.Registration().buttons[1].label, "Undo");
}

TEST_CASE("What means nothing on a source is not in the panel, and all else is there once") {
    const RegisteredPanel panel;
    const std::vector<std::string> leftOut{"TexUnit", "Transparent", "Alpha", "BrushImage", "CircleRadius", "MaxUndos"};
    std::vector<std::size_t> offered;
    for (const auto& group : panel.Model().groups)
        for (const auto& control : group.controls) offered.push_back(control.parameter);
    for (std::size_t i = 0; i < panel.Registration().parameters.size(); ++i) {
        const std::string& name = panel.Registration().parameters[i].name;
        CAPTURE(name);
        CHECK_EQ(std::ranges::count(offered, i), std::ranges::count(leftOut, name) > 0 ? 0 : 1);
        CHECK_EQ(panel.IsOffered(i), std::ranges::count(offered, i) > 0);
    }
}

TEST_CASE("The panel begins as over a picture: yellow, with shapes recognised") {
    const RegisteredPanel panel;
    const PanelValues& values = panel.Defaults();
    CHECK_EQ(std::get<kel::ColourBytes>(values[PlaceOf(panel, "BrushColor")]),
             kel::ColourBytes{0xff, 0xd6, 0x0a, 0xff});
    CHECK(panel.Settings(values).recogniseShapes);
    CHECK_EQ(panel.Settings(values).brushColour, 0xff0ad6ffU);  // red lies lowest
    CHECK(panel.IsActive(values));
}

TEST_CASE("The module shows the width of the brush that draws") {
    const RegisteredPanel panel;
    PanelValues values = panel.Defaults();
    CHECK(IsShown(panel, values, "BrushWidth"));
    CHECK_FALSE(IsShown(panel, values, "EraserWidth"));
    values[PlaceOf(panel, "BrushType")] = 1;
    CHECK_FALSE(IsShown(panel, values, "BrushWidth"));
    CHECK(IsShown(panel, values, "EraserWidth"));
    CHECK_FALSE(IsShown(panel, values, "Transparent"));
}

TEST_CASE("A registering function that is called out of turn does nothing") {
    qoRegisterPlugin("late");
    qoRegisterParameterBool("Late", "Late", 1);
    qoRegisterPushButton("Late", "Late", 3);
    CHECK_EQ(qoSendGuiParameterShow("Active", 0), 0);
    CHECK_EQ(RegisteredPanel().Registration().FindParameter("Late"), nullptr);
}
