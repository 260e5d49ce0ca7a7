#include "kel/workspace/workspace.h"

#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <thread>

#include "kel/session/session_lines.h"
#include "kel/video/video_reader.h"
#include "kel/workspace/brush_look.h"
#include "kel/workspace/embedded_text.h"
#include "kel/workspace/fitted_keys.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/pixels.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/video/held_video.h"

namespace kel {
namespace {

using cli::testing::ReadText;
using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using cli::testing::WriteText;
using nlohmann::json;

// A folder with a grey picture of 320 x 240, and how a workspace is opened on it.
class Place {
public:
    Place() {
        picture_io::WritePicture(testing::Plain(320, 240, {90, 90, 90, 255}), folder / "grey.png");
        options.module = CHALKPANE_MODULE;
        options.recording = folder / "run.json";
        options.saves = folder.Path();
    }
    [[nodiscard]] json Recorded() const { return json::parse(WholeSessionText(ReadText(options.recording))); }

    TemporaryFolder folder;
    WorkspaceOptions options;
};

struct Stroke {
    std::int32_t fromX, fromY, toX, toY;
};

// One field for each of some places along the way.
void Draw(Workspace& workspace, const Stroke& stroke) {
    constexpr int steps = 8;
    workspace.Point(PointerKind::Press, stroke.fromX, stroke.fromY);
    workspace.RunFields(1);
    for (int i = 1; i <= steps; ++i) {
        workspace.Point(PointerKind::Move, stroke.fromX + (stroke.toX - stroke.fromX) * i / steps,
                        stroke.fromY + (stroke.toY - stroke.fromY) * i / steps);
        workspace.RunFields(1);
    }
    workspace.Point(PointerKind::Release, stroke.toX, stroke.toY);
    workspace.RunFields(1);
}

picture_io::Picture CanvasOf(Workspace& workspace) { return workspace.TheHost().ReadCanvas(workspace.Chosen()->id); }

// What `kel play` makes of a session.
picture_io::Picture PlayedCanvas(const std::filesystem::path& file) {
    const Session session = ReadSession(file);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::NotWanted);
    return host.ReadCanvas(player.OverlayContainer());
}

std::size_t IndexOf(const Workspace& workspace, const std::string& parameter) {
    const auto& parameters = workspace.Chosen()->registration->parameters;
    return static_cast<std::size_t>(workspace.Chosen()->registration->FindParameter(parameter) - parameters.data());
}

}  // namespace

TEST_CASE("What is recorded at the workspace plays to the same canvas, byte for byte") {
    const Place place;
    picture_io::Picture live;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.RunFields(1);
        Draw(workspace, {40, 60, 280, 60});
        workspace.Set(IndexOf(workspace, "BrushColor"), ColourBytes{255, 0, 0, 255});
        workspace.Set(IndexOf(workspace, "BrushWidth"), std::int32_t{12});
        Draw(workspace, {40, 120, 280, 180});
        Draw(workspace, {40, 200, 280, 40});
        workspace.Push("Undo");
        workspace.RunFields(3);
        // Two events between two fields: the release has to wait for the next one.
        workspace.Point(PointerKind::Press, 100, 100);
        workspace.Point(PointerKind::Move, 120, 140);
        workspace.Point(PointerKind::Release, 140, 150);
        workspace.RunFields(4);
        live = CanvasOf(workspace);
    }
    CHECK_EQ(live == picture_io::Picture(live.width, live.height), false);
    CHECK_EQ(PlayedCanvas(place.options.recording) == live, true);
    CHECK_EQ(place.Recorded()["fields"], 1 + 10 + 10 + 10 + 3 + 4);
}

