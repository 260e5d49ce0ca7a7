#include "module/brush_mode.h"

#include "module/image_conversion.h"
#include "module/memory_report.h"

namespace chalkpane {
namespace {

BrushPicture PictureOf(ObjectHandle image) {
    void* data = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t format = 0;
    _api__get_image_data(image.id, &data);
    _api__get_image_size(image.id, &width, &height);
    _api__get_image_format(image.id, &format);
    return {width, height, ConvertImageToRgba(format, width, height, static_cast<const std::uint8_t*>(data))};
}

}  // namespace

void ConfigureBrushes(PluginInstance& instance) {
    if (!instance.telestrator.HasCanvas()) return;
    const TelestratorSettings settings = SettingsOf(instance);
    if (settings.brushType == BrushType::Colour && instance.brushImageHandle.IsValid()) {
        const BrushPicture picture = PictureOf(instance.brushImageHandle);
        instance.telestrator.ConfigureBrushes(settings, &picture);
    } else {
        instance.telestrator.ConfigureBrushes(settings, nullptr);
    }
}

void ApplyBrushMode(PluginInstance& instance) noexcept {
    instance.telestrator.memory.Run([&] { ConfigureBrushes(instance); });
    ReportMemoryFailures(instance);
}

}  // namespace chalkpane
