#include "kel/session/player.h"

#include <doctest/doctest.h>

#include "module/abi/host_api.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/pixels.h"
#include "tests/kel/probe.h"
#include "tests/kel/session/session_text.h"

namespace kel {
namespace {

using cli::testing::Thrown;
using nlohmann::json;
using testing::Parse;
using testing::PlainSession;

using Track = std::vector<TimedPointerStep>;

json WithEvents(const json& events) {
    json session = PlainSession();
    session["events"] = events;
    return session;
}

Track TrackOf(const json& events) { return PointerTrack(Parse(WithEvents(events))); }

std::string TrackRefusal(const json& events) {
    return Thrown([&] { (void)TrackOf(events); });
}

// Plays a session on the probe module and writes down what it is told, by field: "3: press 10 20".
class ProbedPlay {
public:
    explicit ProbedPlay(const json& events, const std::filesystem::path& file = "s.json")
        : m_session(ParseSession(WithEvents(events).dump(), file)) {
        m_hooks.registration = testing::RegisterProbe;
        m_hooks.mouse = [this](bool pressed, std::int32_t x, std::int32_t y) {
            Note((pressed ? "press " : "release ") + std::to_string(x) + " " + std::to_string(y));
        };
        m_hooks.changed = [this](std::int32_t number) { Note("changed " + std::to_string(number)); };
        m_hooks.action = [this](std::int32_t number) { Note("action " + std::to_string(number)); };
        m_hooks.perField = [this] {
            std::int32_t x = 0;
            std::int32_t y = 0;
            _api__tessmar_query_mouse_pos(0, &x, &y);
            polled.emplace_back(x, y);
            if (!lookUp.empty())
                _api__get_image_size(_api__get_image_objectid(lookUp.c_str()), &found.first, &found.second);
        };
        testing::UseHooks(&m_hooks);
        m_host.emplace(WindowSize{64, 64});
        m_player.emplace(m_session, *m_host, PROBE_MODULE);
    }
    ~ProbedPlay() {
        m_host.reset();
        testing::UseHooks(nullptr);
    }
    ProbedPlay(const ProbedPlay&) = delete;
    ProbedPlay& operator=(const ProbedPlay&) = delete;
    ProbedPlay(ProbedPlay&&) = delete;
    ProbedPlay& operator=(ProbedPlay&&) = delete;

    void PlayAll() {
        while (!m_player->IsOver()) {
            for (const std::string& name : m_player->PlayField(Player::Rendering::NotWanted))
                saves.push_back(std::to_string(m_player->NextField() - 1) + ": " + name);
        }
    }

    std::vector<std::string> told;
    std::vector<std::string> saves;
    std::vector<std::pair<std::int32_t, std::int32_t>> polled;  // where the pointer is, field by field
    std::string lookUp;                                         // an image to look up in each field
    std::pair<std::int32_t, std::int32_t> found;                // and its size

private:
    void Note(const std::string& what) { told.push_back(std::to_string(m_player->NextField()) + ": " + what); }

