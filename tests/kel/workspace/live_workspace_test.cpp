#include <doctest/doctest.h>

#include <nlohmann/json.hpp>

#include "kel/session/session_inputs.h"
#include "kel/session/session_lines.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"
#include "tests/kel/workspace/live_place.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using testing::Await;
using testing::AwaitCorner;
using testing::DrawAcross;
using testing::LivePlace;

}  // namespace

TEST_CASE("Live pictures go on under the ink, and the recording names them without what they are entered with") {
    LivePlace place;
    picture_io::Picture drawn;
    {
        Workspace workspace({}, place.options);
        CHECK_EQ(workspace.SceneSize().width, 320);
        CHECK_EQ(workspace.FieldsPerSecond(), 50);
        AwaitCorner(workspace, 128);
        DrawAcross(workspace);
        place.camera->SetGrey(200);
        AwaitCorner(workspace, 200);
        CHECK_GT(testing::Difference(workspace.TheHost().ReadFrame().At(160, 120), {214, 214, 214, 255}), 60);
        drawn = workspace.TheHost().ReadCanvas(workspace.Chosen()->id);
    }
    const Session session = ReadSession(place.options.recording);
    CHECK_EQ(session.containers[0].live, "tcp://127.0.0.1:" + std::to_string(place.port));
    CHECK(session.isRecording);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::Wanted);
    CHECK_EQ(host.ReadCanvas(player.OverlayContainer()), drawn);
    CHECK_EQ(host.ReadFrame().At(5, 5), testing::black);
}

TEST_CASE("A file has no live pictures opened, and says so") {
    const TemporaryFolder folder;
    const testing::BoundPort server(SOCK_STREAM);
    REQUIRE_EQ(listen(server.Socket(), 1), 0);
    const std::string address = "tcp://127.0.0.1:" + std::to_string(server.Number());
    cli::testing::WriteText(folder / "live.json",
                            R"({"window":{"width":64,"height":48},"camera":{"position":[0,0,9],"target":[0,0,0]},)"
                            R"("containers":[{"size":[64,48],"live":")" +
                                address + R"("},{"size":[8,8],"plugin":{}}]})");
    WorkspaceOptions options;
    options.module = CHALKPANE_MODULE;
    Workspace workspace(folder / "live.json", options);
    workspace.RunFields(2);
    const std::vector<std::string> news = workspace.TakeNews();
    REQUIRE_EQ(news.size(), 1);
    CHECK_EQ(news[0], (folder / "live.json").string() +
                          ": /containers/0/live: no file has live pictures opened, so \"" + address +
                          "\" stays black under the ink");
    CHECK_EQ(workspace.Live(), nullptr);
    // Nobody has called.
    timeval noTime{};
    fd_set calls;
    FD_ZERO(&calls);
    FD_SET(server.Socket(), &calls);
    CHECK_EQ(select(server.Socket() + 1, &calls, nullptr, nullptr, &noTime), 0);
}

TEST_CASE("A picture that is saved of live ones is exact") {
    LivePlace place;
    place.options.videoConversion = VideoConversion::Fast;
    Workspace workspace({}, place.options);
    AwaitCorner(workspace, 128);
    workspace.SavePicture();
    Await("the saved picture", [&] { return !workspace.TakeNews().empty(); });
    const picture_io::Picture saved = picture_io::ReadPicture(place.folder / "live-picture-001.png");
    CHECK_EQ(saved.width, 320);
    CHECK_LE(testing::Difference(saved.At(5, 5), {130, 130, 130, 255}), 4);
}

