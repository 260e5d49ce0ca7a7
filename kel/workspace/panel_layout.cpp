#include "kel/workspace/panel_layout.h"

#include "cli/json_node.h"
#include "cli/nearest_name.h"
#include "kel/workspace/embedded_text.h"

namespace kel {
namespace {

void ReadPen(const cli::JsonNode& node, PanelLayout& layout) {
    node.RequireObject();
    for (const auto& member : node.Value().items()) {
        const cli::JsonNode value = node.Member(member.key());
        SessionValue& pen = layout.pen.emplace_back(SessionValue{member.key(), {}, value.Place()});
        if (value.Value().is_boolean())
            pen.value = value.Truth();
        else if (value.Value().is_number())
            pen.value = value.Number(-1e9, 1e9);
        else
            pen.value = value.Text();
    }
}

constexpr auto groupKeys = std::to_array<cli::JsonKey<PanelLayout::Group>>({
    {"title", true, [](const auto& node, auto& group) { group.title = node.Text(); }},
    {"parameters", true,
     [](const auto& node, auto& group) {
         for (const cli::JsonNode& element : node.Elements(1)) group.parameters.push_back(element.Text());
     }},
});

constexpr auto layoutKeys = std::to_array<cli::JsonKey<PanelLayout>>({
    {"pen", true, ReadPen},
    {"groups", true,
     [](const auto& node, auto& layout) {
         for (const cli::JsonNode& element : node.Elements(0))
             cli::ReadKeys<PanelLayout::Group>(element, groupKeys, layout.groups.emplace_back());
     }},
    {"tips", true,
     [](const auto& node, auto& layout) {
         node.RequireObject();
         for (const auto& member : node.Value().items()) layout.tips[member.key()] = node.Member(member.key()).Text();
     }},
});

}  // namespace

PanelLayout ParsePanelLayout(const std::string& text) {
    const std::filesystem::path file = "workspace.json";
    const nlohmann::json json = cli::ParseJson(text, file);
    PanelLayout layout;
    cli::ReadKeys<PanelLayout>(cli::JsonNode(json, file), layoutKeys, layout);
    return layout;
}

const PanelLayout& ThePanelLayout() {
    static const PanelLayout layout = ParsePanelLayout(std::string(PanelLayoutText()));
    return layout;
}

}  // namespace kel
