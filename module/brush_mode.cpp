#include "module/brush_mode.h"

#include "module/image_conversion.h"
#include "module/memory_guard.h"

namespace chalkpane {
namespace {

constexpr std::int32_t distanceSpacing = 2;
constexpr double brushSpacing = 0.15;  // of the brush's diameter

void ConfigureStroke(TelestratorSurface& surface, std::int32_t width) {
    surface.SetSpacingMode(distanceSpacing);
    surface.SetBrushSpacing(brushSpacing);
    surface.SetBrushWidth(width);
    // The brush takes a changed source up one pass late, so this last pass is needed.
    surface.ApplyBrushSettings();
}

void ConfigureEraser(TelestratorSurface& surface, std::int32_t width) {
    surface.ResetBrushImage();
    surface.SetEraseSource();
    surface.SetMatchPath(false);
    ConfigureStroke(surface, width);
}

void ConfigureColour(TelestratorSurface& surface, std::int32_t width) {
    surface.ResetBrushImage();
    surface.SetMatchPath(false);
    surface.SetColourSource();
    ConfigureStroke(surface, width);
}

void ConfigureImage(TelestratorSurface& surface, ObjectHandle image, std::int32_t width) {
    void* data = nullptr;
    std::int32_t imageWidth = 0;
    std::int32_t imageHeight = 0;
    std::int32_t format = 0;
    _api__get_image_data(image.id, &data);
    _api__get_image_size(image.id, &imageWidth, &imageHeight);
    _api__get_image_format(image.id, &format);
    const std::uint8_t* pixels =
        ConvertImageToRgba(format, imageWidth, imageHeight, static_cast<const std::uint8_t*>(data));
    surface.SetColourSource();
    if (pixels != nullptr) surface.LoadBrushImage(imageWidth, imageHeight, pixels);
    surface.SetMatchPath(false);
    ConfigureStroke(surface, width);
}

}  // namespace

void ConfigureBrushes(PluginInstance& instance) {
    if (!instance.canvasSurface) return;
    switch (instance.BrushType) {
        case 0:
            if (instance.brushImageHandle.IsValid()) {
                // KEEP: the shape surface keeps its former brush; shapes are not drawn with a brush image.
                ConfigureImage(*instance.canvasSurface, instance.brushImageHandle, instance.BrushWidth);
            } else {
                ConfigureColour(*instance.canvasSurface, instance.BrushWidth);
                ConfigureColour(*instance.shapeSurface, instance.BrushWidth);
            }
            break;
        case 1:
            ConfigureEraser(*instance.canvasSurface, instance.EraserWidth);
            ConfigureEraser(*instance.shapeSurface, instance.EraserWidth);
            break;
        default:
            break;
    }
}

void ApplyBrushMode(PluginInstance& instance) noexcept {
    WithinMemory([&] { ConfigureBrushes(instance); });
}

}  // namespace chalkpane
