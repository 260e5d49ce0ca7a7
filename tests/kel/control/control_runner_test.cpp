#include "kel/control/control_runner.h"

#include <doctest/doctest.h>

#include "kel/session/session_lines.h"
#include "tests/kel/control/bare_target.h"

namespace kel {
namespace {

using cli::testing::ReadText;
using nlohmann::json;
using testing::BareTarget;

json Recorded(const std::filesystem::path& file) { return json::parse(WholeSessionText(ReadText(file))); }

void Draw(Workspace& workspace) {
    workspace.Point(PointerKind::Press, 40, 60);
    workspace.RunFields(1);
    for (std::int32_t x = 60; x <= 280; x += 20) {
        workspace.Point(PointerKind::Move, x, 60);
        workspace.RunFields(1);
    }
    workspace.Point(PointerKind::Release, 280, 60);
    workspace.RunFields(1);
}

picture_io::Picture CanvasOf(Workspace& workspace) { return workspace.TheHost().ReadCanvas(workspace.Chosen()->id); }

const json* Named(const json& list, const std::string& name) {
    for (const json& each : list)
        if (each["name"] == name) return &each;
    return nullptr;
}

}  // namespace

TEST_CASE("A command takes hold in the next field") {
    BareTarget target;
    CHECK_EQ(target.Run("set BrushColor #ff0000 BrushWidth 8"), json{{"ok", true}});
    const auto colour = [&] {
        return target.workspace->TheHost().GetParameter(target.workspace->Chosen()->id, "BrushColor");
    };
    CHECK(colour() != ParameterValue(ColourBytes{255, 0, 0, 255}));
    target.workspace->RunFields(1);
    CHECK(colour() == ParameterValue(ColourBytes{255, 0, 0, 255}));
    CHECK_EQ(target.Value("BrushColor"), "#ff0000ff");
    CHECK_EQ(target.Value("BrushWidth"), 8);
}

TEST_CASE("Commands are recorded as the panel's changes are") {
    std::filesystem::path file;
    BareTarget target;
    (void)target.Run("set BrushWidth 8");
    (void)target.Run("button Clear");
    (void)target.Run("key E");
    target.workspace->RunFields(1);
    file = target.folder / "run.json";
    target.workspace.reset();
    const json events = Recorded(file)["events"];
    REQUIRE_EQ(events.size(), 3);
    CHECK_EQ(events[0]["set"], json{{"BrushWidth", 8}});
    CHECK_EQ(events[1]["button"], "Clear");
    CHECK_EQ(events[2]["set"], json{{"BrushType", "Erase"}});
}

TEST_CASE("Values are refused as the panel refuses them, and nothing of the line is set") {
    BareTarget target;
    const json before = target.Value("BrushWidth");
    CHECK_EQ(target.Refusal("set BrushWidth 7 BrushColr #ff0000"),
             "there is no parameter \"BrushColr\"; did you mean \"BrushColor\"?");
    CHECK_NE(target.Refusal("set BrushWidth 7 BrushColor red"), "");
    CHECK_NE(target.Refusal("set BrushWidth 7 EraserWidth 1000"), "");
    CHECK_NE(target.Refusal("set BrushWidth 7 RecoShapes false BrushType"), "");
    target.workspace->RunFields(1);
    CHECK_EQ(target.Value("BrushWidth"), before);
    CHECK(target.Refusal("set BrushWidth 31").find("must be from 1 to 30, not 31") != std::string::npos);
    CHECK(target.Refusal("set BrushColor red").find("must be a color") != std::string::npos);
    CHECK(target.Refusal("set BrushType Eraze").find("did you mean \"Erase\"?") != std::string::npos);
    CHECK_EQ(target.Refusal("button Undoo"), "there is no button \"Undoo\"; did you mean \"Undo\"?");
    CHECK_EQ(target.Refusal("play"), "there is no film");
    CHECK_EQ(target.Refusal("container pain"),
             "no plug-in is on a container \"pain\"; did you mean \"" + target.workspace->Chosen()->name + "\"?");
}

TEST_CASE("Toggles go back and forth, and steps stop at the limit") {
    BareTarget target;
    const json before = target.Value("RecoShapes");
    (void)target.Run("toggle RecoShapes");
    CHECK_EQ(target.Value("RecoShapes"), !before.get<bool>());
    (void)target.Run("toggle RecoShapes");
    CHECK_EQ(target.Value("RecoShapes"), before);
    (void)target.Run("toggle BrushType Color Erase");
    CHECK_EQ(target.Value("BrushType"), "Erase");
    CHECK_EQ(target.Refusal("toggle BrushWidth"),
             "BrushWidth is not true or false; say between which two values it goes");
    (void)target.Run("set BrushWidth 29");
    (void)target.Run("step BrushWidth");
    CHECK_EQ(target.Value("BrushWidth"), 30);
    (void)target.Run("step BrushWidth 5");
    CHECK_EQ(target.Value("BrushWidth"), 30);
    CHECK_EQ(target.Refusal("step BrushColor"), "BrushColor is no number");
}

TEST_CASE("Faders' numbers are rounded and switches' are true or false") {
    BareTarget target;
    CHECK(target.Refusal("set BrushWidth 6.98") != "");
    CHECK_EQ(target.Run("set BrushWidth 6.98", ControlNumbers::OfFaders)["ok"], true);
    CHECK_EQ(target.Value("BrushWidth"), 7);
    (void)target.Run("set RecoShapes 0", ControlNumbers::OfFaders);
    CHECK_EQ(target.Value("RecoShapes"), false);
    (void)target.Run("set RecoShapes 1", ControlNumbers::OfFaders);
    CHECK_EQ(target.Value("RecoShapes"), true);
}

TEST_CASE("A stroke is undone, redone and taken away by commands") {
    BareTarget target;
    Workspace& workspace = *target.workspace;
    const picture_io::Picture blank = CanvasOf(workspace);
    Draw(workspace);
    const picture_io::Picture drawn = CanvasOf(workspace);
    CHECK_EQ(drawn == blank, false);
    const auto after = [&](const std::string& line) {
        CHECK_EQ(target.Refusal(line), "");
        workspace.RunFields(1);
        return CanvasOf(workspace);
    };
    CHECK(after("undo") == blank);
    CHECK(after("redo") == drawn);
    CHECK(after("undo 1") == blank);
    CHECK(after("redo 1") == drawn);
    CHECK(after("removeStroke 1") == blank);
}

TEST_CASE("What needs a display goes to the display") {
    BareTarget target;
    (void)target.Run("full screen");
    (void)target.Run("key Tab");
    CHECK(target.displayed == std::vector{WorkspaceAction::FullScreen, WorkspaceAction::Panel});
    CHECK_EQ(target.Refusal("key Ctrl+Shift+F11").starts_with("no key is \"Ctrl+Shift+F11\""), true);
}

TEST_CASE("Fading is set in seconds and fields") {
    BareTarget target;
    (void)target.Run("fade after 3 over 25");
    CHECK(target.workspace->InkFading().isOn);
    CHECK_EQ(target.workspace->InkFading().after, 3);
    CHECK_EQ(target.workspace->InkFading().over, 25 / target.workspace->FieldsPerSecond());
    CHECK_EQ(target.Run("list")["fade"], json{{"after", 3.0}, {"over", 25}});
    (void)target.Run("fade false");
    CHECK_EQ(target.workspace->InkFading().isOn, false);
}

TEST_CASE("The list has every parameter with kind, limits and value, every button and every action") {
    BareTarget target;
    const json list = target.Run("list");
    const Registration& module = *target.workspace->Chosen()->registration;
    CHECK_EQ(list["parameters"].size(), module.parameters.size());
    CHECK_EQ(list["buttons"].size(), module.buttons.size());
    CHECK_EQ(list["actions"].size(), workspaceActionNames.size());
    CHECK_EQ(list["commands"].size(), ControlForms().size());
    const json* width = Named(list["parameters"], "BrushWidth");
    REQUIRE(width != nullptr);
    CHECK_EQ((*width)["kind"], "int");
    CHECK_EQ((*width)["minimum"], 1);
    CHECK_EQ((*width)["maximum"], 30);
    CHECK_EQ((*width)["value"], target.Value("BrushWidth"));
    const json* type = Named(list["parameters"], "BrushType");
    REQUIRE(type != nullptr);
    CHECK_EQ((*type)["options"][0], "Color");
    CHECK(list["film"].is_null());
    CHECK_EQ(list["container"], target.workspace->Chosen()->name);
}

TEST_CASE("While a session's own events are played commands are refused") {
    BareTarget target;
    cli::testing::WriteText(target.folder / "s.json", R"({"window":{"width":64,"height":64},
        "camera":{"position":[0,0,100],"target":[0,0,0]},
        "containers":[{"size":[64,64],"plugin":{}}],"events":[{"field":5,"button":"Clear"}]})");
    WorkspaceOptions options;
    options.module = CHALKPANE_MODULE;
    target.workspace = std::make_unique<Workspace>(target.folder / "s.json", options);
    CHECK_EQ(target.Refusal("set BrushWidth 4"), "the session's own events are still being played");
    CHECK_EQ(target.Run("list")["ok"], true);
}

}  // namespace kel
