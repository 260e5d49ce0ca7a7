#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

#include "apps/kel/commands/commands.h"
#include "cli/table.h"
#include "kel/scene/host.h"
#include "kel/session/session_json.h"
#include "kel/session/session_values.h"

namespace kel {
namespace {

using nlohmann::ordered_json;

struct InfoOptions {
    std::string module;
    bool json = false;
};

bool HasLimits(const Parameter& parameter) {
    return parameter.kind == ParameterKind::Int || parameter.kind == ParameterKind::Float;
}

std::string NumberText(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.10g", number);
    return text.data();
}

std::string LimitsText(const Parameter& parameter) {
    if (HasLimits(parameter)) return NumberText(parameter.minimum) + " .. " + NumberText(parameter.maximum);
    std::string text;
    for (const std::string& option : parameter.options) text += (text.empty() ? "" : ", ") + option;
    return text;
}

using cli::PrintTable;
using cli::TableRow;

void PrintTables(const Registration& registration) {
    std::printf("%s: plug-in type %d, folder \"%s\", instance block of %d bytes\n\n", registration.name.c_str(),
                registration.type, registration.folder.c_str(), registration.blockSize);
    std::vector<TableRow> rows = {{"#", "parameter", "label", "kind", "default", "values", ""}};
    for (const Parameter& parameter : registration.parameters) {
        std::string standard = SessionText(parameter, parameter.defaultValue);
        if (standard.empty()) standard = "(none)";
        rows.push_back({std::to_string(rows.size()), parameter.name, parameter.label,
                        std::string(KindName(parameter.kind)), std::move(standard), LimitsText(parameter),
                        parameter.hidden ? "hidden" : ""});
    }
    PrintTable(rows);
    rows = {{"button", "label", "action"}};
    for (const Button& button : registration.buttons)
        rows.push_back({button.name, button.label, std::to_string(button.action)});
    std::printf("\n");
    PrintTable(rows);
}

ordered_json JsonParameter(const Parameter& parameter) {
    ordered_json described = {{"name", parameter.name},
                              {"label", parameter.label},
                              {"kind", KindName(parameter.kind)},
                              {"default", JsonValue(parameter, parameter.defaultValue)}};
    if (HasLimits(parameter)) {
        described["minimum"] = parameter.minimum;
        described["maximum"] = parameter.maximum;
    }
    if (!parameter.options.empty()) described["options"] = parameter.options;
    described["hidden"] = parameter.hidden;
    return described;
}

void PrintJson(const Registration& registration) {
    ordered_json described = {{"name", registration.name},           {"type", registration.type},
                              {"folder", registration.folder},       {"blockSize", registration.blockSize},
                              {"parameters", ordered_json::array()}, {"buttons", ordered_json::array()}};
    for (const Parameter& parameter : registration.parameters)
        described["parameters"].push_back(JsonParameter(parameter));
    for (const Button& button : registration.buttons)
        described["buttons"].push_back({{"name", button.name}, {"label", button.label}, {"action", button.action}});
    // A module's texts are its own; what is not UTF-8 in them is replaced.
    std::printf("%s\n", described.dump(2, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

void Info(const InfoOptions& options) {
    Host host({16, 16});
    const Registration& registration = host.LoadModule(options.module).registration;
    if (options.json)
        PrintJson(registration);
    else
        PrintTables(registration);
}

}  // namespace

void AddInfoCommand(CLI::App& program) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* command = program.add_subcommand("info", "Shows what a module registers: parameters, limits, buttons");
    command->add_option("module", options->module, "The module, such as Chalkpane.qop")->required();
    command->add_flag("--json", options->json, "As JSON");
    command->callback([options] { Info(*options); });
}

}  // namespace kel
