#include "kel/workspace/keys_table.h"

#include <algorithm>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "cli/json_node.h"
#include "cli/nearest_name.h"
#include "kel/session/session_values.h"

namespace kel {
namespace {

// A binding while it is read: "between" and "by" come before the key that makes the whole of them.
struct KeyDraft {
    KeyBinding binding;
    std::vector<SessionValue> between;
    std::int64_t by = 1;
};

SessionValue ValueOf(const cli::JsonNode& node, const std::string& name) {
    SessionValue value{name, {}, node.Place()};
    const nlohmann::json& json = node.Value();
    if (json.is_boolean())
        value.value = json.get<bool>();
    else if (json.is_number_integer())
        value.value = node.Integer(INT32_MIN, INT32_MAX);
    else if (json.is_number())
        value.value = json.get<double>();
    else if (json.is_string())
        value.value = json.get<std::string>();
    else
        node.Refuse("must be true, false, a number or a text");
    return value;
}

void ReadChord(const cli::JsonNode& node, KeyDraft& draft) {
    const std::string text = node.Text();
    try {
        draft.binding.chord = ParseKeyChord(text);
    } catch (const cli::Error& error) {
        node.Refuse(error.what());
    }
}

void ReadBetween(const cli::JsonNode& node, KeyDraft& draft) {
    for (const cli::JsonNode& element : node.Elements(2)) draft.between.push_back(ValueOf(element, {}));
    if (draft.between.size() != 2) node.Refuse("must have 2 values");
}

void ReadToggle(const cli::JsonNode& node, KeyDraft& draft) {
    if (draft.between.empty()) node.Refuse("says what to toggle \"between\"");
    ToggleKey toggle{draft.between[0], draft.between[1]};
    toggle.off.name = toggle.on.name = node.Text();
    draft.binding.what = std::move(toggle);
}

void ReadStep(const cli::JsonNode& node, KeyDraft& draft) {
    StepKey step;
    for (const cli::JsonNode& element : node.Elements(1))
        step.parameters.push_back({element.Text(), draft.by, element.Place()});
    draft.binding.what = std::move(step);
}

void ReadSet(const cli::JsonNode& node, KeyDraft& draft) {
    node.RequireObject();
    SetKey set;
    for (const auto& member : node.Value().items())
        set.values.push_back(ValueOf(node.Member(member.key()), member.key()));
    if (set.values.empty()) node.Refuse("sets nothing");
    draft.binding.what = std::move(set);
}

void ReadAction(const cli::JsonNode& node, KeyDraft& draft) {
    const std::string name = node.Text();
    const auto* found = std::ranges::find(workspaceActionNames, name);
    if (found == workspaceActionNames.end())
        node.Refuse("the workspace has no " + cli::Quoted(name) +
                    cli::NearestHint(name, {workspaceActionNames.begin(), workspaceActionNames.end()}));
    draft.binding.what = static_cast<WorkspaceAction>(found - workspaceActionNames.begin());
}

using KeyRow = cli::JsonKey<KeyDraft>;
constexpr KeyRow chordRow = {"key", true, ReadChord};
constexpr KeyRow aboutRow = {"about", false,
                             [](const cli::JsonNode& node, KeyDraft& draft) { draft.binding.about = node.Text(); }};

constexpr auto buttonRows =
    std::to_array<KeyRow>({chordRow, aboutRow, {"button", true, [](const auto& node, auto& draft) {
                                                    draft.binding.what = ButtonKey{node.Text()};
                                                }}});
constexpr auto toggleRows =
    std::to_array<KeyRow>({chordRow, aboutRow, {"between", true, ReadBetween}, {"toggle", true, ReadToggle}});
constexpr auto stepRows =
    std::to_array<KeyRow>({chordRow,
                           aboutRow,
                           {"by", false, [](const auto& node, auto& draft) { draft.by = node.Integer(-1000, 1000); }},
                           {"step", true, ReadStep}});
constexpr auto setRows = std::to_array<KeyRow>({chordRow, aboutRow, {"set", true, ReadSet}});
constexpr auto workspaceRows = std::to_array<KeyRow>({chordRow, aboutRow, {"workspace", true, ReadAction}});

// What a key does is said by one member, which is the name of the kind.
struct KeyKind {
    std::string_view name;
    std::span<const KeyRow> rows;
};
constexpr auto keyKinds = std::to_array<KeyKind>({{"button", buttonRows},
                                                  {"toggle", toggleRows},
                                                  {"step", stepRows},
                                                  {"set", setRows},
                                                  {"workspace", workspaceRows}});

const KeyKind& KindOf(const cli::JsonNode& node) {
    node.RequireObject();
    const KeyKind* kind = nullptr;
    for (const KeyKind& each : keyKinds) {
        if (!node.Has(each.name)) continue;
        if (kind != nullptr)
            node.Refuse("a key does one thing, not both " + cli::Quoted(kind->name) + " and " + cli::Quoted(each.name));
        kind = &each;
    }
    if (kind != nullptr) return *kind;
    std::vector<std::string> known = {"key", "about", "between", "by"};
    for (const KeyKind& each : keyKinds) known.emplace_back(each.name);
    for (const auto& member : node.Value().items())
        if (std::ranges::find(known, member.key()) == known.end())
            node.Member(member.key()).Refuse("unknown key" + cli::NearestHint(member.key(), known));
    node.Refuse("the key does nothing; it needs one of \"button\", \"toggle\", \"step\", \"set\", \"workspace\"");
}

void ReadTable(const cli::JsonNode& node, KeysTable& table) {
    for (const cli::JsonNode& element : node.Elements(0)) {
        KeyDraft draft;
        draft.binding.place = element.Place();
        cli::ReadKeys<KeyDraft>(element, KindOf(element).rows, draft);
        const auto isSame = [&](const KeyBinding& other) { return other.chord == draft.binding.chord; };
        if (const auto other = std::ranges::find_if(table.keys, isSame); other != table.keys.end())
            element.Member("key").Refuse("the key stands at " + other->place + " already");
        table.keys.push_back(std::move(draft.binding));
    }
}

constexpr auto tableRows = std::to_array<cli::JsonKey<KeysTable>>(
    {{"$schema", false, [](const auto& node, auto&) { (void)node.Text(); }}, {"keys", true, ReadTable}});

std::size_t IndexOf(const Parameter& parameter, const Registration& registration) {
    return static_cast<std::size_t>(&parameter - registration.parameters.data());
}

// Holds a binding against a module.
class Fitting {
public:
    Fitting(const KeysTable& table, const KeyBinding& key, const Registration& registration)
        : m_key(key), m_registration(registration) {
        m_asSession.file = table.file;
    }

