#include "kel/workspace/workspace.h"

#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "kel/workspace/embedded_text.h"
#include "kel/workspace/fitted_keys.h"
#include "tests/cli/thrown.h"
#include "tests/kel/workspace/grey_place.h"

namespace kel {
namespace {

using cli::testing::ReadText;
using cli::testing::Thrown;
using cli::testing::WriteText;
using nlohmann::json;
using testing::CanvasOf;
using testing::CanvasWhenPlayed;
using testing::Draw;
using testing::GreyPlace;
using testing::IndexOf;

}  // namespace

TEST_CASE("A picture is saved from the workspace with the pixels that it has, however many") {
    GreyPlace place;
    place.options.recording.clear();
    const picture_io::Picture photo = testing::Speckled(1500, 1100);
    picture_io::WritePicture(photo, place.folder / "photo.png");
    {
        Workspace workspace(place.folder / "photo.png", place.options);
        workspace.RunFields(1);
        workspace.SavePicture();
    }
    CHECK_EQ(picture_io::ReadPicture(place.folder / "photo-picture-001.png") == photo, true);
}

TEST_CASE("Keys act on the chosen plug-in, and steps in one field add up") {
    const GreyPlace place;
    Workspace workspace(place.folder / "grey.png", place.options);
    const KeysTable table = ParseKeys(std::string(DefaultKeysText()), "keys.json");
    const FittedKeys keys = FitKeys(table, workspace.Chosen()->registration, KeyFit::All);
    const auto press = [&](const char* chord) { workspace.Do(*keys.Find(ParseKeyChord(chord))->module); };
    workspace.RunFields(1);
    const std::size_t width = IndexOf(workspace, "BrushWidth");
    for (int i = 0; i < 3; ++i) press("]");
    CHECK_EQ(workspace.Value(width) == ParameterValue(std::int32_t{8}), true);
    workspace.RunFields(1);
    CHECK_EQ(workspace.Value(width) == ParameterValue(std::int32_t{8}), true);
    press("E");
    workspace.RunFields(1);
    CHECK_EQ(workspace.Value(IndexOf(workspace, "BrushType")) == ParameterValue(std::int32_t{1}), true);
    CHECK_FALSE(workspace.IsShown(width));
    press("[");  // now of the eraser, whose width is the one shown
    workspace.RunFields(1);
    CHECK_EQ(workspace.Value(width) == ParameterValue(std::int32_t{8}), true);
    CHECK_EQ(workspace.Value(IndexOf(workspace, "EraserWidth")) == ParameterValue(std::int32_t{9}), true);
    press("E");
    press("3");
    workspace.RunFields(1);
    CHECK_EQ(workspace.Value(IndexOf(workspace, "BrushType")) == ParameterValue(std::int32_t{0}), true);
    CHECK_EQ(workspace.Value(IndexOf(workspace, "BrushColor")) == ParameterValue(ColourBytes{255, 0x2D, 0x2D, 255}),
             true);
}

TEST_CASE("A value beyond its limits and an image that is not there change nothing") {
    const GreyPlace place;
    Workspace workspace(place.folder / "grey.png", place.options);
    workspace.RunFields(1);
    const std::size_t width = IndexOf(workspace, "BrushWidth");
    CHECK_EQ(Thrown([&] { workspace.Set(width, std::int32_t{31}); }), "Brush Width: 31 is above the maximum 30");
    CHECK_EQ(workspace.Value(width) == ParameterValue(std::int32_t{5}), true);
    const std::string gone = (place.folder / "gone.png").string();
    CHECK_EQ(Thrown([&] { workspace.Set(IndexOf(workspace, "BrushImage"), gone); }).starts_with(gone + ": "), true);
    CHECK_EQ(workspace.Value(IndexOf(workspace, "BrushImage")) == ParameterValue(std::string()), true);
}

TEST_CASE("Another file takes the workspace over, and one that is wrong leaves it as it was") {
    const GlContext context;
    GreyPlace place;
    place.options.gl = GlSource::Current;
    WriteText(place.folder / "wrong.json", R"({"window": {"width": 8, "height": 8}, "camera": {"position": [0, 0, 9],
        "target": [0, 0, 0]}, "containers": [{"size": [9, 9], "plugin": {"parameters": {"BrushWith": 3}}}]})");
    auto workspace = std::make_unique<Workspace>(place.folder / "grey.png", place.options);
    workspace->RunFields(1);
    Draw(*workspace, {40, 60, 280, 60});
    const picture_io::Picture drawn = CanvasOf(*workspace);
    WorkspaceOptions next = place.options;
    next.recording = place.folder / "next.json";
    const std::string refusal =
        Thrown([&] { workspace = std::make_unique<Workspace>(place.folder / "wrong.json", next); });
    CHECK_NE(refusal.find("unknown parameter; did you mean \"BrushWidth\"?"), std::string::npos);
    CHECK_EQ(CanvasOf(*workspace) == drawn, true);
    workspace->RunFields(1);
    workspace = std::make_unique<Workspace>(place.folder / "grey.png", next);
    workspace->RunFields(2);
    CHECK_EQ(CanvasOf(*workspace) == picture_io::Picture(1024, 1024), true);
    workspace.reset();
    CHECK_EQ(CanvasWhenPlayed(place.options.recording) == drawn, true);
}

TEST_CASE("Pictures are saved under names that are free") {
    const GreyPlace place;
    WriteText(place.folder / "grey-overlay-001.png", "taken");
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.RunFields(1);
        Draw(workspace, {40, 60, 280, 60});
        workspace.SavePicture();
        workspace.SaveOverlay();
        workspace.SaveOverlay();
        CHECK_EQ(workspace.TheHost().WrongUses().empty(), true);
        const picture_io::Picture canvas = CanvasOf(workspace);
        std::vector<std::string> news;
        while (news.size() < 3)
            for (const std::string& line : workspace.TakeNews()) news.push_back(line);
        CHECK_EQ(picture_io::ReadPicture(place.folder / "grey-overlay-002.png") == canvas, true);
        CHECK_EQ(picture_io::ReadPicture(place.folder / "grey-overlay-003.png") == canvas, true);
        CHECK_EQ(picture_io::ReadPicture(place.folder / "grey-picture-001.png") == workspace.TheHost().ReadFrame(),
                 true);
    }
    CHECK_EQ(ReadText(place.folder / "grey-overlay-001.png"), "taken");
}

TEST_CASE("What is no picture, film or session is refused by its name") {
    const GreyPlace place;
    WriteText(place.folder / "notes.txt", "Kick-off at three.");
    const auto refusal = [&](const char* name) {
        const std::string text = Thrown([&] { const Workspace workspace(place.folder / name, place.options); });
        return text.starts_with((place.folder / name).string() + ": ") ? text : "no name: " + text;
    };
    CHECK_NE(refusal("notes.txt").find("notes.txt: "), std::string::npos);
    CHECK_NE(refusal("gone.png").find("cannot be read"), std::string::npos);
    CHECK_NE(refusal("").find("is a folder"), std::string::npos);
    CHECK_FALSE(std::filesystem::exists(place.options.recording));
}

}  // namespace kel
