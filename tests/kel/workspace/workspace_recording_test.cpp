#include <doctest/doctest.h>

#include <nlohmann/json.hpp>
#include <thread>

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

TEST_CASE("What is recorded at the workspace plays to the same canvas, byte for byte") {
    const GreyPlace place;
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
    CHECK_EQ(CanvasWhenPlayed(place.options.recording) == live, true);
    CHECK_EQ(place.Recorded()["fields"], 1 + 10 + 10 + 10 + 3 + 4);
}

TEST_CASE("The workspace undoes beyond the module's ring and redoes, and its recording plays to the same canvas") {
    const GreyPlace place;
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
    CHECK_EQ(CanvasWhenPlayed(place.options.recording) == live, true);
}

TEST_CASE("A shape that is recognised at the workspace is recognised by the play of its recording") {
    const GreyPlace place;
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
    CHECK_EQ(CanvasWhenPlayed(place.options.recording) == live, true);
}

TEST_CASE("What is set before a press takes hold before its stroke, and all of the stroke follows") {
    const GreyPlace place;
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

TEST_CASE("A session's own events have happened before the operator's, and are in the recording too") {
    const GreyPlace place;
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
    CHECK_EQ(CanvasWhenPlayed(place.options.recording) == live, true);
    const json recorded = place.Recorded();
    CHECK_EQ(recorded["events"][0]["stroke"].size(), 2);
    CHECK_EQ(recorded["containers"][0]["name"], "container 1");
    CHECK_EQ(recorded["containers"][0]["picture"], (place.folder / "grey.png").string());
    CHECK_FALSE(recorded.contains("$schema"));
}

TEST_CASE("A recording names the operator's module by its name, which plays where that module is given") {
    GreyPlace place;
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

TEST_CASE("The recording is a whole session at any time, and is refused where it cannot be written") {
    GreyPlace place;
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
    const GreyPlace place;
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
    const GreyPlace place;
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
    CHECK_EQ(CanvasWhenPlayed(place.options.recording) == live, true);
}

TEST_CASE("What is done between two fields happens in the order in which it was done") {
    const GreyPlace place;
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

}  // namespace kel
