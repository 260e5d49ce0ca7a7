#include "kel/ink/ink_edits.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <utility>

namespace kel {
namespace {

using Recalled = chalkpane::InkDrawing::Recall;

// Tells which of the pointer's steps belong to strokes, one after the other.
class StrokeFinder {
public:
    // The number of the stroke that the step belongs to; 0: none.
    std::size_t Take(const InstanceInput& input) {
        if (!m_isPressed && input.pointer->kind == PointerKind::Press && input.isOver) {
            m_isPressed = true;
            ++m_strokes;
        }
        const std::size_t stroke = m_isPressed ? m_strokes : 0;
        if (input.pointer->kind == PointerKind::Release) m_isPressed = false;
        return stroke;
    }

private:
    bool m_isPressed = false;
    std::size_t m_strokes = 0;
};

std::int32_t Shifted(std::int32_t place, std::int32_t by) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp(std::int64_t{place} + by, std::int64_t{Limits::min()}, std::int64_t{Limits::max()}));
}

InstanceInput& InputAt(InstanceHistory& history, std::int64_t field) {
    auto& inputs = history.inputs;
    const auto at = std::ranges::lower_bound(inputs, field, {}, &InstanceInput::field);
    if (at != inputs.end() && at->field == field) return *at;
    InstanceInput input;
    input.field = field;
    return *inputs.insert(at, std::move(input));
}

// Parameters that have other values for a while than the operator gave them.
class Overriding {
public:
    static constexpr std::int64_t forGood = std::numeric_limits<std::int64_t>::max();

    explicit Overriding(InstanceHistory& history) : m_history(history) {
        for (std::size_t i = 0; i < history.firstValues.size(); ++i) m_values.push_back(history.firstValues[i]);
    }

    // From the one field to before the other; the greatest number stands for all that is to come.
    void Add(std::int64_t from, std::int64_t to, const std::vector<SettingInput>& values) {
        for (const SettingInput& setting : values) {
            const ParameterValue given = ValueBefore(setting.parameter, from);
            const ParameterValue later = TakeSettings(setting.parameter, from, to, given);
            InputAt(m_history, from).operatorInputs.emplace_back(setting);
            if (to == forGood) continue;
            auto& inputs = InputAt(m_history, to).operatorInputs;
            inputs.insert(inputs.begin(), SettingInput{setting.parameter, later});
        }
    }

private:
    [[nodiscard]] ParameterValue ValueBefore(std::size_t parameter, std::int64_t field) const {
        ParameterValue value = m_values[parameter];
        for (const InstanceInput& input : m_history.inputs) {
            if (input.field >= field) break;
            for (const auto& each : input.operatorInputs) {
                const auto* setting = std::get_if<SettingInput>(&each);
                if (setting != nullptr && setting->parameter == parameter) value = setting->value;
            }
        }
        return value;
    }

    // Takes the operator's settings of that while out. Returns what the last of them set.
    ParameterValue TakeSettings(std::size_t parameter, std::int64_t from, std::int64_t to, ParameterValue value) {
        for (InstanceInput& input : m_history.inputs) {
            if (input.field < from || input.field >= to) continue;
            std::erase_if(input.operatorInputs, [&](const auto& each) {
                const auto* setting = std::get_if<SettingInput>(&each);
                if (setting == nullptr || setting->parameter != parameter) return false;
                value = setting->value;
                return true;
            });
        }
        return value;
    }

    InstanceHistory& m_history;
    std::vector<ParameterValue> m_values;  // at the beginning
};

}  // namespace

// What the operator did since the last time. All of it comes after the edits so far, and ends what could be redone.
void InkEdits::Follow(const InstanceHistory& history) {
    const auto add = [this](Kind kind, std::size_t number) {
        Operation operation;
        operation.kind = kind;
        operation.number = number;
        m_done.push_back(std::move(operation));
        m_undone.clear();
    };
    // The last input may have grown.
    for (std::size_t i = m_inputs == 0 ? 0 : m_inputs - 1; i < history.inputs.size(); ++i) {
        const InstanceInput& input = history.inputs[i];
        if (i >= m_inputs) {
            m_isPointerSeen = false;
            m_operatorInputs = 0;
        }
        if (input.pointer && !std::exchange(m_isPointerSeen, true)) {
            const bool begins = !m_isPressed && input.pointer->kind == PointerKind::Press && input.isOver;
            if (begins) add(Kind::Stroke, ++m_strokes);
            m_isPressed = begins || (m_isPressed && input.pointer->kind != PointerKind::Release);
        }
        for (; m_operatorInputs < input.operatorInputs.size(); ++m_operatorInputs)
            if (std::holds_alternative<ActionInput>(input.operatorInputs[m_operatorInputs]))
                add(Kind::Action, ++m_actions);
        m_inputs = std::max(m_inputs, i + 1);
    }
}

