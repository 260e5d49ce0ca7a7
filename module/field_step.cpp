#include "module/field_step.h"

#include <cstring>

#include "chalkpane/image/pixel_format.h"
#include "module/abi/host_api.h"
#include "module/brush_mode.h"
#include "module/canvas_texture.h"
#include "module/memory_guard.h"
#include "module/pointer_input.h"
#include "module/stroke_finish.h"
#include "module/undo_history.h"

namespace chalkpane {
namespace {

// Remembers the value once both surfaces have it; where memory ran out, the next field tries again.
void SetWidth(PluginInstance& instance, std::int32_t width, std::int32_t& lastWidth) {
    if (width == lastWidth) return;
    const bool applied = WithinMemory([&] {
        instance.canvasSurface->SetBrushWidth(width);
        instance.shapeSurface->SetBrushWidth(width);
    });
    if (applied) lastWidth = width;
}

void FollowWidth(PluginInstance& instance) {
    if (instance.BrushType == 0) SetWidth(instance, instance.BrushWidth, instance.lastBrushWidth);
    if (instance.BrushType == 1) SetWidth(instance, instance.EraserWidth, instance.lastEraserWidth);
}

// The canvas is blue first in memory and goes to OpenGL as red first: hence the bytes in reverse.
void FollowColour(PluginInstance& instance) {
    if (instance.BrushColor == instance.lastBrushColor) return;
    const auto expandedByte = [&](int index) {
        const std::uint32_t value = (instance.BrushColor >> (8 * index)) & 0xFFU;
        return static_cast<std::uint16_t>(value * 64 + (value >> 2));
    };
    const bool applied = WithinMemory([&] {
        for (TelestratorSurface* surface : {instance.canvasSurface.get(), instance.shapeSurface.get()}) {
            surface->SetBrushColour(expandedByte(2), expandedByte(1), expandedByte(0));
        }
    });
    if (applied) instance.lastBrushColor = instance.BrushColor;
}

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

void CountDown(PluginInstance& instance) {
    constexpr std::int32_t rest = -2;
    if (instance.shapeCountdown <= rest) return;
    if (--instance.shapeCountdown == 0) FinishStroke(instance);
}

void StepWithCanvas(PluginInstance& instance) {
    if (instance.TexUnit != instance.lastTexUnit) ApplyTextureUnit(instance);
    FollowWidth(instance);
    FollowColour(instance);
    if (instance.Active != 0 && instance.pointerDown) PollPointer(instance);
    FollowBrushImage(instance);
    CountDown(instance);
}

}  // namespace

void StepField(PluginInstance& instance) noexcept {
    _api__tessmar_get_window_size(&instance.windowWidth, &instance.windowHeight);
    const bool hadCanvas = instance.canvasSurface != nullptr;
    if (hadCanvas && !AdjustUndoRing(instance)) return;  // without a redraw
    if (hadCanvas || CreateCanvas(instance)) StepWithCanvas(instance);
    _api__scene_redraw();
}

std::int32_t ShowParameters(const PluginInstance& instance) {
    const bool colour = instance.BrushType == 0;
    qoSendGuiParameterShow("BrushImage", colour ? 1 : 0);
    qoSendGuiParameterShow("BrushWidth", colour ? 1 : 0);
    qoSendGuiParameterShow("EraserWidth", colour ? 0 : 1);
    return qoSendGuiParameterShow("Transparent", instance.TexUnit == 0 ? 1 : 0);
}

}  // namespace chalkpane