TEST_CASE("The workspace undoes beyond the module's ring and redoes, and its recording plays to the same canvas") {
    const Place place;
    picture_io::Picture live;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.Set(IndexOf(workspace, "MaxUndos"), std::int32_t{1});
        workspace.RunFields(1);
        std::vector<picture_io::Picture> canvases = {CanvasOf(workspace)};
        for (int i = 0; i < 3; ++i) {
            Draw(workspace, {40, 60 + 50 * i, 280, 60 + 50 * i});
            canvases.push_back(CanvasOf(workspace));
        }
        const auto after = [&] {
            workspace.RunFields(1);
            return CanvasOf(workspace);
        };
        for (std::size_t there = 3; there > 0; --there) {
            workspace.Undo();
            CHECK(after() == canvases[there - 1]);
        }
        workspace.Undo();  // nothing is left to undo, and nothing happens
        CHECK(after() == canvases[0]);
        workspace.Redo();
        CHECK(after() == canvases[1]);
        workspace.Redo();
        workspace.Redo();
        CHECK(after() == canvases[3]);
        workspace.Undo();
        live = after();
        CHECK(live == canvases[2]);
    }
    CHECK_EQ(PlayedCanvas(place.options.recording) == live, true);
}

TEST_CASE("A shape that is recognised at the workspace is recognised by the play of its recording") {
    const Place place;
    picture_io::Picture live;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.Set(IndexOf(workspace, "RecoShapes"), std::int32_t{1});
        workspace.RunFields(1);
        Draw(workspace, {60, 60, 200, 150});
        workspace.RunFields(10);
        const picture_io::Picture drawn = CanvasOf(workspace);
        for (int i = 0; i < 10; ++i) workspace.RunFields(10);
        live = CanvasOf(workspace);
        CHECK_EQ(live == drawn, false);
    }
    CHECK_EQ(PlayedCanvas(place.options.recording) == live, true);
}

TEST_CASE("Over a picture that is not square dabs are round on the screen") {
    Place place;
    place.options.recording.clear();
    Workspace workspace(place.folder / "grey.png", place.options);
    CHECK_EQ(workspace.TheHost().Window().width, 320);
    CHECK_EQ(workspace.TheHost().Window().height, 240);
    workspace.Set(IndexOf(workspace, "BrushWidth"), std::int32_t{30});
    workspace.RunFields(2);
    Draw(workspace, {160, 120, 160, 120});
    workspace.RunFields(1);
    const picture_io::Picture seen = workspace.TheHost().ReadFrame();
    const auto isDrawn = [&](std::int32_t x, std::int32_t y) {
        return seen.At(x, y) != testing::Pixel{90, 90, 90, 255};
    };
    const auto reach = [&](std::int32_t stepX, std::int32_t stepY) {
        std::int32_t steps = 0;
        while (isDrawn(160 + stepX * steps, 120 + stepY * steps)) ++steps;
        return steps;
    };
    // 30 of 1024 canvas pixels on 320 window pixels are 9.4.
    for (const std::int32_t steps : {reach(1, 0), reach(-1, 0), reach(0, 1), reach(0, -1)}) {
        CHECK_GE(steps, 8);
        CHECK_LE(steps, 12);
    }
    CHECK_EQ(seen.At(2, 2), testing::Pixel{90, 90, 90, 255});
    CHECK_EQ(seen.At(317, 237), testing::Pixel{90, 90, 90, 255});
}

