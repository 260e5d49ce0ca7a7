#include "module/abi/host_api.h"
#include "module/canvas_texture.h"
#include "module/gl_constants.h"
#include "module/texture_combiners.h"

namespace chalkpane {
namespace {

void UploadRect(const PluginInstance& instance, const Rect& changed, const std::byte* pixels, std::int32_t width) {
    if (!changed.IsValid()) return;
    // y grows upward and memory begins at the top.
    const std::int32_t row = instance.telestrator.canvasHeight - changed.y1 - 1;
    const auto firstPixel =
        static_cast<std::size_t>(row) * static_cast<std::size_t>(width) + static_cast<std::size_t>(changed.x0);
    // The row length lets the host read the region out of the canvas without a copy.
    kelGL_glPixelStorei(gl::unpackRowLength, width);
    _api__image_subtexload(instance.canvasImage.id, -1, changed.x0, row, changed.Width(), changed.Height(),
                           gl::Word(gl::rgba), gl::Word(gl::unsignedByte), pixels + firstPixel * 4);
    kelGL_glPixelStorei(gl::unpackRowLength, 0);
}

void SetCombiners(const PluginInstance& instance) {
    kelGL_glActiveTexture(instance.TexUnit);
    if (instance.TexUnit <= 0) {
        SetCombiner(instance.Transparent != 0 ? Combiner::StrokesCutByBase : Combiner::StrokesOverBase);
        return;
    }
    SetCombiner(Combiner::CoverPrevious);
    kelGL_glActiveTexture(NextUnit(instance.TexUnit));
    SetCombiner(Combiner::AddStrokes);
}

// The host's texture coordinates are the container's own, divided by 100 and centred: this spreads the canvas over the
// box last read.
void SetTextureMatrix(const PluginInstance& instance, std::int32_t unit) {
    kelGL_glActiveTexture(unit);
    kelGL_glMatrixMode(gl::texture);
    kelGL_glLoadIdentity();
    kelGL_glTranslatef(0.5F, 0.5F, 0);
    kelGL_glScalef(static_cast<float>(100 / (double{instance.boxMaxX} - instance.boxMinX)),
                   static_cast<float>(100 / (double{instance.boxMaxY} - instance.boxMinY)), 1);
    kelGL_glMatrixMode(gl::modelView);
}

// The strokes alone are to be seen: the container is blended against the scene behind it.
bool BlendsAgainstScene(const PluginInstance& instance) { return instance.Transparent != 0 && instance.TexUnit == 0; }

void SaveAndSetBlending(PluginInstance& instance) {
    kelGL_glGetIntegerv(gl::blend, &instance.savedBlendEnabled);
    kelGL_glGetIntegerv(gl::alphaTest, &instance.savedAlphaTestEnabled);
    kelGL_glGetIntegerv(gl::blendSource, &instance.savedBlendSrc);
    kelGL_glGetIntegerv(gl::blendDestination, &instance.savedBlendDst);
    kelGL_glDisable(gl::alphaTest);
    kelGL_glEnable(gl::blend);
    kelGL_glBlendFunc(gl::one, gl::oneMinusSourceAlpha);
}

}  // namespace

void UploadCanvas(PluginInstance& instance, const std::byte* pixels, std::int32_t width, std::int32_t height) {
    const Telestrator::Change change = instance.telestrator.TakeChange();
    if (!change.whole) {
        UploadRect(instance, change.rect, pixels, width);
        return;
    }
    _api__image_subtexload(instance.canvasImage.id, -1, 0, 0, width, height, gl::Word(gl::rgba),
                           gl::Word(gl::unsignedByte), pixels);
}

bool PreRender(PluginInstance& instance) {
    Telestrator& telestrator = instance.telestrator;
    if (!telestrator.HasCanvas()) return false;
    telestrator.Commit();
    if (instance.canvasTexture.IsValid() && instance.canvasImage.IsValid()) {
        SetCombiners(instance);
        const CanvasPixels pixels = telestrator.canvasSurface->GetPixels();
        UploadCanvas(instance, pixels.bytes, pixels.width, pixels.height);
        SetTextureMatrix(instance, instance.TexUnit);
        SetTextureMatrix(instance, NextUnit(instance.TexUnit));
        kelGL_glActiveTexture(0);
    }
    if (BlendsAgainstScene(instance)) SaveAndSetBlending(instance);
    return true;
}

void PostRender(PluginInstance& instance) {
    if (!BlendsAgainstScene(instance) || !instance.telestrator.HasCanvas()) return;
    if (instance.savedBlendEnabled == 0) kelGL_glDisable(gl::blend);
    if (instance.savedAlphaTestEnabled != 0) kelGL_glEnable(gl::alphaTest);
    kelGL_glBlendFunc(static_cast<std::uint32_t>(instance.savedBlendSrc),
                      static_cast<std::uint32_t>(instance.savedBlendDst));
}

}  // namespace chalkpane
