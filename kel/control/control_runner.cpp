#include "kel/control/control_runner.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "cli/error.h"
#include "cli/nearest_name.h"
#include "kel/control/control_listing.h"
#include "kel/session/session_values.h"
#include "kel/workspace/panel_model.h"

namespace kel {
namespace {

// As a parameter of that kind would be typed.
std::string TextOfFader(const Parameter& parameter, const std::string& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return text;
    if (parameter.kind == ParameterKind::Bool) return number != 0 ? "true" : "false";
    const bool fits = std::abs(number) < std::numeric_limits<std::int32_t>::max();
    return parameter.kind == ParameterKind::Int && fits ? std::to_string(std::lround(number)) : text;
}

class Runner {
public:
    Runner(ControlTarget& target, ControlNumbers numbers)
        : m_target(target), m_workspace(target.TheWorkspace()), m_numbers(numbers) {}

    std::string operator()(WorkspaceAction action) {
        m_target.DoAction(action);
        return doneAnswer;
    }
    std::string operator()(const SetCommand& command) {
        const std::vector<ModuleKey::Setting> settings = Settings(command.values);
        for (const ModuleKey::Setting& setting : settings) m_workspace.Set(setting.parameter, setting.value);
        return doneAnswer;
    }
    std::string operator()(const GetCommand& command) {
        const std::size_t parameter = IndexOf(command.name);
        return ValueAnswer(Module().parameters[parameter], m_workspace.Value(parameter));
    }
    std::string operator()(const ButtonCommand& command) {
        if (Module().FindButton(command.name) == nullptr) {
            std::vector<std::string> names;
            for (const Button& button : Module().buttons) names.push_back(button.name);
            throw cli::Error("there is no button " + cli::Quoted(command.name) + cli::NearestHint(command.name, names));
        }
        m_workspace.Push(command.name);
        return doneAnswer;
    }
    std::string operator()(const ToggleCommand& command) {
        const std::size_t parameter = IndexOf(command.name);
        const Parameter& which = Module().parameters[parameter];
        if (!command.between && which.kind != ParameterKind::Bool)
            throw cli::Error(which.name + " is not true or false; say between which two values it goes");
        const std::array<std::string, 2> between =
            command.between.value_or(std::array<std::string, 2>{"false", "true"});
        const ModuleKey key{ModuleKey::Kind::Toggle,
                            {},
                            {{parameter, TypedValue(which, between[0])}, {parameter, TypedValue(which, between[1])}},
                            0};
        m_workspace.Do(key);
        return doneAnswer;
    }
    std::string operator()(const StepCommand& command) {
        const std::size_t parameter = IndexOf(command.name);
        const Parameter& which = Module().parameters[parameter];
        if (which.kind != ParameterKind::Int && which.kind != ParameterKind::Float)
            throw cli::Error(which.name + " is no number");
        m_workspace.Set(parameter, SteppedValue(which, m_workspace.Value(parameter), command.by));
        return doneAnswer;
    }
    std::string operator()(const KeyCommand& command) {
        const FittedKeys::Key* key = m_target.Keys().Find(command.chord);
        if (key == nullptr) {
            std::vector<std::string> chords;
            for (const FittedKeys::Key& each : m_target.Keys().keys) chords.push_back(ChordText(each.chord));
            const std::string chord = ChordText(command.chord);
            throw cli::Error("no key is " + cli::Quoted(chord) + cli::NearestHint(chord, chords, "list"));
        }
        m_target.DoKey(*key);
        return doneAnswer;
    }
    std::string operator()(const VideoCommand& command) {
        if (m_workspace.Video() == nullptr) throw cli::Error("there is no film");
        m_workspace.ChangeVideo(command.change);
        return doneAnswer;
    }
    std::string operator()(const StrokeCommand& command) {
        (void)Module();
        InkEdit edit;
        edit.kind = command.kind;
        edit.number = command.number;
        edit.right = command.right;
        edit.down = command.down;
        for (ModuleKey::Setting& setting : Settings(command.values))
            edit.values.push_back({setting.parameter, std::move(setting.value)});
        m_workspace.Edit(edit);
        return doneAnswer;
    }
    std::string operator()(const FadeCommand& command) {
        Workspace::Fading fading = m_workspace.InkFading();
        fading.isOn = command.after.has_value();
        if (fading.isOn) {
            fading.after = *command.after;
            fading.over = command.over / m_workspace.FieldsPerSecond();
        }
        m_workspace.SetFading(fading);
        return doneAnswer;
    }
    std::string operator()(const ContainerCommand& command) {
        std::vector<std::string> names;
        for (const Workspace::PlugIn& plugIn : m_workspace.PlugIns()) {
            if (plugIn.name == command.name) {
                m_workspace.Choose(names.size());
                return doneAnswer;
            }
            names.push_back(plugIn.name);
        }
        throw cli::Error("no plug-in is on a container " + cli::Quoted(command.name) +
                         cli::NearestHint(command.name, names));
    }
    std::string operator()(const ListCommand&) { return ListAnswer(m_target); }

private:
    [[nodiscard]] const Registration& Module() const {
        if (m_workspace.Chosen() == nullptr) throw cli::Error("the scene has no plug-in");
        return *m_workspace.Chosen()->registration;
    }
    [[nodiscard]] std::size_t IndexOf(const std::string& name) const {
        const Registration& module = Module();
        if (const Parameter* parameter = module.FindParameter(name))
            return static_cast<std::size_t>(parameter - module.parameters.data());
        std::vector<std::string> names;
        for (const Parameter& parameter : module.parameters) names.push_back(parameter.name);
        throw cli::Error("there is no parameter " + cli::Quoted(name) + cli::NearestHint(name, names, "list"));
    }
    // All of them are checked before the first one is set.
    [[nodiscard]] std::vector<ModuleKey::Setting> Settings(const NamedTexts& values) const {
        std::vector<ModuleKey::Setting> settings;
        for (const auto& [name, text] : values) {
            const std::size_t index = IndexOf(name);
            const Parameter& parameter = Module().parameters[index];
            settings.push_back(
                {index,
                 TypedValue(parameter, m_numbers == ControlNumbers::OfFaders ? TextOfFader(parameter, text) : text)});
        }
        return settings;
    }

    static constexpr const char* doneAnswer = "{\"ok\":true}";

    ControlTarget& m_target;
    Workspace& m_workspace;
    ControlNumbers m_numbers;
};

}  // namespace

ControlAnswer RunControlLine(ControlTarget& target, std::string_view line, ControlNumbers numbers) {
    try {
        const ControlCommand command = ParseControlCommand(line);
        const bool onlyAsks =
            std::holds_alternative<ListCommand>(command) || std::holds_alternative<GetCommand>(command);
        if (target.TheWorkspace().IsPlayingSession() && !onlyAsks)
            throw cli::Error("the session's own events are still being played");
        return {true, std::visit(Runner(target, numbers), command)};
    } catch (const cli::Error& error) {
        return RefusedAnswer(error.what());
    }
}

}  // namespace kel
