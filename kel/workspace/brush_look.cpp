#include "kel/workspace/brush_look.h"

#include <cmath>
#include <numbers>

namespace kel {
namespace {

constexpr double canvasSide = 1024;  // pixels, in which widths are counted

std::optional<std::size_t> IndexOf(const Workspace& workspace, const char* name) {
    const auto& registration = *workspace.Chosen()->registration;
    const Parameter* parameter = registration.FindParameter(name);
    if (parameter == nullptr) return std::nullopt;
    return static_cast<std::size_t>(parameter - registration.parameters.data());
}

template <typename T>
std::optional<T> ValueOf(const Workspace& workspace, const char* name) {
    const auto index = IndexOf(workspace, name);
    if (!index) return std::nullopt;
    const ParameterValue value = workspace.Value(*index);
    const T* typed = std::get_if<T>(&value);
    return typed == nullptr ? std::nullopt : std::optional<T>(*typed);
}

bool IsShown(const Workspace& workspace, const char* name) {
    const auto index = IndexOf(workspace, name);
    return index && workspace.IsShown(*index);
}

// How many scene pixels one of the canvas is wide, in the middle of the container, seen straight on.
double ScenePixelsPerCanvasPixel(const Session& session, std::size_t container) {
    const SessionContainer& pane = session.containers[container];
    const SessionCamera& camera = session.camera;
    double along = 0;
    double length = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double towards = camera.target[axis] - camera.position[axis];
        along += towards * (pane.position[axis] - camera.position[axis]);
        length += towards * towards;
    }
    const double distance = along / std::sqrt(length);
    const double halfHeight = distance * std::tan(camera.fieldOfView / 2 / 180 * std::numbers::pi);
    return session.window.height / 2.0 / halfHeight * pane.size[0] * std::abs(pane.scale[0]) / canvasSide;
}

}  // namespace

std::optional<BrushLook> BrushLookOf(const Workspace& workspace) {
    if (workspace.Chosen() == nullptr) return std::nullopt;
    BrushLook look;
    look.isEraser = !IsShown(workspace, "BrushWidth") && IsShown(workspace, "EraserWidth");
    const auto width = ValueOf<std::int32_t>(workspace, look.isEraser ? "EraserWidth" : "BrushWidth");
    const double scale = ScenePixelsPerCanvasPixel(workspace.Scene(), workspace.Chosen()->container);
    if (!width || !(scale > 0) || !std::isfinite(scale)) return std::nullopt;
    look.radius = *width * scale;  // a brush's width is how far it reaches from its middle
    const auto picture = ValueOf<std::string>(workspace, "BrushImage");
    const auto colour = ValueOf<ColourBytes>(workspace, "BrushColor");
    look.hasColour = !look.isEraser && colour && (!picture || picture->empty());
    if (colour) look.colour = *colour;
    return look;
}

std::optional<bool> RecognisesShapes(const Workspace& workspace) {
    if (workspace.Chosen() == nullptr) return std::nullopt;
    const auto value = ValueOf<std::int32_t>(workspace, "RecoShapes");
    return value ? std::optional<bool>(*value != 0) : std::nullopt;
}

}  // namespace kel
