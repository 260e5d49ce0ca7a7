#include "module/pointer_input.h"

#include "module/abi/host_api.h"
#include "module/container_mapping.h"
#include "module/memory_report.h"

namespace chalkpane {
namespace {

void RememberPosition(PluginInstance& instance, std::int32_t x, std::int32_t y) {
    instance.lastPointerX = x;
    instance.lastPointerY = y;
}

// KEEP: the test of y looks at whether a stroke runs and the test of x does not.
bool PointerRests(const PluginInstance& instance, std::int32_t x, std::int32_t y) {
    return x == instance.lastPointerX && (y == instance.lastPointerY || !instance.pointerInsideStroke);
}

}  // namespace

std::int32_t HandlePointerEvent(PluginInstance& instance, PointerEvent event, std::int32_t x, std::int32_t y) noexcept {
    if (instance.Active == 0) {
        instance.pointerInsideStroke = false;
        RememberPosition(instance, -1, -1);
        return -1;
    }
    const ObjectHandle own = ObjectHandle::OwnContainer();
    const ObjectHandle found = event == PointerEvent::Press ? ObjectHandle::ContainerAt(x, y) : ObjectHandle();
    if (!instance.pointerInsideStroke && found != own) {
        RememberPosition(instance, -1, -1);
        return _api__scene_redraw();
    }
    instance.pointerInsideStroke = true;
    if (!ReadBoundingBox(instance, own)) return _api__scene_redraw();
    const CanvasPosition position = MapPointerToCanvas(instance, own, x, y);
    instance.pointerDown = event == PointerEvent::Press;
    const TelestratorSettings settings = SettingsOf(instance);
    if (event == PointerEvent::Press) {
        instance.telestrator.Press(settings, position);
    } else {
        instance.telestrator.Release(settings, position);
        instance.pointerInsideStroke = false;
    }
    ReportMemoryFailures(instance);
    RememberPosition(instance, x, y);
    return _api__scene_redraw();
}

void PollPointer(PluginInstance& instance) noexcept {
    std::int32_t x = 0;
    std::int32_t y = 0;
    _api__tessmar_query_mouse_pos(0, &x, &y);
    if (!PointerRests(instance, x, y)) {
        const ObjectHandle own = ObjectHandle::OwnContainer();
        if (ReadBoundingBox(instance, own)) {
            instance.telestrator.Move(SettingsOf(instance), MapPointerToCanvas(instance, own, x, y));
        }
    }
    RememberPosition(instance, x, y);
}

}  // namespace chalkpane