    std::optional<ModuleKey> operator()(WorkspaceAction) const { return std::nullopt; }

    std::optional<ModuleKey> operator()(const ButtonKey& key) const {
        if (m_registration.FindButton(key.button) == nullptr) {
            std::vector<std::string> names;
            for (const Button& button : m_registration.buttons) names.push_back(button.name);
            throw cli::Error(m_asSession.file.string(), m_key.place + "/button",
                             "there is no button " + cli::Quoted(key.button) + cli::NearestHint(key.button, names));
        }
        return ModuleKey{ModuleKey::Kind::Button, key.button, {}, 0};
    }

    std::optional<ModuleKey> operator()(const ToggleKey& key) const {
        if (m_registration.FindParameter(key.off.name) == nullptr) {
            SessionValue toggled = key.off;
            toggled.place = m_key.place + "/toggle";
            (void)Fit(toggled);
        }
        return ModuleKey{ModuleKey::Kind::Toggle, {}, {Fit(key.off), Fit(key.on)}, 0};
    }

    std::optional<ModuleKey> operator()(const StepKey& key) const {
        ModuleKey fitted{ModuleKey::Kind::Step, {}, {}, 0};
        for (const SessionValue& value : key.parameters) {
            const Parameter& parameter = ParameterOf(m_asSession, value, m_registration.parameters);
            if (parameter.kind != ParameterKind::Int && parameter.kind != ParameterKind::Float)
                throw cli::Error(m_asSession.file.string(), value.place, cli::Quoted(value.name) + " is no number");
            fitted.settings.push_back({IndexOf(parameter, m_registration), {}});
            fitted.by = static_cast<double>(std::get<std::int64_t>(value.value));
        }
        return fitted;
    }

    std::optional<ModuleKey> operator()(const SetKey& key) const {
        ModuleKey fitted{ModuleKey::Kind::Set, {}, {}, 0};
        for (const SessionValue& value : key.values) fitted.settings.push_back(Fit(value));
        return fitted;
    }

private:
    [[nodiscard]] ModuleKey::Setting Fit(const SessionValue& value) const {
        const Parameter& parameter = ParameterOf(m_asSession, value, m_registration.parameters);
        return {IndexOf(parameter, m_registration), ToParameterValue(m_asSession, value, parameter)};
    }

    const KeyBinding& m_key;
    const Registration& m_registration;
    Session m_asSession;  // for messages: values of keys are written as those of sessions
};

}  // namespace

std::string_view ActionName(WorkspaceAction action) { return workspaceActionNames[static_cast<std::size_t>(action)]; }

KeysTable ParseKeys(const std::string& text, const std::filesystem::path& file) {
    KeysTable table;
    table.file = file;
    const nlohmann::json json = cli::ParseJson(text, file);
    cli::ReadKeys<KeysTable>(cli::JsonNode(json, file), tableRows, table);
    return table;
}

KeysTable ReadKeysFile(const std::filesystem::path& file) {
    const auto bytes = cli::ReadFileBytes(file);
    return ParseKeys({bytes.begin(), bytes.end()}, file);
}

std::optional<ModuleKey> FitKey(const KeysTable& table, const KeyBinding& key, const Registration& registration) {
    return std::visit(Fitting(table, key, registration), key.what);
}

}  // namespace kel
