#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/chalkpane/commands/commands.h"
#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/values/parameter_json.h"
#include "chalkpane/filters/filter_registry.h"
#include "cli/table.h"

namespace chalkpane::app {
namespace {

using nlohmann::ordered_json;

std::string RangeText(const ParameterDescription& parameter) {
    if (!parameter.minimum.empty()) return parameter.minimum + " .. " + parameter.maximum;
    std::string text;
    for (const std::string& choice : parameter.choices) text += (text.empty() ? "" : ", ") + choice;
    return text;
}

// The key is told where it is not the label.
void PrintFilter(const Filter& filter) {
    const char* const depth = filter.WorkingDepth(Depth::Fourteen) == Depth::Eight ? " (8 bits)" : "";
    std::printf("  %s%s\n", std::string(filter.Label()).c_str(), depth);
    std::vector<cli::TableRow> rows;
    for (const ParameterDescription& parameter : TextsOf(filter).Describe()) {
        const std::string key = parameter.key == parameter.label ? "" : "also \"" + parameter.key + '"';
        rows.push_back({"   ", parameter.label, parameter.type, parameter.defaultText, RangeText(parameter), key});
    }
    cli::PrintTable(rows);
}

void PrintFilters() {
    for (const FilterCategory& category : FilterRegistry::Instance().Categories()) {
        std::printf("%s\n", category.name.c_str());
        for (const Filter* filter : category.filters) PrintFilter(*filter);
    }
}

ordered_json JsonOfFilter(const Filter& filter) {
    ordered_json json = {
        {"label", filter.Label()},
        {"name", filter.Name()},
        {"category", filter.Category()},
        {"movesPixels", filter.MovesPixels()},
        {"bits", filter.WorkingDepth(Depth::Fourteen) == Depth::Eight ? ordered_json{8} : ordered_json{8, 14}},
        {"parameters", ordered_json::array()}};
    for (const ParameterDescription& parameter : TextsOf(filter).Describe())
        json["parameters"].push_back(JsonOf(parameter));
    return json;
}

void PrintJson() {
    ordered_json json = {{"filters", ordered_json::array()}};
    for (const Filter* filter : FilterRegistry::Instance().Filters()) json["filters"].push_back(JsonOfFilter(*filter));
    std::printf("%s\n", json.dump(2).c_str());
}

}  // namespace

void AddFiltersCommand(CLI::App& program) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* command =
        program.add_subcommand("filters", "Lists the filters with their parameters, ranges and defaults");
    command->add_flag("--json", *asJson, "As JSON");
    command->callback([asJson] { *asJson ? PrintJson() : PrintFilters(); });
}

}  // namespace chalkpane::app
