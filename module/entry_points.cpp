#include "module/abi/entry_points.h"

#include <cstring>
#include <memory>
#include <new>

#include "module/brush_mode.h"
#include "module/canvas_texture.h"
#include "module/field_step.h"
#include "module/plugin_instance.h"
#include "module/pointer_input.h"
#include "module/registration.h"

using chalkpane::PluginInstance;

std::int32_t PLUGIN_INIT_EX() noexcept {
    chalkpane::RegisterPlugin();
    return 0;
}

PluginInstance* PLUGIN_INIT_FUNCTION(PluginInstance* instance) noexcept {
    // The host has written the values into a block where nothing is constructed yet.
    chalkpane::PluginParameters values;
    std::memcpy(&values, static_cast<const void*>(instance), sizeof values);
    return std::construct_at(instance, values);
}

void PLUGIN_CLEANUP_FUNCTION(PluginInstance* instance) noexcept {
    if (instance->canvasTexture.IsValid()) _api__texture_delete_texture(&instance->canvasTexture.id);
    std::destroy_at(instance);
}

std::int32_t PLUGIN_GUI_STATUS(PluginInstance* instance) noexcept { return chalkpane::ShowParameters(*instance); }

void PLUGIN_CHANGED_CALLBACK(PluginInstance* instance, std::int32_t parameter) noexcept {
    if (parameter == chalkpane::brushTypeNumber) chalkpane::ApplyBrushMode(*instance);
}

void PLUGIN_EXEC_ACTION(PluginInstance* instance, std::int32_t action) noexcept {
    switch (static_cast<chalkpane::PluginAction>(action)) {
        case chalkpane::PluginAction::Clear:
            instance->telestrator.ClearCanvas();
            break;
        case chalkpane::PluginAction::Undo:
            instance->telestrator.RestoreUndoSnapshot();
            break;
    }
}

void PLUGIN_EXEC_PER_FIELD(PluginInstance* instance) noexcept { chalkpane::StepField(*instance); }

std::int32_t PLUGIN_MOUSE_CALLBACK(PluginInstance* instance, std::int32_t /*a*/, std::int32_t button,
                                   std::int32_t pressed, std::int32_t state, std::int32_t x, std::int32_t y,
                                   std::int32_t /*b*/, std::int32_t /*c*/) noexcept {
    if (!instance->telestrator.HasCanvas() || button != 1 || state != 1) return 1;
    const auto event = pressed != 0 ? chalkpane::PointerEvent::Press : chalkpane::PointerEvent::Release;
    return chalkpane::HandlePointerEvent(*instance, event, x, y);
}

void PLUGIN_KEYBOARD_CALLBACK(PluginInstance* /*instance*/) noexcept {}

std::int32_t PLUGIN_PRE_RENDER_OPENGL(PluginInstance* instance, std::int32_t /*word*/, float /*value*/) noexcept {
    return chalkpane::PreRender(*instance) ? 1 : 0;
}

std::int32_t PLUGIN_POST_RENDER_OPENGL(PluginInstance* instance, std::int32_t /*word*/, float /*value*/) noexcept {
    chalkpane::PostRender(*instance);
    return 1;
}
