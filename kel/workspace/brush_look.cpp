#include "kel/workspace/brush_look.h"

#include <cmath>

#include "kel/ink/pane_mapping.h"

namespace kel {
namespace {

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

// Half of the way from one place of the canvas to the other, as it is seen.
std::optional<std::array<double, 2>> HalfWay(const PaneMapping& mapping, const chalkpane::CanvasPosition& from,
                                             const chalkpane::CanvasPosition& to) {
    const auto start = mapping.Project(from);
    const auto end = mapping.Project(to);
    if (!start || !end) return std::nullopt;
    return std::array<double, 2>{((*end)[0] - (*start)[0]) / 2, ((*end)[1] - (*start)[1]) / 2};
}

// radius: canvas pixels
std::optional<SeenDab> DabAt(Workspace& workspace, const ScenePixel& at, double radius) {
    const PaneMapping mapping(workspace.TheHost().State(), workspace.Chosen()->id);
    if (!mapping.HasBox()) return std::nullopt;
    const chalkpane::CanvasPosition middle = mapping.Map(workspace.SceneSize(), at.x, at.y);
    if (!std::isfinite(middle.x) || !std::isfinite(middle.y)) return std::nullopt;
    const auto across = HalfWay(mapping, {middle.x - radius, middle.y}, {middle.x + radius, middle.y});
    const auto down = HalfWay(mapping, {middle.x, middle.y - radius}, {middle.x, middle.y + radius});
    if (!across || !down) return std::nullopt;
    const double area = (*across)[0] * (*down)[1] - (*across)[1] * (*down)[0];
    constexpr double smallestArea = 1e-6;  // square pixels: less is seen edge-on
    if (!std::isfinite(area) || std::abs(area) < smallestArea) return std::nullopt;
    return SeenDab{*across, *down};
}

}  // namespace

std::array<double, 2> SeenDab::HalfSize() const {
    return {std::hypot(across[0], down[0]), std::hypot(across[1], down[1])};
}

SeenDab SeenDab::Scaled(double by) const { return {{across[0] * by, across[1] * by}, {down[0] * by, down[1] * by}}; }

std::optional<BrushLook> BrushLookOf(Workspace& workspace, const ScenePixel& at) {
    if (workspace.Chosen() == nullptr) return std::nullopt;
    BrushLook look;
    look.isEraser = !IsShown(workspace, "BrushWidth") && IsShown(workspace, "EraserWidth");
    const auto width = ValueOf<std::int32_t>(workspace, look.isEraser ? "EraserWidth" : "BrushWidth");
    if (!width || *width <= 0) return std::nullopt;
    const auto dab = DabAt(workspace, at, *width);  // a brush's width is how far it reaches from its middle
    if (!dab) return std::nullopt;
    look.dab = *dab;
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
