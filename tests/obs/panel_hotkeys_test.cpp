#include "obs/panel_hotkeys.h"

#include <doctest/doctest.h>

#include <algorithm>

using chalkpane::obs::AfterHotkey;
using chalkpane::obs::MakeHotkeys;
using chalkpane::obs::PanelHotkey;
using chalkpane::obs::PanelValues;
using chalkpane::obs::RegisteredPanel;

namespace {

const PanelHotkey& Find(const std::vector<PanelHotkey>& hotkeys, const std::string& id) {
    const auto found = std::ranges::find(hotkeys, id, &PanelHotkey::id);
    REQUIRE_MESSAGE(found != hotkeys.end(), id);
    return *found;
}

chalkpane::TelestratorSettings After(const RegisteredPanel& panel, const std::vector<PanelHotkey>& hotkeys,
                                     const std::vector<std::string>& ids) {
    PanelValues values = panel.Defaults();
    for (const std::string& id : ids) values = AfterHotkey(panel, Find(hotkeys, id), values);
    return panel.Settings(values);
}

}  // namespace

TEST_CASE("Every button and every switch of the panel has a hotkey of its own") {
    const RegisteredPanel panel;
    const auto hotkeys = MakeHotkeys(panel);
    CHECK_EQ(Find(hotkeys, "chalkpane.button.Clear").label, "Clear");
    CHECK_EQ(Find(hotkeys, "chalkpane.button.Undo").does.button, "Undo");
    CHECK_EQ(Find(hotkeys, "chalkpane.toggle.RecoShapes").label, "Recognize Shapes on and off");
    CHECK_EQ(Find(hotkeys, "chalkpane.toggle.Arrow").label, "Draw Arrow on and off");
    for (const PanelHotkey& hotkey : hotkeys) CHECK_EQ(std::ranges::count(hotkeys, hotkey.id, &PanelHotkey::id), 1);
    CHECK_EQ(std::ranges::count(hotkeys, "chalkpane.toggle.Transparent", &PanelHotkey::id), 0);
}

TEST_CASE("Hotkeys switch on and off") {
    const RegisteredPanel panel;
    const auto hotkeys = MakeHotkeys(panel);
    CHECK_FALSE(After(panel, hotkeys, {"chalkpane.toggle.RecoShapes"}).recogniseShapes);
    CHECK(After(panel, hotkeys, {"chalkpane.toggle.RecoShapes", "chalkpane.toggle.RecoShapes"}).recogniseShapes);
    CHECK(After(panel, hotkeys, {"chalkpane.set.Eraser on and off"}).brushType == chalkpane::BrushType::Eraser);
}

TEST_CASE("Hotkeys choose the colors of the window") {
    const RegisteredPanel panel;
    const auto hotkeys = MakeHotkeys(panel);
    CHECK_EQ(After(panel, hotkeys, {"chalkpane.set.Red"}).brushColour, 0xff2d2dffU);   // #ff2d2d, red lowest
    CHECK_EQ(After(panel, hotkeys, {"chalkpane.set.Blue"}).brushColour, 0xffff5624U);  // #2456ff
    for (const char* name : {"Yellow", "White", "Red", "Sky blue", "Blue", "Green", "Orange", "Black"})
        (void)Find(hotkeys, std::string("chalkpane.set.") + name);
}

TEST_CASE("Hotkeys make the brush wider that draws, as far as its limits") {
    const RegisteredPanel panel;
    const auto hotkeys = MakeHotkeys(panel);
    CHECK_EQ(After(panel, hotkeys, {"chalkpane.set.Wider"}).brushWidth, 6);
    CHECK_EQ(After(panel, hotkeys, {"chalkpane.set.Narrower", "chalkpane.set.Narrower"}).brushWidth, 3);
    CHECK_EQ(After(panel, hotkeys, std::vector<std::string>(20, "chalkpane.set.Narrower")).brushWidth, 1);
    const auto erasing = After(panel, hotkeys, {"chalkpane.set.Eraser on and off", "chalkpane.set.Wider"});
    CHECK_EQ(erasing.eraserWidth, 11);
    CHECK_EQ(erasing.brushWidth, 5);
}

TEST_CASE("The hotkey of a button leaves the values as they are") {
    const RegisteredPanel panel;
    const auto hotkeys = MakeHotkeys(panel);
    CHECK(AfterHotkey(panel, Find(hotkeys, "chalkpane.button.Clear"), panel.Defaults()) == panel.Defaults());
}
