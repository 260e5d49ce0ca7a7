#include "apps/chalkpane/strokes/setting_parser.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "apps/chalkpane/strokes/brush_limits.h"
#include "apps/chalkpane/values/parameter_json.h"
#include "apps/chalkpane/values/value_parsing.h"
#include "cli/error.h"
#include "cli/nearest_name.h"

namespace chalkpane::app {
namespace {

using cli::Error;
using cli::JsonNode;
using cli::Quoted;

using Found = std::pair<const SettingTable*, const ParameterDef*>;

Found FindParameter(std::string_view name, std::span<const SettingTable> tables) {
    for (const auto part : {&ParameterDef::label, &ParameterDef::name})
        for (const SettingTable& table : tables)
            for (const auto& definition : table.list)
                if (SameName((*definition).*part, name)) return {&table, definition.get()};
    return {};
}

std::string TextOf(const JsonNode& node, const ParameterDef& definition, const std::filesystem::path& file) {
    if (definition.type == ParameterType::fileName) return Beside(file, node.Text()).string();
    return TextOfJson(node.Value());
}

Setting Read(const JsonNode& node, const Found& found, const std::filesystem::path& file) {
    const auto& [table, definition] = found;
    const ValuePointer scratch = DataSet::createValue(definition, false, nullptr);
    if (!scratch) node.Refuse("has no value that could be set");
    Setting setting{definition, {}, PlaceIn(file, node)};
    try {
        setting.text = TextOf(node, *definition, file);
    } catch (const Error& error) {
        if (definition->type == ParameterType::fileName) throw;
        node.Refuse(error.what());
    }
    ParameterTexts(setting.place, table->list, table->choices).SetText(*scratch, setting.text);
    try {
        CheckBrushValue(*scratch);
    } catch (const Error& error) {
        node.Refuse(error.what());
    }
    return setting;
}

}  // namespace

std::filesystem::path Beside(const std::filesystem::path& file, const std::string& path) {
    return (file.parent_path() / path).lexically_normal();
}

std::string PlaceIn(const std::filesystem::path& file, const JsonNode& node) {
    return file.string() + ": " + (node.Place().empty() ? "/" : node.Place());
}

void ReadSetting(const JsonNode& node, std::string_view name, std::span<const SettingTable> tables,
                 const std::vector<std::string>& keys, const std::filesystem::path& file,
                 std::vector<Setting>& settings) {
    const Found found = FindParameter(name, tables);
    if (found.second == nullptr) {
        std::vector<std::string> names = keys;
        for (const SettingTable& table : tables)
            for (const auto& definition : table.list) names.push_back(definition->label);
        node.Refuse("unknown key" + cli::NearestHint(name, names));
    }
    if (std::ranges::find(settings, found.second, &Setting::parameter) != settings.end())
        node.Refuse(Quoted(found.second->label) + " stands here already, by its other name " +
                    Quoted(found.second->name));
    settings.push_back(Read(node, found, file));
}

}  // namespace chalkpane::app
