#include "kel/workspace/moment_ink.h"

#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "kel/session/session_lines.h"
#include "tests/kel/workspace/live_place.h"

namespace kel {
namespace {

using chalkpane::InkStroke;
using Strokes = MomentInk::Strokes;
using testing::Await;
using testing::AwaitCorner;
using testing::DrawAcross;
using testing::LivePlace;

chalkpane::SharedStroke NewStroke() { return std::make_shared<const InkStroke>(); }

constexpr std::int64_t second = 1'000'000;

}  // namespace

TEST_CASE("Ink of a moment is seen near it and nowhere else, and ink of the live pictures everywhere") {
    const auto live = NewStroke();
    const auto early = NewStroke();
    const auto late = NewStroke();
    MomentInk ink;
    ink.Note({live});
    CHECK_EQ(ink.Show(5 * second), Strokes{live});
    ink.Note({live, early});
    CHECK_EQ(ink.Show(8 * second), Strokes{live});
    ink.Note({live, late});
    CHECK_EQ(ink.Show(std::nullopt), Strokes{live});
    CHECK_EQ(ink.Show(5 * second - MomentInk::reach), Strokes{live, early});
    CHECK_EQ(ink.Show(5 * second - MomentInk::reach - 1), Strokes{live});
    CHECK_EQ(ink.Show(8 * second + MomentInk::reach), Strokes{live, late});
    CHECK_EQ(ink.ShowAll(), Strokes{live, early, late});
    CHECK(ink.IsEmpty());
}

TEST_CASE("What is taken away at a moment is gone from it, and a change of moments that is undone takes nothing away") {
    const auto former = NewStroke();
    const auto latter = NewStroke();
    MomentInk ink;
    CHECK(ink.Show(0).empty());
    ink.Note({former, latter});
    ink.Note({latter});
    CHECK(ink.Show(60 * second).empty());
    ink.Note({latter});  // what was there before the change: it belongs elsewhere
    CHECK(ink.Show(std::nullopt).empty());
    CHECK_EQ(ink.Show(0), Strokes{latter});
    CHECK(ink.Show(60 * second).empty());
    ink.ForgetBefore(30 * second);
    CHECK(ink.Show(0).empty());
}

TEST_CASE("Ink drawn on a replay leaves with it, is there again at its moment, and plays so from the recording") {
    LivePlace place;
    place.options.inkLeaves = true;
    picture_io::Picture blank;
    picture_io::Picture both;
    std::vector<std::int64_t> fieldsWithBoth;
    {
        Workspace workspace({}, place.options);
        const auto canvas = [&] {
            workspace.RunFields(1);
            workspace.FollowInk();
            return workspace.TheHost().ReadCanvas(workspace.Chosen()->id);
        };
        AwaitCorner(workspace, 128);
        DrawAcross(workspace, 60);  // on the live pictures
        const picture_io::Picture live = canvas();
        Await("some of it is kept", [&] { return place.options.live->Ring().Size().seconds > 1; });
        workspace.DoVideo(WorkspaceAction::Pause);
        CHECK_EQ(canvas(), live);
        CHECK_EQ(workspace.VideoFrame(), workspace.Video()->Clock().Frames() - 1);  // it stands
        DrawAcross(workspace, 180);
        both = canvas();
        CHECK_NE(both, live);
        workspace.DoVideo(WorkspaceAction::Start);
        CHECK_EQ(canvas(), live);
        workspace.DoVideo(WorkspaceAction::Live);
        CHECK_EQ(canvas(), live);
        // The same moment stands elsewhere in another replay.
        workspace.DoVideo(WorkspaceAction::Pause);
        Await("the moment", [&] {
            workspace.DoVideo(WorkspaceAction::StepBack);
            return canvas() == both;
        });
        workspace.SetInkLeaves(false);
        workspace.DoVideo(WorkspaceAction::Live);
        CHECK_EQ(canvas(), both);
    }
    const Session session = ReadSession(place.options.recording);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    int changes = 0;
    picture_io::Picture seen;
    while (!player.IsOver()) {
        (void)player.PlayField(Player::Rendering::NotWanted);
        const bool hasBoth = host.ReadCanvas(player.OverlayContainer()) == both;
        changes += hasBoth != (seen == both) ? 1 : 0;
        seen = host.ReadCanvas(player.OverlayContainer());
    }
    CHECK_EQ(seen, both);
    CHECK_EQ(changes, 3);  // drawn, gone, back
}

}  // namespace kel