TEST_CASE("A picture is saved from the workspace with the pixels that it has, however many") {
    Place place;
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

TEST_CASE("What is saved of a film that is shown quickly has the colours that are written") {
    Place place;
    place.options.recording.clear();
    place.options.videoConversion = VideoConversion::Fast;
    testing::WriteCountedVideo(place.folder / "film.mp4", 12, 320, 240);
    VideoReader plain(place.folder / "film.mp4");
    {
        Workspace workspace(place.folder / "film.mp4", place.options);
        workspace.RunFields(1);
        workspace.RunFields(1);
        workspace.RunFields(1);
        CHECK_EQ(workspace.TheHost().ReadFrame() == plain.ReadFrame(1), false);
        workspace.SavePicture();
    }
    CHECK_EQ(picture_io::ReadPicture(place.folder / "film-picture-001.png") == plain.ReadFrame(1), true);
}

TEST_CASE("A film from a phone stands upright in the window, and in the session that is recorded") {
    Place place;
    testing::WriteHeldVideo(place.folder / "held.mp4", {0, 1, -1, 0});
    VideoReader held(place.folder / "held.mp4");
    REQUIRE_EQ(held.Height(), 64);
    {
        Workspace workspace(place.folder / "held.mp4", place.options);
        workspace.RunFields(1);
        CHECK_EQ(workspace.TheHost().ReadFrame() == held.ReadFrame(0), true);
    }
    const Session session = ReadSession(place.options.recording);
    CHECK_EQ(session.window.height, 64);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    (void)player.PlayField(Player::Rendering::Wanted);
    CHECK_EQ(host.ReadFrame() == held.ReadFrame(0), true);
}

TEST_CASE("A film goes on where it would be after fields that were given up") {
    Place place;
    testing::WriteCountedVideo(place.folder / "film.mkv", 60, 320, 240);
    Workspace workspace(place.folder / "film.mkv", place.options);
    workspace.RunFields(4);
    workspace.SkipVideo(20);
    workspace.RunFields(1);
    CHECK_EQ(testing::NumberOf(workspace.TheHost().ReadFrame()), (4 + 20) / 2);
    workspace.DoVideo(WorkspaceAction::Pause);
    const std::int64_t frame = workspace.VideoFrame();
    workspace.SkipVideo(20);
    CHECK_EQ(workspace.VideoFrame(), frame);
}

// 5 canvas pixels on a pane as wide as the picture's 320 pixels, from whose first to whose last there are 1023.
TEST_CASE("The workspace knows how large the pen is on the picture, and that shapes are recognised over one") {
    Place place;
    place.options.recording.clear();
    Workspace workspace(place.folder / "grey.png", place.options);
    workspace.RunFields(1);
    const auto brush = BrushLookOf(workspace, {100, 60});
    REQUIRE(brush);
    CHECK_EQ(brush->dab.across[0], doctest::Approx(5.0 * 320 / 1023));
    CHECK_EQ(brush->dab.down[1], doctest::Approx(5.0 * 320 / 1023));
    CHECK_EQ(brush->dab.across[1], doctest::Approx(0));
    CHECK_EQ(brush->dab.down[0], doctest::Approx(0));
    CHECK(brush->hasColour);
    CHECK_FALSE(brush->isEraser);
    CHECK_EQ(brush->colour[0], 0xFF);
    CHECK_EQ(RecognisesShapes(workspace), true);
    workspace.Set(IndexOf(workspace, "RecoShapes"), std::int32_t{0});
    CHECK_EQ(RecognisesShapes(workspace), false);
    workspace.Set(IndexOf(workspace, "BrushType"), std::int32_t{1});
    workspace.RunFields(2);
    CHECK(BrushLookOf(workspace, {0, 0})->isEraser);
    CHECK_FALSE(BrushLookOf(workspace, {0, 0})->hasColour);
}

// 500 in front of a pane of 200 x 200 that leans back by 60 degrees, its upper edge towards the camera. In its middle
// the 120 pixels above it show 500 * tan 20 = 181.985 of the scene, so a canvas pixel is 200 / 1023 * 120 / 181.985 =
// 0.12891 wide and, since cos 60 is a half, half as high.
TEST_CASE("The pen is as wide and as high as it is seen on a pane that leans, and larger where that is nearer") {
    Place place;
    place.options.recording.clear();
    WriteText(place.folder / "leaning.json",
              R"({"window": {"width": 320, "height": 240}, "fieldsPerSecond": 50, "fields": 1,
                  "camera": {"position": [0, 0, 500], "target": [0, 0, 0], "fieldOfView": 40},
                  "containers": [{"size": [200, 200], "rotation": [60, 0, 0],
                                  "plugin": {"parameters": {"BrushWidth": 10}}}]})");
    Workspace workspace(place.folder / "leaning.json", place.options);
    workspace.RunFields(1);
    const auto dabAt = [&](std::int32_t y) {
        const auto brush = BrushLookOf(workspace, {160, y});
        REQUIRE(brush);
        return brush->dab;
    };
    const SeenDab middle = dabAt(120);
    CHECK_EQ(middle.across[0], doctest::Approx(1.2891).epsilon(0.001));
    CHECK_EQ(middle.across[1], doctest::Approx(0));
    CHECK_EQ(middle.down[0], doctest::Approx(0));
    CHECK_EQ(middle.down[1], doctest::Approx(0.6445).epsilon(0.001));
    CHECK_GT(dabAt(90).across[0], middle.across[0]);
    CHECK_LT(dabAt(140).across[0], middle.across[0]);
}

