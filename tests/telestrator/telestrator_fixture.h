#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "telestrator/telestrator.h"

namespace chalkpane::testing {

using Pixels = std::vector<std::byte>;

inline Pixels PixelsOf(const TelestratorSurface& surface) {
    const CanvasPixels pixels = surface.GetPixels();
    return {pixels.bytes, pixels.bytes + pixels.byteSize};
}

inline bool IsBlank(const TelestratorSurface& surface) {
    const CanvasPixels pixels = surface.GetPixels();
    for (std::size_t i = 0; i < pixels.byteSize; ++i) {
        if (pixels.bytes[i] != std::byte{0}) return false;
    }
    return true;
}

// Alpha at canvas pixel (x, y), y from the top.
inline int AlphaAt(const TelestratorSurface& surface, std::int32_t x, std::int32_t y) {
    return surface.canvas->GetPixel8(x, y).alpha;
}

// A blank surface with the same brush settings as a telestrator's in colour mode.
inline std::unique_ptr<TelestratorSurface> ReferenceSurface(std::int32_t width) {
    auto surface = std::make_unique<TelestratorSurface>();
    surface->CreateCanvasImage(canvasSize, canvasSize);
    surface->SetBrushWidth(width);
    surface->SetBrushColour(0, 0, 0);
    return surface;
}

// One stroke through all of them.
inline void PaintVertices(TelestratorSurface& surface, std::span<const Vector3> vertices) {
    surface.BeginStroke(vertices.front().x, vertices.front().y, 1.0);
    for (const Vector3& vertex : vertices.subspan(1, vertices.size() - 2))
        surface.ContinueStroke(vertex.x, vertex.y, 1.0);
    surface.EndStroke(vertices.back().x, vertices.back().y, 1.0);
}

// Every recogniser on, and a finish two fields after the release.
inline TelestratorSettings RecognisingSettings() {
    TelestratorSettings settings;
    settings.recogniseShapes = true;
    settings.recogniseCircle = true;
    settings.shapeDelay = 2;
    settings.maxUndos = 3;
    settings.arrow = false;
    return settings;
}

// A telestrator without any host, and the settings that it is driven with.
class TelestratorFixture {
public:
    explicit TelestratorFixture(const TelestratorSettings& values = {}) : settings(values) {}

    bool Field() { return telestrator.Field(settings); }
    void Fields(int count) {
        for (int i = 0; i < count; ++i) Field();
    }
    Rect Press(double x, double y) { return telestrator.Press(settings, {x, y}); }
    Rect Release(double x, double y) { return telestrator.Release(settings, {x, y}); }
    // The pointer goes there and a field passes.
    Rect Move(double x, double y) {
        const Rect changed = telestrator.Move(settings, {x, y});
        Field();
        return changed;
    }
    [[nodiscard]] ShapeInput Input() { return telestrator.RecognitionInput(settings); }

    TelestratorSettings settings;
    Telestrator telestrator;
};

}  // namespace chalkpane::testing