bool InkEdits::Do(const InstanceHistory& history, const InkEdit& edit) {
    switch (edit.kind) {
        case InkEditKind::Undo:
            return Undo(history);
        case InkEditKind::Redo:
            return Redo(history);
        case InkEditKind::Remove:
            return Remove(history, edit.number);
        case InkEditKind::Move:
            return Move(history, edit.number, edit.right, edit.down);
        case InkEditKind::Recolour:
            return Recolour(history, edit.number, edit.values);
        case InkEditKind::Keep:
        case InkEditKind::Recall:
        case InkEditKind::Fade:
            break;  // not of the history
    }
    return false;
}

bool InkEdits::Undo(const InstanceHistory& history) {
    Follow(history);
    if (m_done.empty()) return false;
    m_undone.push_back(std::move(m_done.back()));
    m_done.pop_back();
    return true;
}

bool InkEdits::Redo(const InstanceHistory& history) {
    Follow(history);
    if (m_undone.empty()) return false;
    m_done.push_back(std::move(m_undone.back()));
    m_undone.pop_back();
    return true;
}

bool InkEdits::Edit(const InstanceHistory& history, Operation operation) {
    Follow(history);
    if (!LookOf(operation.number).isThere) return false;
    m_done.push_back(std::move(operation));
    m_undone.clear();
    return true;
}

bool InkEdits::Remove(const InstanceHistory& history, std::size_t stroke) {
    return Edit(history, {Kind::Remove, stroke, 0, 0, {}, {}, Recalled::Over, 0, 0});
}

bool InkEdits::Move(const InstanceHistory& history, std::size_t stroke, std::int32_t right, std::int32_t down) {
    return Edit(history, {Kind::Move, stroke, right, down, {}, {}, Recalled::Over, 0, 0});
}

bool InkEdits::Recolour(const InstanceHistory& history, std::size_t stroke, const std::vector<SettingInput>& values) {
    return Edit(history, {Kind::Recolour, stroke, 0, 0, values, {}, Recalled::Over, 0, 0});
}

InkEdits::Look InkEdits::LookOf(std::size_t stroke) const {
    Look look;
    for (const Operation& operation : m_done) {
        const bool isOfStrokes =
            operation.kind != Kind::Action && operation.kind != Kind::Recall && operation.kind != Kind::Fade;
        if (!isOfStrokes || operation.number != stroke) continue;
        if (operation.kind == Kind::Stroke) look.isThere = true;
        if (operation.kind == Kind::Remove) look.isThere = false;
        if (operation.kind == Kind::Recolour) look.values = operation.values;
        look.right = Shifted(look.right, operation.right);
        look.down = Shifted(look.down, operation.down);
    }
    return look;
}

void InkEdits::AddRecall(const InstanceHistory& history, const InkEdit& edit, std::int64_t field) {
    Follow(history);
    m_done.push_back({Kind::Recall, ++m_recalls, 0, 0, {}, edit.strokes, edit.recall, field, 0});
    m_undone.clear();
}

bool InkEdits::HasRecalls() const {
    return std::ranges::any_of(m_done, [](const Operation& operation) { return operation.kind == Kind::Recall; });
}

void InkEdits::AddFade(const InstanceHistory& history, std::int64_t field, std::int32_t action) {
    Follow(history);
    m_done.push_back({Kind::Fade, ++m_fades, 0, 0, {}, {}, Recalled::Over, field, action});
    m_undone.clear();
}

bool InkEdits::IsPushed(std::size_t action) const {
    return std::ranges::any_of(m_done, [&](const Operation& operation) {
        return operation.kind == Kind::Action && operation.number == action;
    });
}

InstanceHistory InkEdits::Apply(const InstanceHistory& history) const {
    InstanceHistory applied = history;
    StrokeFinder finder;
    std::size_t actions = 0;
    std::size_t stroke = 0;
    Look look;
    std::map<std::size_t, std::int64_t> presses;  // the fields of those strokes that are there
    for (InstanceInput& input : applied.inputs) {
        std::erase_if(input.operatorInputs, [&](const auto& each) {
            return std::holds_alternative<ActionInput>(each) && !IsPushed(++actions);
        });
        if (!input.pointer) continue;
        const std::size_t before = std::exchange(stroke, finder.Take(input));
        if (stroke == 0) continue;
        if (stroke != before) look = LookOf(stroke);
        if (look.isThere) {
            presses.try_emplace(stroke, input.field);
            input.pointer->x = Shifted(input.pointer->x, look.right);
            input.pointer->y = Shifted(input.pointer->y, look.down);
        } else {
            input.pointer->kind = PointerKind::Move;
        }
    }
    Overriding overriding(applied);
    for (auto press = presses.begin(); press != presses.end(); ++press) {
        const auto next = std::next(press);
        const std::vector<SettingInput> values = LookOf(press->first).values;
        if (values.empty()) continue;
        overriding.Add(press->second - 1, next == presses.end() ? Overriding::forGood : next->second - 1, values);
    }
    for (const Operation& operation : m_done)
        if (operation.kind == Kind::Fade)
            InputAt(applied, operation.field).operatorInputs.emplace_back(ActionInput{operation.action});
    return applied;
}

}  // namespace kel
