#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kel/module_loading/module.h"
#include "kel/session/session.h"
#include "kel/workspace/key_chord.h"

namespace kel {

// The keys of the workspace and what they do, as a file says it; docs/window.md describes the file.

// What the workspace itself can do. The file knows these by the names of workspaceActionNames, in this order.
enum class WorkspaceAction {
    Pause,
    Step,
    StepBack,
    Start,
    Loop,
    SavePicture,
    SaveOverlay,
    FullScreen,
    Panel,
    Help,
    Close,
    Quit,
    Undo,
    Redo,
    Jump,
    JumpBack,
    Slower,
    Faster,
    MarkIn,
    MarkOut,
    NoMarks,
    Sound,
    Open,
    Spotlight,
    WholePicture,
    FoldPanel
};
inline constexpr auto workspaceActionNames = std::to_array<std::string_view>(
    {"pause",   "step",     "step back", "start", "loop", "save picture", "save overlay",  "full screen", "panel",
     "help",    "close",    "quit",      "undo",  "redo", "jump",         "jump back",     "slower",      "faster",
     "mark in", "mark out", "no marks",  "sound", "open", "spotlight",    "whole picture", "fold panel"});

// The names and values here are the file's; FitKeys holds them against a module.
struct ButtonKey {
    std::string button;
};
// Goes from the first value to the second and back.
struct ToggleKey {
    SessionValue off;
    SessionValue on;  // of the same parameter
};
// Adds to a number, as far as its limits: the first of the parameters that the module shows.
struct StepKey {
    std::vector<SessionValue> parameters;  // the value is what is added
};
struct SetKey {
    std::vector<SessionValue> values;
};

struct KeyBinding {
    KeyChord chord;
    std::string about;  // for the page of keys
    std::variant<WorkspaceAction, ButtonKey, ToggleKey, StepKey, SetKey> what;
    std::string place;  // JSON pointer, for messages
};

struct KeysTable {
    std::filesystem::path file;
    std::vector<KeyBinding> keys;  // no chord stands twice
};

// Throws Error with file, place and reason, and the nearest name where one is unknown.
[[nodiscard]] KeysTable ParseKeys(const std::string& text, const std::filesystem::path& file);
[[nodiscard]] KeysTable ReadKeysFile(const std::filesystem::path& file);

// The name of the action; "step back".
[[nodiscard]] std::string_view ActionName(WorkspaceAction action);

// What a key does at a module, with all names found and values checked.
struct ModuleKey {
    struct Setting {
        std::size_t parameter = 0;  // index in the order of registration
        ParameterValue value;       // of a step: unused
    };
    enum class Kind { Button, Toggle, Step, Set };
    Kind kind = Kind::Button;
    std::string button;
    std::vector<Setting> settings;  // of a toggle: off, on
    double by = 0;                  // of a step
};

// Throws Error as ParseKeys does when the module has no such parameter, button or value. A WorkspaceAction fits any
// module and gives nothing.
[[nodiscard]] std::optional<ModuleKey> FitKey(const KeysTable& table, const KeyBinding& key,
                                              const Registration& registration);

}  // namespace kel