    Session m_session;
    ProbeHooks m_hooks;
    std::optional<Host> m_host;
    std::optional<Player> m_player;
};

// The last picture and the canvas of a session played on the real module.
struct PlayedPictures {
    picture_io::Picture picture;
    picture_io::Picture canvas;
};
PlayedPictures Play(const Session& session, Player::Rendering wanted = Player::Rendering::NotWanted) {
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(wanted);
    return {host.ReadFrame(), host.ReadCanvas(player.OverlayContainer())};
}

std::string PlayerRefusal(const json& session, const std::filesystem::path& file = "s.json",
                          const SessionPermissions& permissions = {}) {
    return Thrown([&] {
        const Session parsed = ParseSession(session.dump(), file);
        Host host({64, 64});
        const Player player(parsed, host, CHALKPANE_MODULE, permissions);
    });
}

json WithParameters(const json& parameters) {
    json session = PlainSession();
    session["containers"][0]["plugin"]["parameters"] = parameters;
    return session;
}

}  // namespace

TEST_CASE("A stroke is a press, moves at even speed, and a release") {
    const Track track = TrackOf({{{"field", 3}, {"fields", 4}, {"stroke", {{10, 10}, {30, 10}, {30, 30}}}}});
    // 40 pixels in four fields.
    CHECK_EQ(track == Track{{3, {PointerKind::Press, 10, 10}},
                            {4, {PointerKind::Move, 20, 10}},
                            {5, {PointerKind::Move, 30, 10}},
                            {6, {PointerKind::Move, 30, 20}},
                            {7, {PointerKind::Release, 30, 30}}},
             true);
}

TEST_CASE("Positions are rounded to the nearest pixel") {
    const Track track = TrackOf({{{"field", 3}, {"fields", 2}, {"stroke", {{0, 0}, {5, -3}}}}});
    CHECK_EQ(track[1] == TimedPointerStep{4, {PointerKind::Move, 3, -2}, false}, true);  // 2.5 and -1.5, away from 0
}

TEST_CASE("What comes after a press or a release waits for the next field") {
    const json events = {{{"field", 5}, {"press", {1, 1}}},
                         {{"field", 5}, {"move", {2, 2}}},
                         {{"field", 5}, {"release", {3, 3}}},
                         {{"field", 5}, {"press", {4, 4}}},
                         {{"field", 6}, {"release", {5, 5}}}};
    // The move waits for 6 and gives way to the release there, which is in the same field.
    CHECK_EQ(TrackOf(events) == Track{{5, {PointerKind::Press, 1, 1}},
                                      {6, {PointerKind::Release, 3, 3}},
                                      {7, {PointerKind::Press, 4, 4}},
                                      {8, {PointerKind::Release, 5, 5}}},
             true);
}

TEST_CASE("Of several moves in a field the last one counts") {
    CHECK_EQ(TrackOf({{{"field", 5}, {"move", {1, 1}}}, {{"field", 5}, {"move", {2, 2}}}}) ==
                 Track{{5, {PointerKind::Move, 2, 2}}},
             true);
}

TEST_CASE("A stroke keeps the pointer for itself") {
    const json stroke = {{"field", 5}, {"fields", 3}, {"stroke", {{1, 1}, {2, 2}}}};
    CHECK_EQ(TrackRefusal({stroke, {{"field", 8}, {"move", {1, 1}}}}),
             "s.json: /events/1: the pointer is busy with the stroke /events/0 until field 8");
    CHECK_EQ(TrackRefusal({stroke, stroke}),
             "s.json: /events/1: the pointer is busy with the stroke /events/0 until field 8");
    CHECK_EQ(TrackRefusal({{{"field", 5}, {"release", {1, 1}}}, stroke}),
             "s.json: /events/1: the pointer is pressed or released in field 5 already");
    CHECK_EQ(TrackRefusal({stroke, {{"field", 9}, {"press", {1, 1}}}}), "nothing");
    CHECK_EQ(TrackRefusal({{{"field", 5}, {"move", {1, 1}}}, stroke}), "nothing");
}

TEST_CASE("Waiting past the end is refused") {
    CHECK_EQ(TrackRefusal({{{"field", 19}, {"press", {1, 1}}}, {{"field", 19}, {"release", {1, 1}}}}),
             "s.json: /events/1: has to wait for field 20, after the last one played");
}

TEST_CASE("Events happen in their own field") {
    ProbedPlay play(json::array({{{"field", 2}, {"press", {10, 20}}},
                                 {{"field", 4}, {"release", {11, 21}}},
                                 {{"field", 4}, {"set", {{"Count", 5}}}},
                                 {{"field", 6}, {"button", "Go"}},
                                 {{"field", 7}, {"save", "seven.png"}},
                                 {{"field", 19}, {"set", {{"Switch", false}}}}}));
    play.PlayAll();
    CHECK_EQ(play.told, std::vector<std::string>{"2: press 10 20", "4: release 11 21", "4: changed 2", "6: action 7",
                                                 "19: changed 1"});
    CHECK_EQ(play.saves, std::vector<std::string>{"7: seven.png"});
}

TEST_CASE("A field has one pointer callback at most, whatever the session crowds into it") {
    json events = json::array();
    for (int i = 0; i < 4; ++i) {
        events.push_back({{"field", 3}, {"press", {i, i}}});
        events.push_back({{"field", 3}, {"release", {i, i}}});
    }
    ProbedPlay play(events);
    play.PlayAll();
    REQUIRE_EQ(play.told.size(), 8);
    for (std::size_t i = 0; i < 8; ++i)
        CHECK_EQ(play.told[i], std::to_string(3 + i) + (i % 2 == 0 ? ": press " : ": release ") +
                                   std::to_string(i / 2) + " " + std::to_string(i / 2));
}

TEST_CASE("The pointer is where the stroke is, each time the module asks") {
    ProbedPlay play(json::array({{{"field", 1}, {"fields", 4}, {"stroke", {{10, 10}, {50, 10}}}}}));
    play.PlayAll();
    REQUIRE_EQ(play.polled.size(), 20);
    for (int field = 1; field <= 5; ++field)
        CHECK_EQ(play.polled[static_cast<std::size_t>(field)], std::pair(10 + (field - 1) * 10, 10));
    CHECK_EQ(play.polled[19], std::pair(50, 10));
}

TEST_CASE("A stroke is seen on the canvas along its path and nowhere else") {
    json session = WithParameters({{"BrushWidth", 30}, {"BrushColor", "#ff0000"}});
    session["events"] = {{{"field", 2}, {"fields", 10}, {"stroke", {{16, 32}, {48, 32}}}}};
    const PlayedPictures played = Play(Parse(session));
    // Window pixel 16 of 64 is canvas column 16 * 1023 / 64 = 255.75, 48 is 767.25; row 32 is 511.5.
    CHECK_LE(testing::Difference(played.canvas.At(512, 511), testing::red), 3);  // the densest that a dab gets
    // The middle of that window pixel is canvas row 520, eight pixels beside the middle of the soft pen.
    CHECK_LE(testing::Difference(played.picture.At(32, 32), testing::red), 8);
    CHECK_EQ(played.canvas.At(100, 511)[3], 0);
    CHECK_EQ(played.canvas.At(900, 511)[3], 0);
    CHECK_EQ(played.canvas.At(512, 400)[3], 0);
}

TEST_CASE("The same session twice gives the same pixels") {
    const Session session = ReadSession(KEL_SOURCE_FOLDER "/examples/shapes.json");
    const PlayedPictures first = Play(session);
    const PlayedPictures second = Play(session);
    CHECK_EQ(first.canvas == second.canvas, true);
    CHECK_EQ(first.picture == second.picture, true);
}

TEST_CASE("A field is drawn when its picture is wanted or saved, and the last one always") {
    json json = WithParameters({{"BrushWidth", 30}, {"BrushColor", "#ff0000"}});
    json["events"] = {{{"field", 2}, {"fields", 12}, {"stroke", {{16, 32}, {48, 32}}}},
                      {{"field", 8}, {"save", "a.png"}}};
    const Session session = Parse(json);
    Host host({64, 64});
    Player player(session, host, CHALKPANE_MODULE);
    // The stroke grows from field to field, so a frame that is drawn differs from the one drawn before.
    auto before = host.ReadFrame().rgba;
    for (std::int64_t field = 0; field < session.fields; ++field) {
        CAPTURE(field);
        (void)player.PlayField(field == 7 ? Player::Rendering::Wanted : Player::Rendering::NotWanted);
        const bool isDrawn = field == 7 || field == 8 || field == session.fields - 1;
        const auto now = host.ReadFrame().rgba;
        CHECK_EQ(now != before, isDrawn);
        before = now;
    }
}

TEST_CASE("Fields whose picture nobody wants change nothing in those that follow") {
    json json = WithParameters({{"BrushWidth", 9}, {"RecoShapes", true}, {"ShapeDelay", 3}});
    json["events"] = {{{"field", 2}, {"fields", 10}, {"stroke", {{16, 16}, {48, 20}}}}};
    const Session session = Parse(json);
    const PlayedPictures quick = Play(session, Player::Rendering::NotWanted);
    const PlayedPictures thorough = Play(session, Player::Rendering::Wanted);
    CHECK_EQ(quick.picture == thorough.picture, true);
    CHECK_EQ(quick.canvas == thorough.canvas, true);
}

TEST_CASE("Every kind of parameter takes its own kind of value") {
    CHECK_EQ(PlayerRefusal(WithParameters({{"Active", false},
                                           {"TexUnit", 2},
                                           {"Alpha", 50.5},
                                           {"BrushType", "Erase"},
                                           {"BrushImage", ""},
                                           {"BrushColor", "#ff000080"}})),
             "nothing");
    const auto refusal = [](const char* name, const json& value) {
        const std::string place = std::string("s.json: /containers/0/plugin/parameters/") + name + ": ";
        const std::string text = PlayerRefusal(WithParameters({{name, value}}));
        REQUIRE(text.starts_with(place));
        return text.substr(place.size());
    };
    CHECK_EQ(refusal("Active", 1), "must be true or false");
    CHECK_EQ(refusal("TexUnit", 1.5), "must be a whole number");
    CHECK_EQ(refusal("TexUnit", "1"), "must be a whole number");
    CHECK_EQ(refusal("TexUnit", 3), "must be from 0 to 2, not 3");
    CHECK_EQ(refusal("TexUnit", 5e9), "must be from 0 to 2, not 5000000000");
    CHECK_EQ(refusal("Alpha", 100.0000001), "must be from 0 to 100, not 100.0000001");
    CHECK_EQ(refusal("Alpha", true), "must be a number");
    CHECK_EQ(refusal("BrushType", "Erasr"), "has no option \"Erasr\"; did you mean \"Erase\"?");
    CHECK_EQ(refusal("BrushType", 1), "must be the text of an option");
    CHECK_EQ(refusal("BrushColor", "red"), "must be a color, \"#rrggbb\" or \"#rrggbbaa\"");
    CHECK_EQ(refusal("BrushColor", "#12345"), "must be a color, \"#rrggbb\" or \"#rrggbbaa\"");
    CHECK_EQ(refusal("BrushColor", "#12 456"), "must be a color, \"#rrggbb\" or \"#rrggbbaa\"");
    CHECK_EQ(refusal("BrushImage", false), "must be the path of a picture, or \"\" for none");
    CHECK_EQ(refusal("BrushWith", 5), "unknown parameter; did you mean \"BrushWidth\"?");
}

TEST_CASE("A later event is checked as well, before anything is played") {
    json session = PlainSession();
    session["events"] = {{{"field", 9}, {"set", {{"BrushWidth", 31}}}}};
    CHECK_EQ(PlayerRefusal(session), "s.json: /events/0/set/BrushWidth: must be from 1 to 30, not 31");
    session["events"] = {{{"field", 9}, {"button", "Unod"}}};
    CHECK_EQ(PlayerRefusal(session), "s.json: /events/0/button: there is no button \"Unod\"; did you mean \"Undo\"?");
}

TEST_CASE("A picture of the session that cannot be read is refused with place and file") {
    const cli::testing::TemporaryFolder folder;
    const std::string file = (folder / "s.json").string();
    json session = PlainSession();
    session["containers"][0]["picture"] = "none.png";
    CHECK(
        PlayerRefusal(session, file).starts_with(file + ": /containers/0/picture: " + (folder / "none.png").string()));
    cli::testing::WriteText(folder / "none.png", "no picture at all");
    CHECK(
        PlayerRefusal(session, file).starts_with(file + ": /containers/0/picture: " + (folder / "none.png").string()));
    session = WithParameters({{"BrushImage", "none.png"}});
    CHECK(PlayerRefusal(session, file).starts_with(file + ": /containers/0/plugin/parameters/BrushImage: "));
}

TEST_CASE("A brush image is found beside the session, by the name that the session gives it") {
    const cli::testing::TemporaryFolder folder;
    picture_io::WritePicture(testing::Plain(40, 30, testing::green), folder / "green.png");
    ProbedPlay play(json::array({{{"field", 3}, {"set", {{"Name", "green.png"}}}}}), folder / "s.json");
    play.lookUp = "green.png";
    play.PlayAll();
    CHECK_EQ(play.found, std::pair(40, 30));
}

TEST_CASE("A module that a session names is looked for beside it, where that is allowed") {
    SessionPermissions permissions;
    permissions.allowModules = true;
    json session = PlainSession();
    session["containers"][0]["plugin"]["module"] = "none.qop";
    CHECK_EQ(PlayerRefusal(session, "shows/s.json", permissions),
             "shows/s.json: /containers/0/plugin/module: shows/none.qop: there is no such module");
    session["containers"][0]["plugin"]["module"] = CHALKPANE_MODULE;
    CHECK_EQ(PlayerRefusal(session, "s.json", permissions), "nothing");
    CHECK_EQ(PlayerRefusal(session),
             "s.json: /containers/0/plugin/module: a module is a program, and sessions do not "
             "choose programs: --module " CHALKPANE_MODULE " allows this one, --allow-modules any");
}

}  // namespace kel
