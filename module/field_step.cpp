#include "module/field_step.h"

#include <cstring>

#include "module/abi/host_api.h"
#include "module/brush_mode.h"
#include "module/canvas_texture.h"
#include "module/memory_report.h"
#include "module/pointer_input.h"

namespace chalkpane {
namespace {

// Names are compared and kept as far as the buffer holds them.
void FollowBrushImage(PluginInstance& instance) {
    auto& lastName = instance.lastBrushImageName;
    const std::size_t longest = lastName.size() - 1;
    if (instance.BrushImage == nullptr || std::strncmp(instance.BrushImage, lastName.data(), longest) == 0) return;
    instance.brushImageHandle.id = _api__get_image_objectid(instance.BrushImage);
    ApplyBrushMode(instance);
    lastName.fill('\0');
    std::memcpy(lastName.data(), instance.BrushImage, strnlen(instance.BrushImage, longest));
}

void StepWithCanvas(PluginInstance& instance) {
    Telestrator& telestrator = instance.telestrator;
    if (instance.TexUnit != instance.lastTexUnit) ApplyTextureUnit(instance);
    telestrator.FollowSettings(SettingsOf(instance));
    if (instance.Active != 0 && instance.pointerDown) PollPointer(instance);
    FollowBrushImage(instance);
    telestrator.CountDown(SettingsOf(instance));
}

// False: the ring could not follow, and the field ends here without a redraw.
bool Step(PluginInstance& instance) {
    Telestrator& telestrator = instance.telestrator;
    const bool hadCanvas = telestrator.HasCanvas();
    if (hadCanvas && !telestrator.AdjustUndoRing(SettingsOf(instance))) return false;
    if (hadCanvas || CreateCanvas(instance)) StepWithCanvas(instance);
    return true;
}

}  // namespace

void StepField(PluginInstance& instance) noexcept {
    _api__tessmar_get_window_size(&instance.windowWidth, &instance.windowHeight);
    const bool goesOn = Step(instance);
    ReportMemoryFailures(instance);
    if (goesOn) _api__scene_redraw();
}

}  // namespace chalkpane
