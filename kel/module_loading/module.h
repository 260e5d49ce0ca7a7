#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "kel/module_loading/parameter.h"
#include "module/abi/entry_points.h"

namespace kel {

// The entry points of a module, with the types that the module declares them with.
struct EntryPoints {
    decltype(&PLUGIN_INIT_EX) initEx = nullptr;
    decltype(&PLUGIN_INIT_FUNCTION) initFunction = nullptr;
    decltype(&PLUGIN_CLEANUP_FUNCTION) cleanupFunction = nullptr;
    decltype(&PLUGIN_GUI_STATUS) guiStatus = nullptr;
    decltype(&PLUGIN_CHANGED_CALLBACK) changedCallback = nullptr;
    decltype(&PLUGIN_EXEC_ACTION) execAction = nullptr;
    decltype(&PLUGIN_EXEC_PER_FIELD) execPerField = nullptr;
    decltype(&PLUGIN_MOUSE_CALLBACK) mouseCallback = nullptr;
    decltype(&PLUGIN_KEYBOARD_CALLBACK) keyboardCallback = nullptr;
    decltype(&PLUGIN_PRE_RENDER_OPENGL) preRender = nullptr;
    decltype(&PLUGIN_POST_RENDER_OPENGL) postRender = nullptr;
};
using RenderCallback = decltype(EntryPoints::preRender);
static_assert(std::is_same_v<RenderCallback, decltype(EntryPoints::postRender)>);

// What a module registers in PLUGIN_INIT_EX.
struct Registration {
    std::string name;
    std::int32_t type = 0;
    std::string folder;
    std::vector<Parameter> parameters;  // in the order of their fields in the instance block
    std::vector<Button> buttons;
    std::int32_t blockSize = 0;  // bytes of the instance block

    // Null: nothing of that name.
    [[nodiscard]] const Parameter* FindParameter(std::string_view parameterName) const;
    [[nodiscard]] const Button* FindButton(std::string_view buttonName) const;
};

// A module in this process. It stays loaded to the end of the process, since threads of its own may be at rest inside.
struct Module {
    std::filesystem::path file;
    EntryPoints entryPoints;
    Registration registration;
};

// Loads the file and finds the entry points; registers nothing yet. Throws Error when it does not load or lacks an
// entry point.
[[nodiscard]] Module OpenModule(const std::filesystem::path& file);

// Gives every parameter its place in the instance block, by natural alignment in the order of registration, and checks
// what was registered as a whole. Throws Error naming the file and the reason.
void LayOutBlock(Module& module);

}  // namespace kel
