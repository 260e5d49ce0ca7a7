#include "module/pointer_input.h"

#include "module/abi/host_api.h"
#include "module/container_mapping.h"
#include "module/stroke_points.h"
#include "module/surface_pen.h"
#include "module/undo_history.h"

namespace chalkpane {
namespace {

void RememberPosition(PluginInstance& instance, std::int32_t x, std::int32_t y) {
    instance.lastPointerX = x;
    instance.lastPointerY = y;
}

// The canvas takes every stroke. The shape surface takes those that are final as drawn: freehand lines that nothing
// will replace, and the eraser's.
void PaintStroke(PluginInstance& instance, StrokeStage stage, const CanvasPosition& position) {
    instance.dirtyRect = Paint(instance.canvasSurface.get(), stage, position.x, position.y);
    if (instance.RecoShapes == 0 || instance.BrushType == 1) {
        Paint(instance.shapeSurface.get(), stage, position.x, position.y);
    }
}

void Press(PluginInstance& instance, const CanvasPosition& position) {
    PaintStroke(instance, StrokeStage::Begin, position);
    // While the countdown runs the earlier points stay: two strokes in quick succession form one shape, a cross.
    if (instance.shapeCountdown < 0) instance.strokePointCount = 0;
    instance.shapeCountdown = -1;
    AddStrokePoint(instance, position.x, position.y, true);
}

void Release(PluginInstance& instance, const CanvasPosition& position) {
    PaintStroke(instance, StrokeStage::End, position);
    AddStrokePoint(instance, position.x, position.y, true);
    if (instance.RecoShapes == 0) {
        PushUndoSnapshot(instance);
    } else {
        instance.shapeCountdown = instance.ShapeDelay;
    }
    instance.pointerInsideStroke = false;
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
    if (event == PointerEvent::Press) {
        Press(instance, position);
    } else {
        Release(instance, position);
    }
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
            const CanvasPosition position = MapPointerToCanvas(instance, own, x, y);
            PaintStroke(instance, StrokeStage::Continue, position);
            AddStrokePoint(instance, position.x, position.y, false);
        }
    }
    RememberPosition(instance, x, y);
}

}  // namespace chalkpane
