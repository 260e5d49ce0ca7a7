#include <doctest/doctest.h>

#include "kel/session/session.h"
#include "kel/session/session_curve.h"
#include "picture_io/picture_format.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/thrown.h"
#include "tests/kel/session/session_text.h"

namespace kel {
namespace {

using cli::testing::Thrown;
using nlohmann::json;
using testing::CompleteSession;
using testing::Parse;

std::string Refusal(const std::string& text) {
    return Thrown([&] { (void)ParseSession(text, "s.json"); });
}

// What the parser says to the complete session with the value at `pointer` replaced.
std::string RefusalWith(const char* pointer, const json& value) {
    json session = CompleteSession();
    session[json::json_pointer(pointer)] = value;
    return Refusal(session.dump());
}

// And with the member at `pointer` taken out.
std::string RefusalWithout(const char* parent, const char* key) {
    json session = CompleteSession();
    session[json::json_pointer(parent)].erase(key);
    return Refusal(session.dump());
}

double Distance(const SessionPoint& from, const SessionPoint& to) { return std::hypot(to.x - from.x, to.y - from.y); }

}  // namespace

TEST_CASE("A complete session comes out as it was written") {
    const Session session = Parse(CompleteSession());
    CHECK_EQ(session.window.width, 100);
    CHECK_EQ(session.window.height, 80);
    CHECK_EQ(session.fieldsPerSecond, 25.0);
    CHECK_EQ(session.fields, 40);
    CHECK_EQ(session.camera.position, SessionVector{0, 0, 100});
    CHECK_EQ(session.camera.fieldOfView, 40.0);
    REQUIRE_EQ(session.containers.size(), 3);
    CHECK_FALSE(session.containers[0].plugin.has_value());
    const SessionContainer& front = session.containers[1];
    CHECK_EQ(front.name, "front");
    CHECK_EQ(front.size, std::array<double, 2>{50, 40});
    CHECK_EQ(front.position, SessionVector{1, 2, 3});
    CHECK_EQ(front.rotation, SessionVector{10, 20, 30});
    CHECK_EQ(front.scale, SessionVector{1, 2, 1});
    CHECK_EQ(front.picture, "front.png");
    REQUIRE(front.plugin.has_value());
    CHECK_EQ(front.plugin->module, "other.qop");
    REQUIRE_EQ(front.plugin->parameters.size(), 4);
    CHECK_EQ(session.containers[2].video, "match.mp4");
    REQUIRE_EQ(session.events.size(), 18);
    CHECK_EQ(std::get<PointerEvent>(session.events[0].what).at.x, 10.0);
    const auto& stroke = std::get<StrokeEvent>(session.events[3].what);
    CHECK_EQ(stroke.path.size(), 3);
    CHECK(stroke.curve);
    CHECK_EQ(session.events[3].LastField(), 9);
    CHECK_EQ(std::get<SetEvent>(session.events[4].what).container, 1);
    CHECK_EQ(std::get<ButtonEvent>(session.events[5].what).name, "Clear");
    CHECK_EQ(std::get<SaveEvent>(session.events[6].what).name, "eight.png");
    CHECK(std::get<InkEvent>(session.events[8].what).kind == InkEvent::Kind::Undo);
    CHECK_EQ(std::get<InkEvent>(session.events[8].what).number, 2);
    const auto& moved = std::get<InkEvent>(session.events[11].what);
    CHECK(moved.kind == InkEvent::Kind::Move);
    CHECK_EQ(moved.by.y, -4.0);
    CHECK_EQ(moved.container, 1);
    CHECK_EQ(std::get<InkEvent>(session.events[12].what).values[0].name, "Color");
    const auto& video = std::get<VideoEvent>(session.events[7].what);
    CHECK_EQ(video.container, 2);
    CHECK_EQ(video.change.frame, 12);
    CHECK_EQ(video.change.play, true);
    CHECK_EQ(video.change.loop, false);
}

TEST_CASE("A container shows a picture or a video, and a video's event needs one") {
    CHECK_EQ(RefusalWith("/containers/1/film", "f.mp4"),
             "s.json: /containers/1/film: the container has a picture already");
    CHECK_EQ(RefusalWith("/events/7/container", "front"),
             "s.json: /events/7/container: the container \"front\" has no film");
    CHECK_EQ(RefusalWith("/events/7/container", "scren"),
             "s.json: /events/7/container: there is no container \"scren\"; did you mean \"screen\"?");
    CHECK_EQ(RefusalWith("/events/7/film", json::object()),
             "s.json: /events/7/film: changes nothing; it needs one of \"frame\", \"play\", \"loop\", \"speed\", "
             "\"in\", \"out\"");
    CHECK_EQ(RefusalWith("/events/7/film/frame", -1),
             "s.json: /events/7/film/frame: must be a whole number from 0 to 9999999, not -1");
}

TEST_CASE("Only window, camera and containers must be there") {
    json session = CompleteSession();
    for (const char* key : {"$schema", "fieldsPerSecond", "events", "fields"}) session.erase(key);
    session["camera"].erase("fieldOfView");
    const Session parsed = Parse(session);
    CHECK_EQ(parsed.fieldsPerSecond, 50.0);
    CHECK_EQ(parsed.camera.fieldOfView, 40.0);
    CHECK_EQ(parsed.containers[0].scale, SessionVector{1, 1, 1});
    // Field 0 and two seconds of 50 fields.
    CHECK_EQ(parsed.fields, 101);
}

TEST_CASE("Without a length a session lasts two seconds longer than its last event") {
    json session = CompleteSession();
    session.erase("fields");
    session["events"].push_back({{"field", 100}, {"fields", 20}, {"stroke", {{1, 1}, {2, 2}}}});
    // The stroke's release in field 120, which makes 121 fields, and two seconds of 25.
    CHECK_EQ(Parse(session).fields, 171);
}

TEST_CASE("Events are played by their fields, those of one field in the order of the file") {
    json session = CompleteSession();
    session["events"] = json::array(
        {{{"field", 9}, {"save", "a.png"}}, {{"field", 3}, {"save", "b.png"}}, {{"field", 9}, {"save", "c.png"}}});
    const Session parsed = Parse(session);
    CHECK_EQ(parsed.events[0].place, "/events/1");
    CHECK_EQ(parsed.events[1].place, "/events/0");
    CHECK_EQ(parsed.events[2].place, "/events/2");
}

TEST_CASE("Broken JSON is refused with line and column") {
    CHECK_EQ(Refusal("{\n  \"window\": }"),
             "s.json: line 2, column 13: syntax error while parsing value - unexpected '}'; expected '[', '{', or a "
             "literal");
    CHECK(Refusal("").starts_with("s.json: line 1, column 1: syntax error"));
    CHECK(Refusal("{} x").starts_with("s.json: line 1, column 4: syntax error"));
    CHECK(Refusal("{\"a\": \"\xff\"}").starts_with("s.json: line 1, column 8: syntax error"));
}

TEST_CASE("What JSON lets pass and no session means is refused with its place") {
    CHECK_EQ(Refusal(R"({"camera": {"target": 1, "target": 2}})"), "s.json: /camera/target: the key stands twice");
    CHECK_EQ(Refusal(R"({"events": [0, [1e999]]})"), "s.json: /events/1/0: the number is too large");
    CHECK_EQ(Refusal("[[[[" + std::string(100000, '[')).substr(0, 12), "s.json: /0/0");
    CHECK_EQ(Refusal("[]"), "s.json: /: must be an object, not a list");
}

TEST_CASE("An unknown key is refused with the nearest one") {
    CHECK_EQ(RefusalWith("/camera/fieldOfVeiw", 40),
             "s.json: /camera/fieldOfVeiw: unknown key; did you mean \"fieldOfView\"?");
    CHECK_EQ(RefusalWith("/windows", 40), "s.json: /windows: unknown key; did you mean \"window\"?");
    CHECK_EQ(RefusalWith("/events/0/feild", 1), "s.json: /events/0/feild: unknown key; did you mean \"field\"?");
    CHECK_EQ(RefusalWith("/events/0", {{"field", 1}, {"pres", {1, 1}}}),
             "s.json: /events/0/pres: unknown key; did you mean \"press\"?");
    CHECK_EQ(RefusalWith("/window/a~1b~0c", 1),
             "s.json: /window/a~1b~0c: unknown key; there are \"width\", \"height\"");
}

TEST_CASE("A missing key is refused at the object that lacks it") {
    CHECK_EQ(RefusalWithout("", "camera"), "s.json: /: \"camera\" is missing");
    CHECK_EQ(RefusalWithout("/window", "height"), "s.json: /window: \"height\" is missing");
    CHECK_EQ(RefusalWithout("/containers/1", "size"), "s.json: /containers/1: \"size\" is missing");
    CHECK_EQ(RefusalWithout("/events/3", "fields"), "s.json: /events/3: \"fields\" is missing");
    CHECK_EQ(RefusalWithout("/events/0", "press"),
             "s.json: /events/0: the event does nothing; it needs one of \"press\", \"move\", \"release\", \"stroke\", "
             "\"set\", \"button\", \"film\", \"undo\", \"redo\", \"removeStroke\", \"moveStroke\", "
             "\"recolourStroke\", \"keep\", \"recall\", \"recallStrokes\", \"fade\", \"save\"");
}

TEST_CASE("A value of the wrong type or beyond its limits is refused with what was wanted") {
    CHECK_EQ(RefusalWith("/window/width", "wide"),
             "s.json: /window/width: must be a whole number from 1 to 8192, not the text \"wide\"");
    CHECK_EQ(RefusalWith("/window/width", 0), "s.json: /window/width: must be a whole number from 1 to 8192, not 0");
    CHECK_EQ(RefusalWith("/window/width", 1.5),
             "s.json: /window/width: must be a whole number from 1 to 8192, not 1.5");
    CHECK_EQ(RefusalWith("/camera/fieldOfView", 171),
             "s.json: /camera/fieldOfView: must be a number from 1 to 170, not 171");
    CHECK_EQ(RefusalWith("/containers/1/size", {1, 2, 3}), "s.json: /containers/1/size: must have 2 numbers");
    CHECK_EQ(RefusalWith("/containers/1/size/1", -1),
             "s.json: /containers/1/size/1: must be a number from 0 to 1e+06, not -1");
    CHECK_EQ(RefusalWith("/containers", json::array()), "s.json: /containers: must have at least 1 elements");
    CHECK_EQ(RefusalWith("/containers/1/name", 7), "s.json: /containers/1/name: must be a text, not 7");
    CHECK_EQ(RefusalWith("/containers/1/name", "a\nb"), "s.json: /containers/1/name: must not hold control characters");
    CHECK_EQ(RefusalWith("/events/3/curve", 1), "s.json: /events/3/curve: must be true or false, not 1");
    CHECK_EQ(RefusalWith("/events/4/set/Width", json::array()),
             "s.json: /events/4/set/Width: must be true, false, a number or a text");
    CHECK_EQ(RefusalWith("/events/0/release", {1, 1}),
             "s.json: /events/0: an event does one thing, not both \"press\" and \"release\"");
}

TEST_CASE("A whole number may be written with a decimal point") {
    json session = CompleteSession();
    session["window"]["width"] = 640.0;
    CHECK_EQ(Parse(session).window.width, 640);
}

TEST_CASE("What contradicts another part of the session is refused") {
    CHECK_EQ(RefusalWith("/camera/target", {0, 0, 100}),
             "s.json: /camera/target: must be another point than the camera's position");
    CHECK_EQ(RefusalWith("/containers/0/name", "front"), "s.json: /containers/1/name: another container has this name");
    CHECK_EQ(RefusalWith("/events/4/container", "frnt"),
             "s.json: /events/4/container: there is no container \"frnt\"; did you mean \"front\"?");
    CHECK_EQ(RefusalWith("/events/4/container", "back"),
             "s.json: /events/4/container: the container \"back\" has no plug-in");
    CHECK_EQ(RefusalWith("/fields", 9), "s.json: /events/3: ends in field 9, after the last one played, 8");
    CHECK_EQ(RefusalWith("/events/3/field", 999997), "s.json: /events/3: ends after field 999999");
}

TEST_CASE("An event needs no container where only one has a plug-in") {
    json session = CompleteSession();
    session["events"][4].erase("container");
    CHECK_EQ(std::get<SetEvent>(Parse(session).events[4].what).container, 1);

    session["containers"][0]["plugin"] = json::object();
    CHECK_EQ(Refusal(session.dump()),
             "s.json: /events/4/set: several containers have a plug-in: say which one with \"container\"");
    for (json& container : session["containers"]) container.erase("plugin");
    CHECK_EQ(Refusal(session.dump()), "s.json: /events/4/set: no container has a plug-in");
}

TEST_CASE("A saved picture has a name without a folder") {
    CHECK_EQ(RefusalWith("/events/6/save", "../eight.png"),
             "s.json: /events/6/save: must be a file name without a folder; `kel play --saves` says where to");
    CHECK_EQ(RefusalWith("/events/6/save", "eight.txt"),
             "s.json: /events/6/save: must be the name of a picture; " + picture_io::EndingsRule());
    CHECK_EQ(RefusalWith("/events/6/save", ".png"),
             "s.json: /events/6/save: must be the name of a picture; " + picture_io::EndingsRule());
}

TEST_CASE("A file that cannot be read is refused with its name and the reason") {
    const cli::testing::TemporaryFolder folder;
    const auto refusal = [](const std::filesystem::path& file) { return Thrown([&] { (void)ReadSession(file); }); };
    CHECK_EQ(refusal(folder / "none.json"),
             (folder / "none.json").string() + ": cannot be read: No such file or directory");
    CHECK_EQ(refusal(folder.Path()), folder.Path().string() + ": is a folder");
    cli::testing::WriteText(folder / "big.json", std::string((64U << 20U) + 1, ' '));
    CHECK_EQ(refusal(folder / "big.json"), (folder / "big.json").string() + ": is larger than 64 MiB");
}

TEST_CASE("Paths start at the session's folder") {
    Session session;
    session.file = "shows/one.json";
    CHECK_EQ(session.Resolve("pitch.png"), "shows/pitch.png");
    CHECK_EQ(session.Resolve("/tmp/pitch.png"), "/tmp/pitch.png");
    session.file = "one.json";
    CHECK_EQ(session.Resolve("pitch.png"), "pitch.png");
}

TEST_CASE("A curve goes through its points, ends where they end, and bends between them") {
    const std::vector<SessionPoint> corner = {{0, 0}, {100, 0}, {100, 100}};
    const auto curve = CurveThrough(corner);
    REQUIRE_EQ(curve.size(), 33);  // 16 steps for each of two pieces
    CHECK_EQ(Distance(curve[0], corner[0]), 0.0);
    CHECK_EQ(Distance(curve[16], corner[1]), 0.0);
    CHECK_EQ(Distance(curve[32], corner[2]), 0.0);
    // Half way of the first piece, between (0,0), (0,0), (100,0), (100,100): x = (9 (b + c) - a - d) / 16 = 50, and
    // y = -100 / 16.
    CHECK_EQ(curve[8].x, 50.0);
    CHECK_EQ(curve[8].y, -6.25);
}

TEST_CASE("A closed curve has no corner where it closes") {
    const auto curve = CurveThrough({{0, 0}, {100, 0}, {100, 100}, {0, 100}, {0, 0}});
    const auto& last = curve[curve.size() - 2];
    // By symmetry the curve arrives at (0, 0) as it leaves: mirrored in the diagonal.
    CHECK_EQ(last.x, doctest::Approx(curve[1].y));
    CHECK_EQ(last.y, doctest::Approx(curve[1].x));
}

TEST_CASE("Places are spread evenly over the length of a path") {
    // A length of 30 + 10 in four steps of ten.
    const auto places = SpreadAlong({{0, 0}, {30, 0}, {30, 10}}, 4);
    REQUIRE_EQ(places.size(), 5);
    CHECK_EQ(places[1].x, 10.0);
    CHECK_EQ(places[3].x, 30.0);
    CHECK_EQ(places[3].y, 0.0);
    CHECK_EQ(places[4].y, 10.0);
}

TEST_CASE("A path without a length stays where it is") {
    for (const auto& place : SpreadAlong({{7, 8}, {7, 8}}, 3)) CHECK_EQ(Distance(place, {7, 8}), 0.0);
    CHECK_EQ(SpreadAlong({{7, 8}}, 1).size(), 2);
}

}  // namespace kel
