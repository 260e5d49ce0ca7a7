#include <doctest/doctest.h>

#include "kel/session/player_pointer.h"
#include "tests/cli/thrown.h"

namespace kel {
namespace {

constexpr const char* emptyScene = R"({"window": {"width": 64, "height": 48}, "camera": {"position": [0, 0, 9],
    "target": [0, 0, 0]}, "containers": [{"name": "pane", "size": [4, 4]}], "events": )";

std::vector<TimedPointerStep> StepsOf(const std::string& events) {
    return PointerTrack(ParseSession(emptyScene + events + "}", "steps.json"));
}

}  // namespace

TEST_CASE("Steps all stand before what their field has, and one behind that waits for the next field") {
    const auto track =
        StepsOf(R"([{"field": 5, "step": true, "press": [1, 1]}, {"field": 5, "step": true, "move": [2, 2]},
        {"field": 5, "move": [3, 3]}, {"field": 5, "step": true, "move": [4, 4]}, {"field": 6, "release": [5, 5]}])");
    const std::vector<TimedPointerStep> wanted{{5, {PointerKind::Press, 1, 1}, true},
                                               {5, {PointerKind::Move, 2, 2}, true},
                                               {5, {PointerKind::Move, 3, 3}, false},
                                               {6, {PointerKind::Move, 4, 4}, true},
                                               {6, {PointerKind::Release, 5, 5}, false}};
    CHECK_EQ(track == wanted, true);
}

TEST_CASE("A pen's pressure goes with its press, moves and release, and is full where it is not said") {
    const auto track = StepsOf(R"([{"field": 5, "press": [1, 1], "pressure": 0.25},
        {"field": 6, "step": true, "pressure": 0, "move": [2, 2]}, {"field": 6, "move": [3, 3]},
        {"field": 7, "release": [5, 5], "pressure": 1}])");
    const std::vector<TimedPointerStep> wanted{{5, {PointerKind::Press, 1, 1, 0.25}, false},
                                               {6, {PointerKind::Move, 2, 2, 0}, true},
                                               {6, {PointerKind::Move, 3, 3, 1}, false},
                                               {7, {PointerKind::Release, 5, 5, 1}, false}};
    CHECK_EQ(track == wanted, true);
}

TEST_CASE("A pressure beyond its limits is refused in one line") {
    for (const char* pressure : {"-0.001", "1.001", "1e308", "\"hard\"", "null"}) {
        const std::string event = R"({"field": 5, "press": [1, 1], "pressure": )" + std::string(pressure) + "}";
        const std::string refusal = cli::testing::Thrown([&] { (void)StepsOf("[" + event + "]"); });
        CAPTURE(refusal);
        CHECK_EQ(refusal.starts_with("steps.json: /events/0/pressure: must be a number"), true);
        CHECK_EQ(refusal.find('\n'), std::string::npos);
    }
}

}  // namespace kel
