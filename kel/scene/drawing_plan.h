#pragma once

#include "kel/scene/host_state.h"
#include "kel/scene/matrix.h"
#include "kel/scene/scene_renderer.h"

namespace kel {

// What of drawing the scene is left out, because the pixels are the same without it.
struct DrawingPlan {
    ObjectId copied = noObject;  // the first container, whose picture is copied to its place; noObject: none is
    FrameArea place;             // which that covers, pixel by pixel
    bool hasDepth = true;        // false: nothing that is drawn can hide what is drawn later

    [[nodiscard]] bool LeavesOut() const { return copied != noObject; }
    friend bool operator==(const DrawingPlan&, const DrawingPlan&) = default;
};

// By what modules asked of OpenGL last: where they ask for something else meanwhile, what was drawn so is of no use.
[[nodiscard]] DrawingPlan PlanDrawing(HostState& state, const Matrix& camera);

// Copies the picture of the plan's container into the target, which is as large as the window, as far as it lies within
// `part`. Its texture is built.
void CopyPlanned(HostState& state, const DrawingPlan& plan, const FrameBuffer& target, const FrameArea& part);

// What of the window this container, which is about to be drawn without depth, changes at all: where its one image is
// clear or hidden, nothing, when OpenGL's state is such that clear texels leave everything as it was.
[[nodiscard]] FrameArea ChangedByDrawing(HostState& state, const ContainerObject& container, Look look);

}  // namespace kel
