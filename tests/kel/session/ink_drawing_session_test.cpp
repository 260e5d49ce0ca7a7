#include <doctest/doctest.h>

#include <cmath>
#include <cstring>

#include "kel/session/player.h"
#include "telestrator/journal/journal_file.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/probe.h"
#include "tests/kel/session/session_text.h"

// Drawings as a whole, in sessions on the real module: kept and recalled, faded, and journalled.

namespace kel {
namespace {

using cli::testing::TemporaryFolder;
using cli::testing::Thrown;
using nlohmann::json;
using testing::PlainSession;
using testing::With;

// Plays a session field by field.
class Played {
public:
    explicit Played(const json& events)
        : m_session(ParseSession(WithEvents(events).dump(), "s.json")),
          m_host(WindowSize{m_session.window.width, m_session.window.height}),
          m_player(m_session, m_host, CHALKPANE_MODULE) {}

    picture_io::Picture CanvasAfter(std::int64_t field) {
        PlayTo(field);
        return m_host.ReadPremultipliedCanvas(m_player.OverlayContainer());
    }
    void PlayTo(std::int64_t field) {
        while (m_player.NextField() <= field) m_player.PlayField(Player::Rendering::Wanted);
    }
    Host& TheHost() { return m_host; }
    Player& ThePlayer() { return m_player; }

private:
    static json WithEvents(const json& events) {
        json session = PlainSession();
        session["events"] = events;
        session["fields"] = 200;
        return session;
    }

