#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kel/ink/ink_edits.h"
#include "kel/video/video_clock.h"
#include "kel/workspace/keys_table.h"

namespace kel {

// What somebody outside asks of the workspace, in one line of text: the words of sessions and of the table of keys.
// docs/control.md describes them. Names and values are text until a module is there to check them against.

// Parameters and what they are set to, as it is typed.
using NamedTexts = std::vector<std::pair<std::string, std::string>>;

struct SetCommand {
    NamedTexts values;  // at least one
};
struct GetCommand {
    std::string name;
};
struct ButtonCommand {
    std::string name;
};
// Without values: true and false.
struct ToggleCommand {
    std::string name;
    std::optional<std::array<std::string, 2>> between;
};
struct StepCommand {
    std::string name;
    double by = 1;
};
struct KeyCommand {
    KeyChord chord;
};
struct VideoCommand {
    VideoChange change;  // at least one thing changes
};
// Undo, redo, or an edit of one stroke.
struct StrokeCommand {
    InkEditKind kind = InkEditKind::Undo;
    std::size_t number = 1;
    std::int32_t right = 0;  // window pixels
    std::int32_t down = 0;
    NamedTexts values;
};
struct FadeCommand {
    std::optional<double> after;  // seconds; nothing: ink does not fade
    std::int32_t over = 50;       // fields
};
// Which plug-in commands, panel and keys are for.
struct ContainerCommand {
    std::string name;
};
struct ListCommand {};

using ControlCommand =
    std::variant<WorkspaceAction, SetCommand, GetCommand, ButtonCommand, ToggleCommand, StepCommand, KeyCommand,
                 VideoCommand, StrokeCommand, FadeCommand, ContainerCommand, ListCommand>;

// Throws Error with the reason, and the nearest word where one is unknown.
[[nodiscard]] ControlCommand ParseControlCommand(std::string_view line);

// Every command but those that are the name of an action, as a person reads it: "set NAME VALUE ...".
[[nodiscard]] std::vector<std::string> ControlForms();

}  // namespace kel
