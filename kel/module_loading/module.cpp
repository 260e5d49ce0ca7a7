#include "kel/module_loading/module.h"

#include <dlfcn.h>

#include <algorithm>

#include "cli/error.h"
#include "cli/nearest_name.h"

namespace kel {
namespace {

std::string LoaderReason(const std::filesystem::path& file) {
    const char* text = dlerror();
    std::string reason = text != nullptr ? text : "unknown reason";
    const std::string start = file.string() + ": ";  // the loader begins with the name that Error puts in front anyway
    if (reason.starts_with(start)) reason.erase(0, start.size());
    std::ranges::replace(reason, '\n', ' ');
    return reason;
}

template <typename Function>
void Find(void* library, const std::filesystem::path& file, const char* name, Function& function) {
    void* address = dlsym(library, name);
    if (address == nullptr) throw cli::Error(file.string(), {}, std::string("lacks the entry point ") + name);
    function = reinterpret_cast<Function>(address);
}

std::size_t FieldSize(ParameterKind kind) { return kind == ParameterKind::Image ? sizeof(const char*) : 4; }

void CheckDefault(const std::filesystem::path& file, const Parameter& parameter) {
    const std::string reason = parameter.Refusal(parameter.defaultValue);
    if (!reason.empty())
        throw cli::Error(file.string(), {}, "default of parameter " + cli::Quoted(parameter.name) + ": " + reason);
}

}  // namespace

const Parameter* Registration::FindParameter(std::string_view parameterName) const {
    const auto found = std::ranges::find(parameters, parameterName, &Parameter::name);
    return found == parameters.end() ? nullptr : &*found;
}

const Button* Registration::FindButton(std::string_view buttonName) const {
    const auto found = std::ranges::find(buttons, buttonName, &Button::name);
    return found == buttons.end() ? nullptr : &*found;
}

Module OpenModule(const std::filesystem::path& file) {
    std::error_code failure;
    Module module;
    module.file = std::filesystem::absolute(file, failure);  // without a slash the loader would search elsewhere
    if (!std::filesystem::exists(module.file, failure)) throw cli::Error(file.string(), {}, "there is no such module");
    void* library = dlopen(module.file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr) throw cli::Error(file.string(), {}, "does not load: " + LoaderReason(module.file));

    EntryPoints& entry = module.entryPoints;
    Find(library, file, "PLUGIN_INIT_EX", entry.initEx);
    Find(library, file, "PLUGIN_INIT_FUNCTION", entry.initFunction);
    Find(library, file, "PLUGIN_CLEANUP_FUNCTION", entry.cleanupFunction);
    Find(library, file, "PLUGIN_GUI_STATUS", entry.guiStatus);
    Find(library, file, "PLUGIN_CHANGED_CALLBACK", entry.changedCallback);
    Find(library, file, "PLUGIN_EXEC_ACTION", entry.execAction);
    Find(library, file, "PLUGIN_EXEC_PER_FIELD", entry.execPerField);
    Find(library, file, "PLUGIN_MOUSE_CALLBACK", entry.mouseCallback);
    Find(library, file, "PLUGIN_KEYBOARD_CALLBACK", entry.keyboardCallback);
    Find(library, file, "PLUGIN_PRE_RENDER_OPENGL", entry.preRender);
    Find(library, file, "PLUGIN_POST_RENDER_OPENGL", entry.postRender);
    return module;
}

void LayOutBlock(Module& module) {
    Registration& registration = module.registration;
    std::size_t end = 0;
    for (Parameter& parameter : registration.parameters) {
        const std::size_t size = FieldSize(parameter.kind);
        parameter.offset = (end + size - 1) / size * size;
        end = parameter.offset + size;
        CheckDefault(module.file, parameter);
    }
    if (registration.blockSize < 0 || static_cast<std::size_t>(registration.blockSize) < std::max<std::size_t>(end, 1))
        throw cli::Error(module.file.string(), {},
                         "registers " + std::to_string(registration.blockSize) +
                             " bytes for an instance whose parameters take " + std::to_string(end));
}

}  // namespace kel