TEST_CASE("Keys act on the chosen plug-in, and steps in one field add up") {
    const Place place;
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

TEST_CASE("What is set before a press takes hold before its stroke, and all of the stroke follows") {
    const Place place;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.RunFields(1);
        workspace.Set(IndexOf(workspace, "BrushWidth"), std::int32_t{9});
        workspace.Point(PointerKind::Press, 100, 100);
        workspace.Point(PointerKind::Move, 120, 100);
        workspace.Point(PointerKind::Release, 140, 100);
        workspace.RunFields(1);
        CHECK_FALSE(workspace.TheHost().DeliveredPointer().has_value());
        workspace.RunFields(1);
        workspace.RunFields(1);
    }
    const json events = place.Recorded()["events"];
    REQUIRE_EQ(events.size(), 3U);
    CHECK_EQ(events[0]["set"]["BrushWidth"], 9);
    CHECK_EQ(events[0]["field"], 1);
    CHECK_EQ(events[1]["press"], json({100, 100}));
    CHECK_EQ(events[1]["field"], 2);
    CHECK_EQ(events[2]["release"], json({140, 100}));
    CHECK_EQ(events[2]["field"], 3);
}

TEST_CASE("A value beyond its limits and an image that is not there change nothing") {
    const Place place;
    Workspace workspace(place.folder / "grey.png", place.options);
    workspace.RunFields(1);
    const std::size_t width = IndexOf(workspace, "BrushWidth");
    CHECK_EQ(Thrown([&] { workspace.Set(width, std::int32_t{31}); }), "Brush Width: 31 is above the maximum 30");
    CHECK_EQ(workspace.Value(width) == ParameterValue(std::int32_t{5}), true);
    const std::string gone = (place.folder / "gone.png").string();
    CHECK_EQ(Thrown([&] { workspace.Set(IndexOf(workspace, "BrushImage"), gone); }).starts_with(gone + ": "), true);
    CHECK_EQ(workspace.Value(IndexOf(workspace, "BrushImage")) == ParameterValue(std::string()), true);
}

TEST_CASE("A session's own events have happened before the operator's, and are in the recording too") {
    const Place place;
    WriteText(place.folder / "show.json",
              json{{"$schema", "x"},
                   {"window", {{"width", 64}, {"height", 64}}},
                   {"camera", {{"position", {0, 0, 137.37}}, {"target", {0, 0, 0}}}},
                   {"containers", {{{"size", {100, 100}}, {"picture", "grey.png"}, {"plugin", json::object()}}}},
                   {"events", {{{"field", 2}, {"fields", 5}, {"stroke", {{9, 9}, {50, 9}}}}}},
                   {"fields", 20}}
                  .dump());
    picture_io::Picture live;
    {
        Workspace workspace(place.folder / "show.json", place.options);
        CHECK(workspace.IsPlayingSession());
        workspace.Point(PointerKind::Press, 1, 1);  // too early: does not count
        while (workspace.IsPlayingSession()) workspace.PlaySession(std::chrono::milliseconds(5));
        CHECK_EQ(workspace.NextField(), 20);
        CHECK_EQ(workspace.SessionProgress(), 1.0);
        workspace.RunFields(1);
        const picture_io::Picture before = CanvasOf(workspace);
        CHECK_EQ(before == picture_io::Picture(1024, 1024), false);
        Draw(workspace, {10, 40, 50, 50});
        live = CanvasOf(workspace);
        CHECK_EQ(live == before, false);
    }
    CHECK_EQ(PlayedCanvas(place.options.recording) == live, true);
    const json recorded = place.Recorded();
    CHECK_EQ(recorded["events"][0]["stroke"].size(), 2);
    CHECK_EQ(recorded["containers"][0]["name"], "container 1");
    CHECK_EQ(recorded["containers"][0]["picture"], (place.folder / "grey.png").string());
    CHECK_FALSE(recorded.contains("$schema"));
}

