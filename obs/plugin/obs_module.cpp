#include <obs-module.h>

#include <exception>

#include "obs/plugin/drawing_window.h"
#include "obs/plugin/pane_settings.h"
#include "obs/plugin/pane_sources.h"

OBS_DECLARE_MODULE()
OBS_MODULE_AUTHOR("Chalkpane developers")

MODULE_EXPORT const char* obs_module_name() { return "Chalkpane"; }
MODULE_EXPORT const char* obs_module_description() { return "Draws on sources as a telestrator does"; }

namespace {

bool HasGraphics() {
    obs_enter_graphics();
    const bool has = gs_get_context() != nullptr;
    obs_leave_graphics();
    return has;
}

}  // namespace

bool obs_module_load() {
    using namespace chalkpane::obs;
    try {
        (void)ThePanel();
    } catch (const std::exception& error) {
        blog(LOG_ERROR, "[chalkpane] not loaded: %s", error.what());
        return false;
    }
    RegisterPaneSource();
    RegisterPaneFilter();
    RegisterDrawingWindow();
    if (HasGraphics()) {
        blog(LOG_INFO, "[chalkpane] loaded, version " CHALKPANE_VERSION);
    } else {
        blog(LOG_WARNING, "[chalkpane] loaded, version " CHALKPANE_VERSION
                          ", but OBS has no OpenGL: what is drawn is kept and saved, and not seen");
    }
    return true;
}
