#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "kel/module_loading/parameter.h"

namespace kel {

// The entry points of a module. The instance block is `void*` here: only its parameter fields are the host's business.
struct EntryPoints {
    using InitEx = std::int32_t (*)();
    using InitFunction = void* (*)(void*);
    using Callback = void (*)(void*);
    using GuiStatus = std::int32_t (*)(void*);
    using NumberCallback = void (*)(void*, std::int32_t);
    // instance, a, button, pressed, state, x, y, b, c
    using MouseCallback = std::int32_t (*)(void*, std::int32_t, std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                                           std::int32_t, std::int32_t, std::int32_t);
    using RenderCallback = bool (*)(void*, std::int32_t, float);

    InitEx initEx = nullptr;
    InitFunction initFunction = nullptr;
    Callback cleanupFunction = nullptr;
    GuiStatus guiStatus = nullptr;
    NumberCallback changedCallback = nullptr;  // number of the parameter, counted from 1
    NumberCallback execAction = nullptr;       // number of the action
    Callback execPerField = nullptr;
    MouseCallback mouseCallback = nullptr;
    Callback keyboardCallback = nullptr;
    RenderCallback preRender = nullptr;
    RenderCallback postRender = nullptr;
};

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