TEST_CASE("A recording names the operator's module by its name, which plays where that module is given") {
    Place place;
    place.options.isModuleGiven = true;
    place.options.permissions.modules = {CHALKPANE_MODULE};
    { const Workspace workspace(place.folder / "grey.png", place.options); }
    const json recorded = place.Recorded();
    CHECK_EQ(recorded["recording"], true);
    CHECK_EQ(recorded["containers"][1]["plugin"]["module"], "Chalkpane.qop");
    const Session session = ReadSession(place.options.recording);
    Host host({64, 48});
    CHECK_NE(cli::testing::Thrown([&] {
                 const Player player(session, host, CHALKPANE_MODULE);
             }).find("sessions do not choose programs"),
             std::string::npos);
    CHECK_EQ(
        cli::testing::Thrown([&] { const Player player(session, host, CHALKPANE_MODULE, place.options.permissions); }),
        "nothing");
}

TEST_CASE("A film is paused, stepped and looped while one draws, and its recording shows the same frames") {
    Place place;
    testing::WriteCountedVideo(place.folder / "counted.mkv", 12, 320, 240, 25);
    std::vector<std::int64_t> live;
    {
        Workspace workspace(place.folder / "counted.mkv", place.options);
        CHECK_EQ(workspace.FieldsPerSecond(), 50.0);
        const auto run = [&](int fields) {
            for (int i = 0; i < fields; ++i) {
                workspace.RunFields(1);
                live.push_back(testing::NumberOf(workspace.TheHost().ReadFrame()));
            }
        };
        run(4);
        CHECK_EQ(live == std::vector<std::int64_t>{0, 0, 1, 1}, true);
        workspace.DoVideo(WorkspaceAction::Pause);
        run(2);
        workspace.DoVideo(WorkspaceAction::Step);
        run(1);
        workspace.DoVideo(WorkspaceAction::StepBack);
        workspace.DoVideo(WorkspaceAction::StepBack);
        run(1);
        CHECK_EQ(live == std::vector<std::int64_t>{0, 0, 1, 1, 2, 2, 3, 1}, true);
        Draw(workspace, {40, 200, 280, 210});
        workspace.ChangeVideo({11, std::nullopt, std::nullopt});
        workspace.DoVideo(WorkspaceAction::Loop);
        live.clear();
        workspace.DoVideo(WorkspaceAction::Pause);  // goes on, from the start since it stands at the end
        run(2);
        CHECK_EQ(live == std::vector<std::int64_t>{0, 0}, true);
        workspace.ChangeVideo({10, std::nullopt, std::nullopt});
        run(5);
        CHECK_EQ(live == std::vector<std::int64_t>{0, 0, 10, 10, 11, 11, 0}, true);
    }
    const Session session = ReadSession(place.options.recording);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    std::vector<std::int64_t> played;
    while (!player.IsOver()) {
        (void)player.PlayField(Player::Rendering::Wanted);
        played.push_back(testing::NumberOf(host.ReadFrame()));
    }
    CHECK_EQ(std::vector<std::int64_t>(played.end() - 7, played.end()) == live, true);
}

TEST_CASE("Another file takes the workspace over, and one that is wrong leaves it as it was") {
    const GlContext context;
    Place place;
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
    CHECK_EQ(PlayedCanvas(place.options.recording) == drawn, true);
}

TEST_CASE("The recording is a whole session at any time, and is refused where it cannot be written") {
    Place place;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        CHECK_EQ(ReadSession(place.options.recording).fields, 1);
        Draw(workspace, {40, 60, 280, 60});
    }
    const Session session = ReadSession(place.options.recording);
    CHECK_EQ(session.fields, 10);
    CHECK_EQ(session.events.size(), 10);
    place.options.recording = place.folder / "nowhere/run.json";
    const std::string refusal = Thrown([&] { const Workspace workspace(place.folder / "grey.png", place.options); });
    CHECK_NE(refusal.find("nowhere/run.json: cannot be written"), std::string::npos);
}

