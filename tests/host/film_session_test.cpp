#include <doctest/doctest.h>

#include "host/player.h"
#include "tests/film/counted_film.h"
#include "tests/host/session_text.h"
#include "tests/shared/temporary_folder.h"
#include "tests/shared/thrown.h"

namespace kel {
namespace {

using nlohmann::json;
using shared::testing::TemporaryFolder;
using shared::testing::Thrown;

// A film of ten frames, one a field, that fills the window.
class FilmSession {
public:
    explicit FilmSession(const json& events, const std::string& film = "counted.mkv") {
        testing::WriteCountedFilm(m_folder / "counted.mkv", 10, 64, 64, 50);
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
            (void)player.PlayField(Player::Picture::Wanted);
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

TEST_CASE("A session shows its film frame by frame, and the last one from its end on") {
    const FilmSession session(json::array());
    CHECK_EQ(session.NumbersSeen(12) == Numbers{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 9, 9}, true);
}

TEST_CASE("A film is stopped, sought, looped and let go by events") {
    const FilmSession session({{{"field", 2}, {"film", {{"play", false}}}},
                               {{"field", 4}, {"film", {{"frame", 8}, {"play", true}, {"loop", true}}}},
                               {{"field", 8}, {"container", "screen"}, {"film", {{"frame", 5}, {"play", false}}}}});
    CHECK_EQ(session.NumbersSeen(10) == Numbers{0, 1, 2, 2, 8, 9, 0, 1, 5, 5}, true);
}

TEST_CASE("A film that is not there, or a frame that it does not have, is refused with its place") {
    CHECK_EQ(FilmSession(json::array(), "gone.mkv").Refusal().starts_with("s.json: /containers/0/film: gone.mkv: "),
             true);
    CHECK_EQ(FilmSession(json::array({{{"field", 2}, {"film", {{"frame", 10}}}}})).Refusal(),
             "s.json: /events/0/film/frame: the film's last frame is 9, not 10");
}

}  // namespace kel