TEST_CASE("Live pictures that are paused are a film of the last seconds, and go on with one key") {
    LivePlace place;
    Workspace workspace({}, place.options);
    place.camera->SetGrey(60);
    AwaitCorner(workspace, 60);
    place.camera->SetGrey(200);
    AwaitCorner(workspace, 200);
    CHECK_EQ(workspace.Video(), nullptr);
    workspace.DoVideo(WorkspaceAction::StepBack);
    REQUIRE_NE(workspace.Video(), nullptr);
    const std::int64_t last = workspace.Video()->Clock().Frames() - 1;
    CHECK_EQ(workspace.VideoFrame(), last - 1);
    place.camera->SetGrey(120);
    workspace.RunFields(1);
    CHECK_FALSE(workspace.Video()->Clock().IsRunning(workspace.NextField()));
    // The grey of before comes again, a frame at a time.
    Await("the replayed grey", [&] {
        workspace.DoVideo(WorkspaceAction::StepBack);
        workspace.RunFields(1);
        return std::abs(workspace.TheHost().ReadFrame().At(5, 5)[0] - testing::ShownGrey(60)) <= 4;
    });
    workspace.DoVideo(WorkspaceAction::Slower);
    CHECK_EQ(workspace.Video()->Clock().Speed(), 0.5);
    workspace.DoVideo(WorkspaceAction::Live);
    CHECK_EQ(workspace.Video(), nullptr);
    AwaitCorner(workspace, 120);
    for (const std::string& line : workspace.TakeNews()) FAIL_CHECK(line);
}

TEST_CASE("The recording of a replay plays, without the replay") {
    LivePlace place;
    picture_io::Picture drawn;
    {
        Workspace workspace({}, place.options);
        workspace.RunFields(1);
        workspace.DoVideo(WorkspaceAction::Pause);
        DrawAcross(workspace);
        workspace.DoVideo(WorkspaceAction::Live);
        workspace.RunFields(1);
        drawn = workspace.TheHost().ReadCanvas(workspace.Chosen()->id);
    }
    const Session session = ReadSession(place.options.recording);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::NotWanted);
    CHECK_EQ(host.ReadCanvas(player.OverlayContainer()), drawn);
}

TEST_CASE("A clip of a replay is saved with its ink as a session that plays") {
    LivePlace place;
    Workspace workspace({}, place.options);
    workspace.DoVideo(WorkspaceAction::SaveClip);
    CHECK_EQ(workspace.TakeNews(), std::vector<std::string>{"A clip is saved of a replay: pause the live pictures, and "
                                                            "mark its beginning and end."});
    Await("half a second", [&] { return place.options.live->Ring().Size().seconds > 0.5; });
    workspace.RunFields(1);
    DrawAcross(workspace);
    workspace.DoVideo(WorkspaceAction::Pause);
    VideoChange part;
    part.in = 7;
    part.out = 16;
    workspace.ChangeVideo(part);
    workspace.RunFields(1);
    workspace.DoVideo(WorkspaceAction::SaveClip);
    std::vector<std::string> news;
    Await("the clip", [&] { return !(news = workspace.TakeNews()).empty(); });
    CHECK_EQ(news[0], "Saved " + (place.folder / "live-clip-001.mkv").string() + " and live-clip-001.json");
    const Session session = ReadSession(place.folder / "live-clip-001.json");
    CHECK_EQ(session.containers[0].video, "live-clip-001.mkv");
    CHECK_EQ(session.fields, 10);  // of 50 a second, as the frames are
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    // Keys are five frames apart, and the ring begins with one: frame 7 is the third from the one before it.
    CHECK_EQ(player.Containers()[0].video->Clock().Frames(), 12);
    (void)player.PlayField(Player::Rendering::Wanted);
    CHECK_EQ(player.Containers()[0].video->Shown(), 2);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::Wanted);
    CHECK_EQ(player.Containers()[0].video->Shown(), 11);
    CHECK_EQ(host.ReadPremultipliedCanvas(player.OverlayContainer()),
             workspace.TheHost().ReadPremultipliedCanvas(workspace.Chosen()->id));
    CHECK_LE(testing::Difference(host.ReadFrame().At(5, 5), {130, 130, 130, 255}), 6);
}

