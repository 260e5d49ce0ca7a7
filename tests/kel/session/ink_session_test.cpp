#include <doctest/doctest.h>

#include <cmath>

#include "kel/session/player.h"
#include "tests/cli/thrown.h"
#include "tests/kel/session/session_text.h"

// Edits of what was drawn, in sessions on the real module: each has to give the canvas of the session in which it was
// so from the start.

namespace kel {
namespace {

using cli::testing::Thrown;
using nlohmann::json;
using testing::PlainSession;
using testing::With;

json SessionOf(const json& events) {
    json session = PlainSession();
    session["events"] = events;
    session["fields"] = 120;
    return session;
}

// Plays a session on the real module.
class PlayedSession {
public:
    explicit PlayedSession(const json& session)
        : m_session(ParseSession(session.dump(), "s.json")),
          m_host(WindowSize{m_session.window.width, m_session.window.height}),
          m_player(m_session, m_host, CHALKPANE_MODULE) {}

    picture_io::Picture CanvasAfter(std::int64_t field) {
        while (m_player.NextField() <= field) m_player.PlayField(Player::Rendering::NotWanted);
        return m_host.ReadCanvas(m_player.OverlayContainer());
    }
    picture_io::Picture Canvas() { return CanvasAfter(m_session.fields - 1); }
    Host& TheHost() { return m_host; }

private:
    Session m_session;
    Host m_host;
    Player m_player;
};

picture_io::Picture CanvasOf(const json& events) { return PlayedSession(SessionOf(events)).Canvas(); }

// Four strokes: freehand, then one that is smoothed and gets an arrow, a ring that becomes an ellipse, and the eraser.
json FourStrokes() {
    json ring = json::array();
    for (int i = 0; i <= 24; ++i) ring.push_back({32 + 20 * std::cos(i * 0.2618), 32 + 16 * std::sin(i * 0.2618)});
    return {{{"field", 1}, {"set", {{"BrushColor", "#ff0000"}, {"ShapeDelay", 4}}}},
            {{"field", 3}, {"fields", 8}, {"stroke", {{5, 10}, {60, 14}}}},
            {{"field", 14}, {"set", {{"RecoShapes", true}, {"BrushColor", "#00ff00"}}}},
            {{"field", 16}, {"fields", 12}, {"stroke", {{8, 50}, {55, 55}}}},
            {{"field", 36}, {"fields", 24}, {"stroke", ring}},
            {{"field", 68}, {"set", {{"RecoShapes", false}, {"BrushType", "Erase"}, {"EraserWidth", 40}}}},
            {{"field", 70}, {"fields", 6}, {"stroke", {{32, 2}, {32, 62}}}}};
}

// The index of the k-th stroke among the events.
std::size_t IndexOfStroke(const json& events, int stroke) {
    std::size_t index = 0;
    for (;; ++index)
        if (events[index].contains("stroke") && --stroke == 0) return index;
}

json Without(json events, int stroke) {
    events.erase(IndexOfStroke(events, stroke));
    return events;
}

}  // namespace

TEST_CASE("a session in which a stroke is removed ends as the one without it") {
    for (int stroke = 1; stroke <= 4; ++stroke) {
        const picture_io::Picture without = CanvasOf(Without(FourStrokes(), stroke));
        CAPTURE(stroke);
        CHECK(CanvasOf(With(FourStrokes(), {{{"field", 100}, {"removeStroke", stroke}}})) == without);
        CHECK(CanvasOf(FourStrokes()) != without);
    }
}

TEST_CASE("a stroke that is removed between two others leaves the later one as it would have been") {
    CHECK(CanvasOf(With(FourStrokes(), {{{"field", 33}, {"removeStroke", 1}}})) == CanvasOf(Without(FourStrokes(), 1)));
}

TEST_CASE("a session in which a stroke is moved ends as the one in which it was drawn there") {
    for (int stroke = 1; stroke <= 4; ++stroke) {
        json there = FourStrokes();
        for (json& point : there[IndexOfStroke(there, stroke)]["stroke"]) {
            point[0] = point[0].get<double>() + 3;
            point[1] = point[1].get<double>() - 2;
        }
        CAPTURE(stroke);
        CHECK(CanvasOf(With(FourStrokes(), {{{"field", 100}, {"moveStroke", stroke}, {"by", {3, -2}}}})) ==
              CanvasOf(there));
    }
}

TEST_CASE("a session in which a stroke is recoloured ends as the one in which it had that colour") {
    const json blue = {{"BrushColor", "#0000ff"}};
    json first = FourStrokes();
    first[0]["set"]["BrushColor"] = "#0000ff";
    CHECK(CanvasOf(With(FourStrokes(), {{{"field", 100}, {"recolourStroke", 1}, {"parameters", blue}}})) ==
          CanvasOf(first));
    json second = FourStrokes();
    second[2]["set"]["BrushColor"] = "#0000ff";
    second.push_back({{"field", 35}, {"set", {{"BrushColor", "#00ff00"}}}});
    CHECK(CanvasOf(With(FourStrokes(), {{{"field", 100}, {"recolourStroke", 2}, {"parameters", blue}}})) ==
          CanvasOf(second));
}

TEST_CASE("undo goes beyond the module's own ring, and redo brings all of it back") {
    json events = {{{"field", 1}, {"set", {{"MaxUndos", 1}}}}};
    for (int i = 0; i < 4; ++i)
        events.push_back({{"field", 3 + 6 * i}, {"fields", 4}, {"stroke", {{5, 10 + 12 * i}, {60, 10 + 12 * i}}}});
    const picture_io::Picture all = CanvasOf(events);
    PlayedSession played(SessionOf(With(events, {{{"field", 50}, {"undo", 3}},
                                                 {{"field", 60}, {"redo", 1}},
                                                 {{"field", 70}, {"undo", 9}},
                                                 {{"field", 80}, {"redo", 9}}})));
    CHECK(played.CanvasAfter(55) == CanvasOf(json(events.begin(), events.begin() + 2)));
    CHECK(played.CanvasAfter(65) == CanvasOf(json(events.begin(), events.begin() + 3)));
    CHECK(played.CanvasAfter(75) == CanvasOf(json(events.begin(), events.begin() + 1)));
    CHECK(played.CanvasAfter(85) == all);
    CHECK(played.TheHost().WrongUses().empty());
}

TEST_CASE("more strokes than the module's ring has room for are all undone and all redone") {
    constexpr int strokes = 14;  // the ring has ten
    json events = json::array();
    for (int i = 0; i < strokes; ++i)
        events.push_back({{"field", 3 + 5 * i}, {"fields", 3}, {"stroke", {{5, 4 + 4 * i}, {60, 4 + 4 * i}}}});
    const picture_io::Picture all = CanvasOf(events);
    json undone = events;
    for (int i = 0; i < strokes; ++i) undone.push_back({{"field", 80 + i}, {"undo", 1}});
    undone.push_back({{"field", 100}, {"redo", strokes}});
    PlayedSession played(SessionOf(undone));
    for (int left = strokes; left > 0; --left) {
        CAPTURE(left);
        const int taken = strokes - left + 1;
        CHECK(played.CanvasAfter(79 + taken) == CanvasOf(json(events.begin(), events.begin() + left - 1)));
    }
    CHECK(played.CanvasAfter(99) == CanvasOf(json::array()));
    CHECK(played.CanvasAfter(100) == all);
}

TEST_CASE("undo takes back a button and an edit like a stroke, and what is drawn next ends redoing") {
    const json cleared = With(FourStrokes(), {{{"field", 90}, {"button", "Clear"}}});
    CHECK(CanvasOf(With(cleared, {{{"field", 100}, {"undo", 1}}})) == CanvasOf(FourStrokes()));
    const json removed = With(FourStrokes(), {{{"field", 90}, {"removeStroke", 2}}});
    CHECK(CanvasOf(With(removed, {{{"field", 100}, {"undo", 1}}})) == CanvasOf(FourStrokes()));
    const json drawnOn = {{{"field", 90}, {"undo", 1}},
                          {{"field", 92}, {"fields", 4}, {"stroke", {{10, 60}, {50, 60}}}},
                          {{"field", 105}, {"redo", 1}}};
    json wanted = Without(FourStrokes(), 4);
    wanted.push_back(drawnOn[1]);
    CHECK(CanvasOf(With(FourStrokes(), drawnOn)) == CanvasOf(wanted));
}

TEST_CASE("a stroke taken back while it is drawn goes on as nothing") {
    const json drawn = {{{"field", 3}, {"fields", 30}, {"stroke", {{5, 10}, {60, 14}}}}};
    const json before = {{{"field", 1}, {"set", {{"BrushWidth", 9}}}}};
    CHECK(CanvasOf(With(With(before, drawn), {{{"field", 15}, {"undo", 1}}})) == CanvasOf(before));
}

TEST_CASE("an edit of a stroke that was not drawn yet is refused with its place") {
    const auto refusal = [](const json& event) {
        return Thrown([&] { PlayedSession(SessionOf(With(FourStrokes(), json::array({event})))); });
    };
    CHECK_EQ(refusal({{"field", 100}, {"removeStroke", 5}}),
             "s.json: /events/7/removeStroke: there is no stroke 5 before field 100");
    CHECK_EQ(refusal({{"field", 36}, {"moveStroke", 3}, {"by", {1, 1}}}),
             "s.json: /events/7/moveStroke: there is no stroke 3 before field 36");
    CHECK_EQ(refusal({{"field", 100}, {"recolourStroke", 1}, {"parameters", {{"BrushColour", "#102030"}}}}),
             "s.json: /events/7/parameters/BrushColour: unknown parameter; did you mean "
             "\"BrushColor\"?");
    CHECK_EQ(refusal({{"field", 100}, {"undo", 0}}),
             "s.json: /events/7/undo: must be a whole number from 1 to 1000000, not 0");
}

}  // namespace kel
