#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kel/session/session.h"

namespace kel::testing {

// A session with every key that there is, and every kind of event.
inline nlohmann::json CompleteSession() {
    return nlohmann::json::parse(R"({
        "$schema": "session.schema.json",
        "window": {"width": 100, "height": 80},
        "fieldsPerSecond": 25,
        "camera": {"position": [0, 0, 100], "target": [0, 0, 0], "fieldOfView": 40},
        "containers": [
            {"name": "back", "size": [100, 80]},
            {"name": "front", "size": [50, 40], "position": [1, 2, 3], "rotation": [10, 20, 30], "scale": [1, 2, 1],
             "picture": "front.png",
             "plugin": {"module": "other.qop", "parameters": {"On": true, "Width": 5, "Share": 0.5, "Color": "#102030"}}},
            {"name": "screen", "size": [30, 20], "film": "match.mp4"}
        ],
        "events": [
            {"field": 1, "press": [10, 20]},
            {"field": 2, "move": [11, 21]},
            {"field": 3, "release": [12, 22]},
            {"field": 5, "fields": 4, "curve": true, "stroke": [[1, 2], [3.5, 4], [5, 6]]},
            {"field": 6, "container": "front", "set": {"Width": 7}},
            {"field": 7, "container": "front", "button": "Clear"},
            {"field": 8, "save": "eight.png"},
            {"field": 9, "container": "screen", "film": {"frame": 12, "play": true, "loop": false, "speed": 0.5, "in": 2, "out": 90}},
            {"field": 10, "container": "front", "undo": 2},
            {"field": 11, "container": "front", "redo": 1},
            {"field": 12, "container": "front", "removeStroke": 1},
            {"field": 13, "container": "front", "moveStroke": 1, "by": [3, -4]},
            {"field": 14, "container": "front", "recolourStroke": 2, "parameters": {"Color": "#ff0000"}},
            {"field": 15, "container": "front", "keep": 3},
            {"field": 16, "container": "front", "recall": 3, "inPlace": true},
            {"field": 17, "container": "front", "recallStrokes": ["0 clear"], "inPlace": false},
            {"field": 18, "container": "front", "fade": {"after": 2.5, "over": 25}},
            {"field": 19, "container": "front", "fade": false}
        ],
        "fields": 40
    })");
}

// A session with one container that fills its square window of 64 pixels exactly, without events.
inline nlohmann::json PlainSession() {
    return nlohmann::json::parse(R"({
        "window": {"width": 64, "height": 64},
        "camera": {"position": [0, 0, 137.3738709727311], "target": [0, 0, 0], "fieldOfView": 40},
        "containers": [{"name": "page", "size": [100, 100], "plugin": {}}],
        "events": [],
        "fields": 20
    })");
}

// The events, and more behind them.
inline nlohmann::json With(nlohmann::json events, const nlohmann::json& more) {
    for (const nlohmann::json& event : more) events.push_back(event);
    return events;
}

inline Session Parse(const nlohmann::json& json) { return ParseSession(json.dump(), "s.json"); }

}  // namespace kel::testing
