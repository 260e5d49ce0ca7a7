#include "tests/probe_module/probe_module.h"

#include "module/abi/entry_points.h"

// A module for the host's tests: all entry points, and behind each whatever the test has put there.
using chalkpane::PluginInstance;

namespace {

ProbeHooks* hooks = nullptr;

template <typename Hook, typename... Arguments>
void Run(Hook ProbeHooks::*hook, Arguments... arguments) {
    if (hooks != nullptr && hooks->*hook) (hooks->*hook)(arguments...);
}

}  // namespace

extern "C" CHALKPANE_EXPORT void ProbeHooksAre(ProbeHooks* now) { hooks = now; }

std::int32_t PLUGIN_INIT_EX() noexcept {
    Run(&ProbeHooks::registration);
    return hooks != nullptr ? hooks->initAnswer : 0;
}
PluginInstance* PLUGIN_INIT_FUNCTION(PluginInstance* block) noexcept {
    Run(&ProbeHooks::construct, block);
    return block;
}
void PLUGIN_CLEANUP_FUNCTION(PluginInstance*) noexcept { Run(&ProbeHooks::cleanup); }
std::int32_t PLUGIN_GUI_STATUS(PluginInstance*) noexcept {
    Run(&ProbeHooks::guiStatus);
    return 0;
}
void PLUGIN_CHANGED_CALLBACK(PluginInstance*, std::int32_t parameter) noexcept { Run(&ProbeHooks::changed, parameter); }
void PLUGIN_EXEC_ACTION(PluginInstance*, std::int32_t action) noexcept { Run(&ProbeHooks::action, action); }
void PLUGIN_EXEC_PER_FIELD(PluginInstance*) noexcept { Run(&ProbeHooks::perField); }
#ifndef PROBE_WITHOUT_MOUSE
std::int32_t PLUGIN_MOUSE_CALLBACK(PluginInstance*, std::int32_t, std::int32_t button, std::int32_t pressed,
                                   std::int32_t state, std::int32_t x, std::int32_t y, std::int32_t,
                                   std::int32_t) noexcept {
    if (button == 1 && state == 1) Run(&ProbeHooks::mouse, pressed != 0, x, y);
    return 1;
}
#endif
void PLUGIN_KEYBOARD_CALLBACK(PluginInstance*) noexcept { Run(&ProbeHooks::keyboard); }
std::int32_t PLUGIN_PRE_RENDER_OPENGL(PluginInstance*, std::int32_t, float) noexcept {
    Run(&ProbeHooks::preRender);
    return 1;
}
std::int32_t PLUGIN_POST_RENDER_OPENGL(PluginInstance*, std::int32_t, float) noexcept {
    Run(&ProbeHooks::postRender);
    return 1;
}
