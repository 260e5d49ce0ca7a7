#include <doctest/doctest.h>

#include "kel/video/video_reader.h"
#include "tests/kel/video/counted_video.h"
#include "tests/kel/video/held_video.h"
#include "tests/kel/workspace/grey_place.h"

namespace kel {
namespace {

using testing::Draw;
using testing::GreyPlace;

}  // namespace

TEST_CASE("What is saved of a film that is shown quickly has the colours that are written") {
    GreyPlace place;
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
    GreyPlace place;
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
    GreyPlace place;
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

TEST_CASE("A film is paused, stepped and looped while one draws, and its recording shows the same frames") {
    GreyPlace place;
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

}  // namespace kel
