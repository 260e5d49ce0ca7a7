#include "module/canvas_texture.h"

#include "module/abi/host_api.h"
#include "module/brush_mode.h"
#include "module/container_mapping.h"
#include "module/gl_constants.h"
#include "module/memory_report.h"

namespace chalkpane {
namespace {

// The host's numbers for its texture settings.
constexpr std::int32_t decalEnvironment = 0x2101;
constexpr std::int32_t optimised = 1;
constexpr std::int32_t finestQuality = 2;
constexpr std::int32_t vertexMapping = 1;

void CreateTexture(PluginInstance& instance) {
    if (instance.canvasTexture.IsValid()) _api__texture_delete_texture(&instance.canvasTexture.id);
    const std::int32_t image =
        _api__create_image(-1, instance.telestrator.canvasWidth, instance.telestrator.canvasHeight, gl::Word(gl::rgba));
    instance.canvasImage.id = image < 0 ? -1 : image;
    _api__rebuild_texture(instance.canvasImage.id);
    _api__texture_create_texture(&instance.canvasTexture.id, instance.canvasImage.id);
    const std::int32_t texture = instance.canvasTexture.id;
    _api__set_texture_env_type(texture, decalEnvironment);
    _api__texture_set_optimize(texture, optimised);
    _api__set_texture_qual_type(texture, finestQuality);
    _api__set_texture_map_type(texture, vertexMapping);
    _api__set_texture_wrap_type(texture, gl::Word(gl::clamp));
    instance.canvasTexture.SetChanged();
}

void DeleteHostObject(ObjectHandle& object, void (*deleteObject)(std::int32_t*)) {
    if (!object.IsValid()) return;
    object.SetChanged();
    deleteObject(&object.id);
    object = ObjectHandle();
}

void UndoCreation(PluginInstance& instance) {
    instance.telestrator.DropCanvas();
    DeleteHostObject(instance.canvasTexture, _api__texture_delete_texture);
    DeleteHostObject(instance.canvasImage, _api__image_delete_image);
    ObjectHandle::OwnContainer().DeleteTexture();
}

}  // namespace

std::int32_t NextUnit(std::int32_t unit) { return TruncateToInt(unit + 1.0); }

bool CreateCanvas(PluginInstance& instance) noexcept {
    Telestrator& telestrator = instance.telestrator;
    const bool created = telestrator.memory.Run([&] {
        telestrator.MakeSurfaces(SettingsOf(instance));
        ConfigureBrushes(instance);
        CreateTexture(instance);
        telestrator.SizeRecognitionBuffers(instance.RecoShapes != 0);
        ReadBoundingBox(instance, ObjectHandle::OwnContainer());
    });
    ReportMemoryFailures(instance);
    if (!created) UndoCreation(instance);
    return created;
}

// KEEP: the unit after the former one keeps the texture.
void ApplyTextureUnit(PluginInstance& instance) {
    const ObjectHandle container = ObjectHandle::OwnContainer();
    const auto bind = [&](std::int32_t unit) { container.SetMultiTexture(unit, instance.canvasTexture); };
    if (instance.lastTexUnit >= 0) container.DeleteMultiTexture(instance.lastTexUnit);
    bind(instance.TexUnit);
    if (instance.TexUnit > 0) {
        container.DeleteMultiTexture(NextUnit(instance.TexUnit));
        bind(NextUnit(instance.TexUnit));
    }
    instance.lastTexUnit = instance.TexUnit;
    instance.telestrator.fullUploadPending = true;
}

}  // namespace chalkpane
