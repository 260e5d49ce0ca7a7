#include "tests/probe_module/probe_module.h"

// A module for the host's tests: all entry points, and behind each whatever the test has put there.
#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

ProbeHooks* hooks = nullptr;

template <typename Hook, typename... Arguments>
void Run(Hook ProbeHooks::*hook, Arguments... arguments) {
    if (hooks != nullptr && hooks->*hook) (hooks->*hook)(arguments...);
}

}  // namespace

EXPORTED void ProbeHooksAre(ProbeHooks* now) { hooks = now; }

EXPORTED std::int32_t PLUGIN_INIT_EX() {
    Run(&ProbeHooks::registration);
    return hooks != nullptr ? hooks->initAnswer : 0;
}
EXPORTED void* PLUGIN_INIT_FUNCTION(void* block) {
    Run(&ProbeHooks::construct, block);
    return block;
}
EXPORTED void PLUGIN_CLEANUP_FUNCTION(void*) { Run(&ProbeHooks::cleanup); }
EXPORTED std::int32_t PLUGIN_GUI_STATUS(void*) {
    Run(&ProbeHooks::guiStatus);
    return 0;
}
EXPORTED void PLUGIN_CHANGED_CALLBACK(void*, std::int32_t parameter) { Run(&ProbeHooks::changed, parameter); }
EXPORTED void PLUGIN_EXEC_ACTION(void*, std::int32_t action) { Run(&ProbeHooks::action, action); }
EXPORTED void PLUGIN_EXEC_PER_FIELD(void*) { Run(&ProbeHooks::perField); }
#ifndef PROBE_WITHOUT_MOUSE
EXPORTED std::int32_t PLUGIN_MOUSE_CALLBACK(void*, std::int32_t, std::int32_t button, std::int32_t pressed,
                                            std::int32_t state, std::int32_t x, std::int32_t y, std::int32_t,
                                            std::int32_t) {
    if (button == 1 && state == 1) Run(&ProbeHooks::mouse, pressed != 0, x, y);
    return 1;
}
#endif
EXPORTED void PLUGIN_KEYBOARD_CALLBACK(void*) { Run(&ProbeHooks::keyboard); }
EXPORTED bool PLUGIN_PRE_RENDER_OPENGL(void*, std::int32_t, float) {
    Run(&ProbeHooks::preRender);
    return true;
}
EXPORTED bool PLUGIN_POST_RENDER_OPENGL(void*, std::int32_t, float) {
    Run(&ProbeHooks::postRender);
    return true;
}
