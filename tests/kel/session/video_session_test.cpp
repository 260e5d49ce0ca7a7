#include <doctest/doctest.h>

#include "kel/session/player.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/session/session_text.h"
#include "tests/kel/video/counted_video.h"

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using nlohmann::json;

// A video of ten frames, one a field, that fills the window.
class VideoSession {
public:
    explicit VideoSession(const json& events, const std::string& film = "counted.mkv") {
        testing::WriteCountedVideo(m_folder / "counted.mkv", 10, 64, 64, 50);
        json session = testing::PlainSession();
        session["containers"][0] = {{"name", "screen"}, {"size", {100, 100}}, {"film", film}};
        session["events"] = events;
        m_session = ParseSession(session.dump(), m_folder / "s.json");
    }

    [[nodiscard]] std::vector<std::int64_t> NumbersSeen(std::int64_t fields) const {
        Host host({64, 64});
        Player player(m_session, host, CHALKPANE_MODULE);
        std::vector<std::int64_t> numbers;
        for (std::int64_t field = 0; field < fields; ++field) {
            (void)player.PlayField(Player::Rendering::Wanted);
            numbers.push_back(testing::NumberOf(host.ReadFrame()));
        }
        return numbers;
    }

    [[nodiscard]] std::string Refusal() const {
        const std::string refusal = Thrown([&] { (void)NumbersSeen(1); });
        const std::string folder = m_folder.Path().string() + "/";
        std::string shown = refusal;
        for (auto at = shown.find(folder); at != std::string::npos; at = shown.find(folder))
            shown.erase(at, folder.size());
        return shown;
    }

private:
    TemporaryFolder m_folder;
    Session m_session;
};

using Numbers = std::vector<std::int64_t>;

}  // namespace

TEST_CASE("A session shows its video frame by frame, and the last one from its end on") {
    const VideoSession session(json::array());
    CHECK_EQ(session.NumbersSeen(12) == Numbers{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 9, 9}, true);
}

TEST_CASE("A video is stopped, sought, looped and let go by events") {
    const VideoSession session({{{"field", 2}, {"film", {{"play", false}}}},
                                {{"field", 4}, {"film", {{"frame", 8}, {"play", true}, {"loop", true}}}},
                                {{"field", 8}, {"container", "screen"}, {"film", {{"frame", 5}, {"play", false}}}}});
    CHECK_EQ(session.NumbersSeen(10) == Numbers{0, 1, 2, 2, 8, 9, 0, 1, 5, 5}, true);
}

TEST_CASE("A video that is not there, or a frame that it does not have, is refused with its place") {
    CHECK_EQ(VideoSession(json::array(), "gone.mkv").Refusal().starts_with("s.json: /containers/0/film: gone.mkv: "),
             true);
    CHECK_EQ(VideoSession(json::array({{{"field", 2}, {"film", {{"frame", 10}}}}})).Refusal(),
             "s.json: /events/0/film/frame: the film's last frame is 9, not 10");
}

}  // namespace kel
