#include "chalkpane/brush/brush_choices.h"
#include "telestrator/telestrator.h"

namespace chalkpane {
namespace {

constexpr auto distanceSpacing = static_cast<std::int32_t>(SpacingType::Shorten);
constexpr double brushSpacing = 0.15;  // of the brush's diameter

// What the operator sets as a width is the radius of a dab.
void ConfigureStroke(TelestratorSurface& surface, std::int32_t radius) {
    surface.SetSpacingMode(distanceSpacing);
    surface.SetBrushSpacing(brushSpacing);
    surface.SetBrushWidth(radius);
    // The brush takes a changed source up one pass late, so this last pass is needed.
    surface.ApplyBrushSettings();
}

void ConfigureEraser(TelestratorSurface& surface, std::int32_t radius) {
    surface.ResetBrushImage();
    surface.SetEraseSource();
    surface.SetMatchPath(false);
    ConfigureStroke(surface, radius);
}

void ConfigureColour(TelestratorSurface& surface, std::int32_t radius) {
    surface.ResetBrushImage();
    surface.SetMatchPath(false);
    surface.SetColourSource();
    ConfigureStroke(surface, radius);
}

void ConfigurePicture(TelestratorSurface& surface, const BrushPicture& picture, std::int32_t radius) {
    surface.SetColourSource();
    if (picture.pixels != nullptr) surface.LoadBrushImage(picture.width, picture.height, picture.pixels);
    surface.SetMatchPath(false);
    ConfigureStroke(surface, radius);
}

}  // namespace

void Telestrator::ConfigureBrushes(const TelestratorSettings& settings, const BrushPicture* picture) {
    if (!HasCanvas()) return;
    switch (settings.brushType) {
        case BrushType::Colour:
            if (picture != nullptr) {
                // KEEP: the shape surface keeps its former brush; shapes are not drawn with a brush image.
                ConfigurePicture(*canvasSurface, *picture, settings.brushWidth);
            } else {
                ConfigureColour(*canvasSurface, settings.brushWidth);
                ConfigureColour(*shapeSurface, settings.brushWidth);
            }
            break;
        case BrushType::Eraser:
            ConfigureEraser(*canvasSurface, settings.eraserWidth);
            ConfigureEraser(*shapeSurface, settings.eraserWidth);
            break;
    }
}

bool Telestrator::ApplyBrushMode(const TelestratorSettings& settings, const BrushPicture* picture) noexcept {
    return memory.Run([&] { ConfigureBrushes(settings, picture); });
}

// Remembers the value once both surfaces have it.
void Telestrator::SetWidth(std::int32_t width, std::int32_t& lastWidth) noexcept {
    if (width == lastWidth) return;
    const bool applied = memory.Run([&] {
        canvasSurface->SetBrushWidth(width);
        shapeSurface->SetBrushWidth(width);
    });
    if (applied) lastWidth = width;
}

void Telestrator::FollowSettings(const TelestratorSettings& settings) noexcept {
    if (!HasCanvas()) return;
    if (settings.brushType == BrushType::Colour) SetWidth(settings.brushWidth, lastBrushWidth);
    if (settings.brushType == BrushType::Eraser) SetWidth(settings.eraserWidth, lastEraserWidth);
    if (settings.brushColour == lastBrushColor) return;
    const Colour colour = CanvasColour(settings.brushColour);
    const bool applied = memory.Run([&] {
        for (TelestratorSurface* surface : {canvasSurface.get(), shapeSurface.get()}) {
            surface->SetBrushColour(colour.red, colour.green, colour.blue);
        }
    });
    if (applied) lastBrushColor = settings.brushColour;
}

}  // namespace chalkpane