    Session m_session;
    Host m_host;
    Player m_player;
};

json Stroke(int field, double y, int fields = 6) {
    return {{"field", field}, {"fields", fields}, {"stroke", {{6, y}, {58, y + 3}}}};
}

// What a factor makes of each byte, rounded to the nearest.
picture_io::Picture Times(picture_io::Picture picture, double factor) {
    for (std::uint8_t& byte : picture.rgba) byte = static_cast<std::uint8_t>(static_cast<int>(byte * factor + 0.5));
    return picture;
}

picture_io::Picture Blank() { return {1024, 1024}; }

}  // namespace

TEST_CASE("all ink fades by one factor after the wait, is gone, and undo brings it back") {
    // 50 fields a second: the wait is 10 fields. The release of the second stroke begins it anew, in field 20, which is
    // the first of them; 29 is the last.
    const json events = {{{"field", 1}, {"fade", {{"after", 0.2}, {"over", 8}}}},
                         Stroke(4, 10),
                         Stroke(14, 40),
                         {{"field", 60}, {"undo", 1}}};
    Played played(events);
    const picture_io::Picture whole = played.CanvasAfter(20);
    CHECK_FALSE(whole == Blank());
    CHECK(played.CanvasAfter(29) == whole);
    for (int field = 30; field < 37; ++field) {
        CAPTURE(field);
        CHECK(played.CanvasAfter(field) == Times(whole, 1.0 - (field - 29) / 8.0));
    }
    CHECK(played.CanvasAfter(37) == Blank());
    CHECK(played.CanvasAfter(59) == Blank());
    CHECK(played.CanvasAfter(60) == whole);
}

TEST_CASE("fading ink fades in the picture and in the strokes alone too") {
    const json events = {{{"field", 1}, {"fade", {{"after", 0.2}, {"over", 8}}}}, Stroke(4, 10)};
    Played faded(events);
    Played whole(json::array({Stroke(4, 10)}));
    faded.PlayTo(23);
    whole.PlayTo(23);
    const picture_io::Picture strokes = whole.TheHost().ReadPremultipliedOverlay();
    const picture_io::Picture halfStrokes = faded.TheHost().ReadPremultipliedOverlay();
    const picture_io::Picture canvas = faded.CanvasAfter(23);
    // The wait lasts from field 10 to 19, so 23 is the fourth of the 8 fields: half of the ink, but for the rounding of
    // the canvas and of the picture.
    const picture_io::Picture half = Times(strokes, 0.5);
    int furthest = 0;
    for (std::size_t i = 0; i < half.rgba.size(); ++i)
        furthest = std::max(furthest, std::abs(int{half.rgba[i]} - int{halfStrokes.rgba[i]}));
    CHECK_LE(furthest, 3);
    CHECK(canvas == Times(whole.CanvasAfter(23), 0.5));
    CHECK_FALSE(faded.TheHost().ReadFrame() == whole.TheHost().ReadFrame());
}

TEST_CASE("what is drawn while ink fades keeps all of it, and fading can be switched off") {
    const json events = {{{"field", 1}, {"fade", {{"after", 0.2}, {"over", 20}}}},
                         Stroke(4, 10),
                         Stroke(25, 40),
                         {{"field", 40}, {"fade", false}}};
    Played played(events);
    const picture_io::Picture both = Played(json::array({Stroke(4, 10), Stroke(25, 40)})).CanvasAfter(31);
    const picture_io::Picture fading = played.CanvasAfter(24);
    CHECK_FALSE(played.CanvasAfter(25) == fading);
    CHECK(played.CanvasAfter(31) == both);
    CHECK(played.CanvasAfter(150) == both);
}

TEST_CASE("a drawing that was kept is recalled over what is there, or in its place, as one edit") {
    const json kept = {Stroke(4, 10), Stroke(14, 40), {{"field", 25}, {"keep", 2}}};
    const json cleared = With(kept, {{{"field", 30}, {"button", "Clear"}}, Stroke(34, 25)});
    const picture_io::Picture first = Played(kept).CanvasAfter(60);
    const picture_io::Picture third = Played(json::array({Stroke(34, 25)})).CanvasAfter(60);
    // The strokes that are recalled come after the third.
    const picture_io::Picture all =
        Played(json::array({Stroke(4, 25), Stroke(14, 10), Stroke(24, 40)})).CanvasAfter(60);

    Played over(
        With(cleared, {{{"field", 50}, {"recall", 2}}, {{"field", 60}, {"undo", 1}}, {{"field", 70}, {"redo", 1}}}));
    CHECK(over.CanvasAfter(49) == third);
    CHECK(over.CanvasAfter(50) == all);
    CHECK(over.CanvasAfter(60) == third);
    CHECK(over.CanvasAfter(70) == all);
    CHECK(Played(With(cleared, json::array({{{"field", 50}, {"recall", 2}, {"inPlace", true}}}))).CanvasAfter(50) ==
          first);
}

TEST_CASE("an empty slot recalls nothing, and what stood before a recall can still be edited") {
    CHECK(Played(json::array({Stroke(4, 10), {{"field", 20}, {"recall", 9}}})).CanvasAfter(30) ==
          Played(json::array({Stroke(4, 10)})).CanvasAfter(30));
    const json recalled = {Stroke(4, 10),
                           {{"field", 15}, {"keep", 1}},
                           Stroke(20, 40),
                           {{"field", 30}, {"recall", 1}},
                           Stroke(40, 50),
                           {{"field", 60}, {"removeStroke", 2}},
                           {{"field", 70}, {"undo", 3}}};
    Played played(recalled);
    CHECK(played.CanvasAfter(60) ==
          Played(json::array({Stroke(4, 10), Stroke(14, 10), Stroke(24, 50)})).CanvasAfter(60));
    // The removal, the third stroke and the recall are undone.
    CHECK(played.CanvasAfter(70) == Played(json::array({Stroke(4, 10), Stroke(20, 40)})).CanvasAfter(70));
}

TEST_CASE("a drawing lies at the same place of the container, whatever it was drawn on") {
    Played drawn(json::array({Stroke(4, 10)}));
    drawn.PlayTo(20);
    const auto strokes = drawn.ThePlayer().Containers()[0].ink->Strokes();
    REQUIRE_EQ(strokes.size(), 1);
    json other = PlainSession();
    other["window"] = {{"width", 128}, {"height", 96}};
    other["camera"]["position"] = {20, 30, 150};
    other["containers"][0]["size"] = {60, 80};
    other["fields"] = 20;
    const Session session = ParseSession(other.dump(), "s.json");
    Host host({128, 96});
    Player player(session, host, CHALKPANE_MODULE);
    player.PlayField(Player::Rendering::Wanted);
    InkEdit recall;
    recall.kind = InkEditKind::Recall;
    recall.number = 0;
    recall.strokes = strokes;
    CHECK(player.EditInk(0, recall));
    player.PlayField(Player::Rendering::Wanted);
    CHECK(host.ReadPremultipliedCanvas(player.OverlayContainer()) == drawn.CanvasAfter(20));
}

TEST_CASE("strokes that a session brings along are data, and are refused in one line") {
    const auto refusal = [](const char* line) {
        return Thrown([&] { Played(json::array({{{"field", 5}, {"recallStrokes", json::array({line})}}})); });
    };
    CHECK_EQ(refusal("0 undo"), "s.json: /events/0/recallStrokes: line 2: there is nothing to undo");
    CHECK(refusal("0 stroke 1 circle").starts_with("s.json: /events/0/recallStrokes: line 2: "));
}

TEST_CASE("strokes that leave nothing on the canvas recall nothing, whatever a slot holds") {
    const json kept = {Stroke(4, 10), {{"field", 20}, {"keep", 1}}, {{"field", 25}, {"button", "Clear"}}};
    Played played(With(kept, json::array({{{"field", 30}, {"recallStrokes", json::array({"0 clear"})}}})));
    CHECK(played.CanvasAfter(40) == Blank());
}

TEST_CASE("what only a telestrator can do is refused elsewhere, with the word that the session has for it") {
    ProbeHooks hooks;
    hooks.registration = testing::RegisterProbe;
    testing::UseHooks(&hooks);
    const auto refusal = [](const json& event) {
        json session = PlainSession();
        session["events"] = json::array({event});
        return Thrown([&] {
            const Session parsed = ParseSession(session.dump(), "s.json");
            Host host({64, 64});
            const Player player(parsed, host, PROBE_MODULE);
        });
    };
    const std::string reason = ": the container's plug-in is no telestrator";
    CHECK_EQ(refusal({{"field", 5}, {"recallStrokes", {"0 clear"}}}), "s.json: /events/0/recallStrokes" + reason);
    CHECK_EQ(refusal({{"field", 5}, {"recall", 1}}), "s.json: /events/0/recall" + reason);
    CHECK_EQ(refusal({{"field", 5}, {"keep", 1}}), "s.json: /events/0/keep" + reason);
    CHECK_EQ(refusal({{"field", 5}, {"fade", false}}), "s.json: /events/0/fade" + reason);
    testing::UseHooks(nullptr);
}

TEST_CASE("a journal that is written beside a session leaves the canvas of the session, edits and all") {
    const TemporaryFolder folder;
    const json events = {Stroke(4, 10),
                         {{"field", 12}, {"set", {{"RecoShapes", true}, {"ShapeDelay", 4}}}},
                         Stroke(14, 40, 12),
                         {{"field", 40}, {"undo", 1}},
                         Stroke(50, 20),
                         {{"field", 70}, {"redo", 1}},
                         {{"field", 75}, {"moveStroke", 1}, {"by", {4, 6}}},
                         {{"field", 80}, {"removeStroke", 3}},
                         {{"field", 90}, {"button", "Undo"}},
                         Stroke(100, 30, 10)};
    Played played(events);
    played.ThePlayer().Containers()[0].ink->WriteJournal(folder / "run.journal");
    const picture_io::Picture canvas = played.CanvasAfter(150);
    played.ThePlayer().Containers()[0].ink->Follow();
    const chalkpane::ReadJournal read = chalkpane::ReadJournalFile(folder / "run.journal");
    REQUIRE_EQ(read.error, "");
    chalkpane::Image image = chalkpane::NewInkCanvas();
    chalkpane::InkDrawing drawing(image);
    REQUIRE_EQ(chalkpane::Follow(drawing, read.records), "");
    // The canvas begins with its topmost row in memory, which is the texture's first and so the picture's last.
    const picture_io::Picture inMemory = picture_io::Flipped(canvas);
    CHECK(std::memcmp(image.Address(0, 1023), inMemory.rgba.data(), inMemory.rgba.size()) == 0);
}

}  // namespace kel
