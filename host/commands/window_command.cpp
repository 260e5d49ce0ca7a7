#include <memory>

#include "host/commands/commands.h"
#include "host/commands/module_path.h"
#include "host/window/desk_window.h"
#include "host/window/embedded_text.h"

namespace kel {
namespace {

struct WindowLine {
    std::string file;
    std::string keys;
    std::string module;
    std::string recording;
    std::string saves = ".";
};

void Window(const WindowLine& line) {
    WindowOptions options;
    options.file = line.file.empty() ? FindExampleScene() : std::filesystem::path(line.file);
    options.areKeysGiven = !line.keys.empty();
    options.keys =
        options.areKeysGiven ? ReadKeysFile(line.keys) : ParseKeys(std::string(DefaultKeysText()), "keys.json");
    options.desk.isModuleGiven = !line.module.empty();
    options.desk.module = options.desk.isModuleGiven ? std::filesystem::path(line.module) : FindModule();
    options.desk.recording = line.recording;
    options.desk.saves = line.saves;
    RunDeskWindow(options);
}

}  // namespace

void AddWindowCommand(CLI::App& program) {
    const auto line = std::make_shared<WindowLine>();
    CLI::App* command = program.add_subcommand("window", "Opens a picture, a film or a session in a window to draw on");
    command->add_option("file", line->file, "A picture, a film or a session (default: a pitch)");
    command->add_option("--record", line->recording, "Writes what happens as a session, which kel play plays again")
        ->type_name("SESSION");
    command->add_option("--keys", line->keys, "What the keys do, a JSON file (docs/window.md)")->type_name("FILE");
    command->add_option("--module", line->module, "The module of plug-ins that name none (default: Chalkpane.qop)")
        ->type_name("MODULE");
    command->add_option("--saves", line->saves, "Where pictures are saved (default: here)")->type_name("FOLDER");
    command->callback([line] { Window(*line); });
}

}  // namespace kel
