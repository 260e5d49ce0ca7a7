#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "kel/ink/ink_edits.h"
#include "kel/scene/pointer_queue.h"
#include "kel/video/video_clock.h"

namespace kel {

// A session: a scene, and what the operator does in it field by field. docs/session.md describes the file.
//
// Everything here has been checked as far as the file alone tells. Names and values of parameters and buttons are
// checked against the module (kel/session/session_values.h), pictures when they are read. A `place` is the JSON pointer
// to where something stands in the file, for messages.

using SessionVector = std::array<double, 3>;

struct SessionPoint {
    double x = 0.0;  // window pixels, from the left
    double y = 0.0;  // window pixels, from the top
};

struct SessionWindow {
    std::int32_t width = 0;   // pixels
    std::int32_t height = 0;  // pixels
};

struct SessionCamera {
    SessionVector position{};
    SessionVector target{};
    double fieldOfView = 40.0;  // degrees, from the bottom to the top of the window
};

// One value for one parameter, as the file has it.
struct SessionValue {
    std::string name;
    std::variant<bool, std::int64_t, double, std::string> value;
    std::string place;
};

struct SessionPlugin {
    std::string module;  // path, relative to the session file; empty: the module that play is given
    std::vector<SessionValue> parameters;
    std::string place;
};

struct SessionContainer {
    std::string name;              // may be empty; otherwise no two are equal
    std::array<double, 2> size{};  // width, height
    SessionVector position{};
    SessionVector rotation{};  // degrees about x, y, z
    SessionVector scale{1.0, 1.0, 1.0};
    std::string picture;  // path, relative to the session file; empty: none
    std::string video;    // likewise; a container has a picture or a video
    std::string live;  // of a recording, what live pictures it was drawn on; they are never opened. Nor has it others
    std::optional<SessionPlugin> plugin;
    std::string place;
};

struct PointerEvent {
    PointerKind kind = PointerKind::Move;
    SessionPoint at;
    bool isStep = false;  // before the field's own, with a field callback of its own; presses and moves alone
    double pressure = 1;  // of a pen, 0.0 .. 1.0
};
// A path drawn with the pressed pointer: pressed in the event's field, released `fields` later, at even speed.
struct StrokeEvent {
    std::vector<SessionPoint> path;  // at least one
    std::int64_t fields = 1;         // at least 1
    bool curve = false;              // set: bends smoothly through the points; else straight from point to point
};
struct SetEvent {
    std::vector<SessionValue> values;
    std::size_t container = 0;  // index into `containers`; has a plug-in
};
struct ButtonEvent {
    std::string name;
    std::size_t container = 0;
};
struct VideoEvent {
    VideoChange change;         // at least one thing changes
    std::size_t container = 0;  // index into `containers`; has a video
};
// An edit of what was drawn. Strokes are numbered from 1 as they were drawn on the container.
struct InkEvent {
    using Kind = InkEditKind;
    Kind kind = Kind::Undo;
    std::int64_t number = 1;           // how often, which stroke, or which slot
    SessionPoint by;                   // of a move, window pixels
    std::vector<SessionValue> values;  // of a recolouring, what it is drawn with
    std::string strokes;               // of a recall, a journal's lines after its first; empty: what is in the slot
    bool inPlace = false;              // of a recall: what is there goes
    double fadeAfter = -1.0;           // seconds; below 0: ink does not fade
    std::int64_t fadeOver = 50;        // fields
    std::size_t container = 0;         // index into `containers`; has a plug-in
};
struct SaveEvent {
    std::string name;  // the file name of a picture, without a folder
};

struct SessionEvent {
    std::int64_t field = 0;
    std::variant<PointerEvent, StrokeEvent, SetEvent, ButtonEvent, VideoEvent, InkEvent, SaveEvent> what;
    std::string place;

    // The field in which the event is over: a stroke's release, otherwise the event's own field.
    [[nodiscard]] std::int64_t LastField() const;
};

struct Session {
    std::filesystem::path file;
    SessionWindow window;
    double fieldsPerSecond = 50.0;
    std::int64_t fields = 1;   // how many are played: 0 .. fields - 1
    bool isRecording = false;  // written by the window; may name files anywhere that its operator owns
    SessionCamera camera;
    std::vector<SessionContainer> containers;  // at least one
    std::vector<SessionEvent> events;          // by field; those of one field in the order of the file

    // `path` as the session's own folder sees it; an absolute path stays as it is.
    [[nodiscard]] std::filesystem::path Resolve(const std::string& path) const;
};

// Reads and checks a session file. Throws Error with the file, the place (JSON pointer, or line and column where the
// JSON itself is broken) and the reason.
[[nodiscard]] Session ReadSession(const std::filesystem::path& file);
// The same from text; `file` names it in messages and is where relative paths start.
[[nodiscard]] Session ParseSession(const std::string& text, const std::filesystem::path& file);

}  // namespace kel
