#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "apps/kel/commands/commands.h"
#include "cli/error.h"
#include "cli/table.h"
#include "kel/control/control_client.h"

namespace kel {
namespace {

using cli::PrintTable;
using cli::TableRow;
using nlohmann::json;

struct ControlLine {
    std::string address;
    std::vector<std::string> commands;
    bool hasEvents = false;
};

std::string TextOf(const json& value) { return value.is_string() ? value.get<std::string>() : value.dump(); }

std::string LimitsOf(const json& parameter) {
    if (parameter.contains("minimum")) return parameter["minimum"].dump() + " .. " + parameter["maximum"].dump();
    std::string text;
    for (const json& option : parameter.value("options", json::array()))
        text += (text.empty() ? "" : ", ") + TextOf(option);
    return text;
}

// Only what commands can say.
void PrintList(const json& list) {
    std::vector<TableRow> rows = {{"parameter", "value", "kind", "values"}};
    for (const json& parameter : list["parameters"])
        rows.push_back(
            {TextOf(parameter["name"]), TextOf(parameter["value"]), TextOf(parameter["kind"]), LimitsOf(parameter)});
    PrintTable(rows);
    rows = {{"\nbutton", "label"}};
    for (const json& button : list["buttons"]) rows.push_back({TextOf(button["name"]), TextOf(button["label"])});
    PrintTable(rows);
    rows = {{"\nkey", "what it does"}};
    for (const json& key : list["keys"]) rows.push_back({TextOf(key["key"]), TextOf(key["about"])});
    PrintTable(rows);
    for (const char* kind : {"containers", "commands", "actions"}) {
        rows = {{std::string("\n") + kind}};
        for (const json& each : list[kind]) rows.push_back({TextOf(each)});
        PrintTable(rows);
    }
}

// Throws Error with the window's reason when it has refused.
void PrintAnswer(const std::string& text) {
    const json answer = json::parse(text, nullptr, false);
    if (!answer.is_object()) throw cli::Error("the window's answer is not understood");
    if (!answer.value("ok", false)) throw cli::Error(answer.value("error", "the window refused, and did not say why"));
    if (answer.contains("parameters"))
        PrintList(answer);
    else if (answer.contains("value"))
        std::printf("%s\n", TextOf(answer["value"]).c_str());
    std::fflush(stdout);
}

void Control(const ControlLine& line) {
    ControlAddress address = ParseControlAddress(line.address);
    if (address.token.empty()) address.token = KeptToken(address.port);
    ControlConversation conversation;
    conversation.commands = line.commands;
    conversation.staysForEvents = line.hasEvents;
    if (line.commands.empty() && !line.hasEvents) conversation.input = STDIN_FILENO;
    std::size_t asked = 0;
    std::size_t refused = 0;
    std::string reason;
    conversation.takeAnswer = [&](const std::string& command, const std::string& answer) {
        ++asked;
        try {
            PrintAnswer(answer);
        } catch (const cli::Error& error) {
            if (refused++ > 0 || conversation.input >= 0)
                std::fprintf(stderr, "kel: %s: %s\n", command.c_str(), error.what());
            else
                reason = error.what();
        }
    };
    if (line.hasEvents)
        conversation.takeEvent = [](const std::string& event) {
            return std::printf("%s\n", event.c_str()) > 0 && std::fflush(stdout) == 0;
        };
    TalkToWindow(address, conversation);
    if (!reason.empty()) throw cli::Error(reason);
    if (refused > 0)
        throw cli::Error(std::to_string(refused) + " of " + std::to_string(asked) + " commands were refused");
}

}  // namespace

void AddControlCommand(CLI::App& program) {
    const auto line = std::make_shared<ControlLine>();
    CLI::App* command = program.add_subcommand("control", "Tells a window, opened with --control, what to do");
    command
        ->add_option("address", line->address,
                     "The window's port on this machine, or the whole address that it prints with its token")
        ->required();
    command->add_option("command", line->commands,
                        "Such as 'set BrushColor #ff0000' or list; without any they are read from standard input");
    command->add_flag("--events", line->hasEvents, "Stays, and prints what changes in the window as lines of JSON");
    command->footer("docs/control.md has all commands.");
    command->callback([line] { Control(*line); });
}

}  // namespace kel
