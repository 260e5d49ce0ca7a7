#include "kel/session/video_timeline.h"

#include <doctest/doctest.h>

#include "tests/cli/temporary_folder.h"
#include "tests/kel/session/session_text.h"
#include "tests/kel/video/counted_video.h"

namespace kel {
namespace {

using nlohmann::json;

// A video of ten frames, one a field, that fills a window of 64 x 64, with a pane before it to draw on.
class DrawnVideo {
public:
    DrawnVideo(const json& events, std::int64_t fields) {
        testing::WriteCountedVideo(m_folder / "counted.mkv", 10, 64, 64, 50);
        json session = testing::PlainSession();
        const json plugin = {{"parameters", {{"TexUnit", 0}, {"Transparent", true}, {"BrushWidth", 30}}}};
        session["window"] = {{"width", 64}, {"height", 64}};
        session["containers"] = {{{"name", "screen"}, {"size", {100, 100}}, {"film", "counted.mkv"}},
                                 {{"name", "pane"}, {"size", {100, 100}}, {"plugin", plugin}}};
        session["events"] = events;
        session["fields"] = fields;
        m_session = ParseSession(session.dump(), m_folder / "s.json");
    }

    struct Seen {
        std::vector<std::int64_t> frames;
        std::vector<bool> hasInk;
        int restarts = 0;
    };
    [[nodiscard]] Seen PlayAlong() const {
        TimelinePlay::Stage first = MakeStage();
        const auto timeline = TimelineOf(m_session, *first.player);
        REQUIRE(timeline);
        CHECK_EQ(timeline->framesPerSecond, doctest::Approx(50));
        TimelinePlay play(*timeline, std::move(first), [this] { return MakeStage(); });
        Seen seen;
        for (const VideoTimeline::Step& step : timeline->steps) {
            seen.restarts += play.Show(step) ? 1 : 0;
            const picture_io::Picture overlay = play.TheHost().ReadOverlay();
            seen.hasInk.push_back(overlay != picture_io::Picture(64, 64));
            seen.frames.push_back(testing::NumberOf(play.TheHost().ReadFrame()));
        }
        return seen;
    }

private:
    [[nodiscard]] TimelinePlay::Stage MakeStage() const {
        TimelinePlay::Stage stage;
        stage.host = std::make_unique<Host>(WindowSize{64, 64});
        stage.player = std::make_unique<Player>(m_session, *stage.host, CHALKPANE_MODULE);
        return stage;
    }

    cli::testing::TemporaryFolder m_folder;
    Session m_session;
};

using Numbers = std::vector<std::int64_t>;

const Numbers everyFrame{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};

// In the lower half of the picture, where a frame does not say its number.
json Stroke(std::int64_t field) { return {{"field", field}, {"fields", 4}, {"stroke", {{20, 58}, {44, 58}}}}; }

json Change(std::int64_t field, const json& change) { return {{"field", field}, {"film", change}}; }

}  // namespace

TEST_CASE("What is drawn while the video stands still lies on it from that frame on, and the pause is gone") {
    const DrawnVideo video({Change(3, {{"play", false}}), Stroke(5), Change(20, {{"play", true}})}, 30);
    const auto seen = video.PlayAlong();
    CHECK_EQ(seen.frames == everyFrame, true);
    CHECK_EQ(seen.hasInk == std::vector<bool>{false, false, false, true, true, true, true, true, true, true}, true);
    CHECK_EQ(seen.restarts, 0);
}

// Pressed in field 1 and let go in field 5; frames 7 and 8 are jumped over.
TEST_CASE("Frames that nobody looked at have the ink of those before them, to the video's end") {
    const DrawnVideo video({Stroke(1), Change(7, {{"frame", 9}, {"play", false}})}, 10);
    const auto seen = video.PlayAlong();
    CHECK_EQ(seen.frames == everyFrame, true);
    CHECK_FALSE(seen.hasInk[0]);
    for (std::size_t frame = 6; frame < 10; ++frame) CHECK(seen.hasInk[frame]);
    const DrawnVideo shorter(json::array({Stroke(1)}), 7);
    CHECK_EQ(shorter.PlayAlong().frames == everyFrame, true);
    CHECK(shorter.PlayAlong().hasInk[9]);
}

TEST_CASE("Frames that were shown again have what stood on them last") {
    // Frames 0 to 5, then 1 and 2 with a stroke on them.
    const DrawnVideo video({Change(6, {{"frame", 1}, {"play", false}}), Stroke(7), Change(15, {{"frame", 2}})}, 20);
    const auto seen = video.PlayAlong();
    CHECK_EQ(seen.frames == everyFrame, true);
    CHECK_EQ(seen.hasInk == std::vector<bool>{false, true, true, false, false, false, false, false, false, false},
             true);
    CHECK_EQ(seen.restarts, 1);
}

TEST_CASE("A session without a video has no timeline of one") {
    json text = testing::PlainSession();
    const Session session = ParseSession(text.dump(), "s.json");
    Host host({session.window.width, session.window.height});
    const Player player(session, host, CHALKPANE_MODULE);
    CHECK_FALSE(TimelineOf(session, player));
}

}  // namespace kel