TEST_CASE("A recording grows by what happens, and an idle hour writes nothing") {
    const Place place;
    const auto size = [&] { return std::filesystem::file_size(place.options.recording); };
    Workspace workspace(place.folder / "grey.png", place.options);
    // Longer than between two writes, so that the next field writes what there is to write.
    const auto write = [&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(450));
        workspace.RunFields(1);
    };
    workspace.RunFields(10);
    Draw(workspace, {40, 60, 280, 60});
    for (int fields = 0; fields < 30; ++fields) workspace.RunFields(10);  // past the two seconds to settle
    write();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const std::string settled = ReadText(place.options.recording);
    workspace.Point(PointerKind::Move, 100, 100);  // nothing is pressed
    for (int fields = 0; fields < 100; ++fields) workspace.RunFields(10);
    write();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    CHECK_EQ(size(), settled.size());
    Draw(workspace, {40, 90, 280, 90});
    write();
    while (size() == settled.size()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    CHECK_EQ(ReadText(place.options.recording).starts_with(settled), true);
    CHECK_EQ(ReadSession(place.options.recording).events.size(), 20U);
}

TEST_CASE("Steps between fields draw at once, count as none, and play again to the same canvas") {
    const Place place;
    picture_io::Picture live;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.RunFields(2);
        CHECK_FALSE(workspace.CanStep());
        workspace.Point(PointerKind::Move, 30, 60);
        CHECK_FALSE(workspace.CanStep());  // nothing is pressed
        workspace.Point(PointerKind::Press, 40, 60);
        for (int i = 0; i < 30; ++i) {
            REQUIRE(workspace.CanStep());
            workspace.RunStep();
            CHECK_FALSE(workspace.CanStep());
            if (i % 4 == 3) workspace.RunFields(1);
            workspace.Point(PointerKind::Move, 40 + 8 * i, 60 + 37 * i % 50);
        }
        workspace.RunStep();
        CHECK_EQ(workspace.NextField(), 2 + 7);
        CHECK_EQ(CanvasOf(workspace) == picture_io::Picture(1024, 1024), false);
        workspace.Point(PointerKind::Release, 290, 60);
        CHECK_FALSE(workspace.CanStep());  // a release has its field
        workspace.RunFields(1);
        Draw(workspace, {40, 160, 280, 160});
        live = CanvasOf(workspace);
    }
    const json recorded = place.Recorded();
    int steps = 0;
    for (const json& event : recorded["events"]) steps += event.value("step", false) ? 1 : 0;
    CHECK_EQ(steps, 31);
    CHECK_EQ(recorded["fields"], 2 + 7 + 1 + 10);
    CHECK_EQ(PlayedCanvas(place.options.recording) == live, true);
}

TEST_CASE("What is done between two fields happens in the order in which it was done") {
    const Place place;
    {
        Workspace workspace(place.folder / "grey.png", place.options);
        workspace.RunFields(2);
        const auto tap = [&](std::int32_t y) {
            workspace.Point(PointerKind::Press, 60, y);
            workspace.Point(PointerKind::Move, 90, y);
            workspace.Point(PointerKind::Release, 90, y);
        };
        const std::size_t width = IndexOf(workspace, "BrushWidth");
        tap(60);
        workspace.Set(width, std::int32_t{12});
        tap(100);
        workspace.Undo();
        tap(140);
        workspace.Set(width, std::int32_t{7});
        CHECK_EQ(std::get<std::int32_t>(workspace.Value(width)), 7);
        int fields = 0;
        while (workspace.HasWaiting()) {
            workspace.RunFields(1);
            REQUIRE_LT(++fields, 20);
        }
    }
    std::string order;
    for (const json recorded = place.Recorded(); const json& event : recorded["events"])
        for (const auto& [key, letter] : {std::pair{"press", 'p'}, {"release", 'r'}, {"set", 's'}, {"undo", 'u'}})
            if (event.contains(key)) order += letter;
    CHECK_EQ(order, "prspruprs");
}

TEST_CASE("Pictures are saved under names that are free") {
    const Place place;
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
    const Place place;
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