TEST_CASE("Pictures of another size keep their shape in a replay and in a clip of it") {
    LivePlace place;
    Workspace workspace({}, place.options);
    AwaitCorner(workspace, 128);
    place.camera = place.CameraOf(96, 96);  // fitted into 320 x 240, as 240 x 240 beside 40 columns of black
    Await("the corner is black", [&] {
        workspace.RunFields(1);
        return workspace.TheHost().ReadFrame().At(5, 5) == testing::black;
    });
    Await("some of it is kept", [&] { return place.options.live->Ring().Size().seconds > 0.2; });
    workspace.DoVideo(WorkspaceAction::Pause);
    workspace.RunFields(1);
    const auto checkShape = [](const picture_io::Picture& shown) {
        for (const std::int32_t x : {5, 36, 283, 314}) CHECK_EQ(shown.At(x, 120), testing::black);
        for (const std::int32_t x : {44, 160, 275})
            CHECK_LE(testing::Difference(shown.At(x, 120), {130, 130, 130, 255}), 6);
        CHECK_LE(testing::Difference(shown.At(160, 3), {130, 130, 130, 255}), 6);
    };
    checkShape(workspace.TheHost().ReadFrame());
    (void)workspace.TakeNews();
    workspace.DoVideo(WorkspaceAction::SaveClip);
    Await("the clip", [&] { return !workspace.TakeNews().empty(); });
    const Session session = ReadSession(place.folder / "live-clip-001.json");
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    (void)player.PlayField(Player::Rendering::Wanted);
    checkShape(host.ReadFrame());
}

TEST_CASE("A replay is heard as it plays at its own speed, live pictures as they come, and else nothing is") {
    constexpr std::int16_t level = 8000;
    LivePlace place;
    place.camera.reset();
    place.camera = std::make_unique<testing::Camera>(
        testing::Camera::Settings{.address = "tcp://127.0.0.1:" + std::to_string(place.port) + "?listen",
                                  .format = "nut",
                                  .width = 320,
                                  .height = 240,
                                  .level = level});
    Workspace workspace({}, place.options);
    Await("sound with the pictures", [&] {
        workspace.RunFields(1);
        const SoundMoment heard = workspace.Heard();
        return heard.isRunning && heard.track->IsLive() && heard.track->Open() != nullptr;
    });
    const double begin = place.options.live->Ring().Size().seconds;
    Await("a second of it", [&] { return place.options.live->Ring().Size().seconds > begin + 1; });
    workspace.DoVideo(WorkspaceAction::Pause);
    workspace.RunFields(1);
    CHECK_FALSE(workspace.Heard().isRunning);
    CHECK_FALSE(workspace.Heard().track->IsLive());
    const std::int64_t frame = workspace.Video()->Clock().Frames() - 25;  // half a second before its end
    VideoChange play;
    play.frame = frame;
    play.play = true;
    workspace.ChangeVideo(play);
    workspace.RunFields(2);
    const SoundMoment heard = workspace.Heard();
    CHECK(heard.isRunning);
    const VideoShow& video = *workspace.Video();
    CHECK_GE(heard.seconds, video.Clock().StartOf(frame) / video.FramesPerSecond());
    CHECK_LE(heard.seconds, video.Clock().StartOf(frame + 2) / video.FramesPerSecond());
    const auto sound = heard.track->Open();
    REQUIRE(sound);
    sound->Seek(heard.seconds);
    std::vector<float> samples(200);
    CHECK_EQ(sound->Read(samples), 100);
    CHECK_EQ(samples.back(), static_cast<float>(level) / 32768);
    VideoChange slower;
    slower.speed = 0.5;
    workspace.ChangeVideo(slower);
    workspace.RunFields(1);
    CHECK_FALSE(workspace.Heard().isRunning);
    workspace.DoVideo(WorkspaceAction::Live);
    workspace.RunFields(1);
    CHECK(workspace.Heard().track->IsLive());
}

}  // namespace kel
