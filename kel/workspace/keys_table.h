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
    FoldPanel,
    Choose,  // strokes are pointed at, not drawn
    Fade,
    Live,      // back from the replay
    SaveClip,  // of the replay
    InkLeaves,
    // Nine slots each.
    Keep,
    Recall = Keep + 9,
    RecallInPlace = Recall + 9,
};
constexpr int slotsOfActions = 9;

// The action, which is one of nine, for the slot: 1 to 9.
[[nodiscard]] constexpr WorkspaceAction OfSlot(WorkspaceAction first, int slot) {
    return static_cast<WorkspaceAction>(static_cast<int>(first) + slot - 1);
}
// The slot that this one of the nine is for; 0: it is none of them.
[[nodiscard]] constexpr int SlotOf(WorkspaceAction action, WorkspaceAction first) {
    const int slot = static_cast<int>(action) - static_cast<int>(first) + 1;
    return slot >= 1 && slot <= slotsOfActions ? slot : 0;
}

inline constexpr auto workspaceActionNames = std::to_array<std::string_view>({"pause",
                                                                              "step",
                                                                              "step back",
                                                                              "start",
                                                                              "loop",
                                                                              "save picture",
                                                                              "save overlay",
                                                                              "full screen",
                                                                              "panel",
                                                                              "help",
                                                                              "close",
                                                                              "quit",
                                                                              "undo",
                                                                              "redo",
                                                                              "jump",
                                                                              "jump back",
                                                                              "slower",
                                                                              "faster",
                                                                              "mark in",
                                                                              "mark out",
                                                                              "no marks",
                                                                              "sound",
                                                                              "open",
                                                                              "spotlight",
                                                                              "whole picture",
                                                                              "fold panel",
                                                                              "choose",
                                                                              "fade",
                                                                              "live",
                                                                              "save clip",
                                                                              "ink leaves",
                                                                              "keep 1",
                                                                              "keep 2",
                                                                              "keep 3",
                                                                              "keep 4",
                                                                              "keep 5",
                                                                              "keep 6",
                                                                              "keep 7",
                                                                              "keep 8",
                                                                              "keep 9",
                                                                              "recall 1",
                                                                              "recall 2",
                                                                              "recall 3",
                                                                              "recall 4",
                                                                              "recall 5",
                                                                              "recall 6",
                                                                              "recall 7",
                                                                              "recall 8",
                                                                              "recall 9",
                                                                              "recall in place 1",
                                                                              "recall in place 2",
                                                                              "recall in place 3",
                                                                              "recall in place 4",
                                                                              "recall in place 5",
                                                                              "recall in place 6",
                                                                              "recall in place 7",
                                                                              "recall in place 8",
                                                                              "recall in place 9"});

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
