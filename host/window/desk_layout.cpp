#include "host/window/desk_layout.h"

#include "host/session_node.h"
#include "host/window/embedded_text.h"

namespace kel {
namespace {

void ReadPen(const SessionNode& node, DeskLayout& layout) {
    node.RequireObject();
    for (const auto& member : node.Value().items()) {
        const SessionNode value = node.Member(member.key());
        SessionValue& pen = layout.pen.emplace_back(SessionValue{member.key(), {}, value.Place()});
        if (value.Value().is_boolean())
            pen.value = value.Truth();
        else if (value.Value().is_number())
            pen.value = value.Number(-1e9, 1e9);
        else
            pen.value = value.Text();
    }
}

constexpr auto groupKeys = std::to_array<SessionKey<DeskLayout::Group>>({
    {"title", true, [](const auto& node, auto& group) { group.title = node.Text(); }},
    {"parameters", true,
     [](const auto& node, auto& group) {
         for (const SessionNode& element : node.Elements(1)) group.parameters.push_back(element.Text());
     }},
});

constexpr auto layoutKeys = std::to_array<SessionKey<DeskLayout>>({
    {"pen", true, ReadPen},
    {"groups", true,
     [](const auto& node, auto& layout) {
         for (const SessionNode& element : node.Elements(0))
             ReadKeys<DeskLayout::Group>(element, groupKeys, layout.groups.emplace_back());
     }},
    {"tips", true,
     [](const auto& node, auto& layout) {
         node.RequireObject();
         for (const auto& member : node.Value().items()) layout.tips[member.key()] = node.Member(member.key()).Text();
     }},
});

}  // namespace

DeskLayout ParseDeskLayout(const std::string& text) {
    const std::filesystem::path file = "desk.json";
    const nlohmann::json json = ParseJson(text, file);
    DeskLayout layout;
    ReadKeys<DeskLayout>(SessionNode(json, file), layoutKeys, layout);
    return layout;
}

const DeskLayout& TheDeskLayout() {
    static const DeskLayout layout = ParseDeskLayout(std::string(DeskLayoutText()));
    return layout;
}

}  // namespace kel
