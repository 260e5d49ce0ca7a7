#include "kel/scene/scene_renderer.h"

#include <array>
#include <cmath>

#include "kel/scene/gl.h"
#include "kel/scene/matrix.h"
#include "kel/scene/picking.h"

namespace kel {
namespace {

// A container's own coordinates divided by this are its texture coordinates, on all units.
constexpr double coordinatesPerTexture = 100.0;

// What OpenGL starts with; modules set it and nobody puts it back.
constexpr std::array<std::pair<GLenum, GLenum>, 15> plainEnvironment{{
    {GL_TEXTURE_ENV_MODE, GL_MODULATE},
    {GL_COMBINE_RGB, GL_MODULATE},
    {GL_COMBINE_ALPHA, GL_MODULATE},
    {GL_SOURCE0_RGB, GL_TEXTURE},
    {GL_SOURCE1_RGB, GL_PREVIOUS},
    {GL_SOURCE2_RGB, GL_CONSTANT},
    {GL_SOURCE0_ALPHA, GL_TEXTURE},
    {GL_SOURCE1_ALPHA, GL_PREVIOUS},
    {GL_SOURCE2_ALPHA, GL_CONSTANT},
    {GL_OPERAND0_RGB, GL_SRC_COLOR},
    {GL_OPERAND1_RGB, GL_SRC_COLOR},
    {GL_OPERAND2_RGB, GL_SRC_ALPHA},
    {GL_OPERAND0_ALPHA, GL_SRC_ALPHA},
    {GL_OPERAND1_ALPHA, GL_SRC_ALPHA},
    {GL_OPERAND2_ALPHA, GL_SRC_ALPHA},
}};

// Half a level sharper than OpenGL would take it: a picture seen straight on at its own size keeps every pixel, and one
// that leans away does not blur before it has to. (Anisotropic filters would be sharper still, but do not keep the
// pixels.)
constexpr GLfloat sharpening = -0.5F;

GLenum UnitName(std::size_t unit) { return GL_TEXTURE0 + static_cast<GLenum>(unit); }

void ResetUnit(std::size_t unit) {
    glActiveTexture(UnitName(unit));
    glBindTexture(GL_TEXTURE_2D, 0);
    glDisable(GL_TEXTURE_2D);
    for (const auto& [name, value] : plainEnvironment) glTexEnvi(GL_TEXTURE_ENV, name, static_cast<GLint>(value));
    const std::array<GLfloat, 4> noColour{};
    glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, noColour.data());
    glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE, 1);
    glTexEnvf(GL_TEXTURE_ENV, GL_ALPHA_SCALE, 1);
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
}

void SetSampling(const TextureObject& texture, const ImageObject& image) {
    const GLint filter = texture.quality == 0 ? GL_NEAREST : GL_LINEAR;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, image.mipmaps ? GL_LINEAR_MIPMAP_LINEAR : filter);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_LOD_BIAS, sharpening);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, texture.wrap);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, texture.wrap);
}

const ImageObject& ClearImage(HostState& state) {
    ImageObject& image = state.clearImage;
    if (image.texture.Name() != 0) return image;
    image.width = 1;
    image.height = 1;
    image.format = GL_RGBA;
    image.pixels.assign(4, 0);
    BuildTexture(image);
    return image;
}

// The container's plain colour with the texture's alpha.
void ShowAlphaAlone() {
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE);
    glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB, GL_REPLACE);
    glTexEnvi(GL_TEXTURE_ENV, GL_SOURCE0_RGB, GL_PREVIOUS);
}

// Shows the unit's texture spread over the whole rectangle, until the module says otherwise.
void BindUnit(HostState& state, const ContainerObject& container, std::size_t unit, Look look) {
    const auto* texture = state.objects.Find<TextureObject>(container.TextureOn(unit));
    auto* image = texture == nullptr ? nullptr : state.objects.Find<ImageObject>(texture->image);
    if (image == nullptr) return;
    if (image->texture.Name() == 0) BuildTexture(*image);
    glActiveTexture(UnitName(unit));
    glEnable(GL_TEXTURE_2D);
    const bool isDrawing = container.multiTextures[unit] != noObject;
    const ImageObject& shown = isDrawing && look == Look::Undrawn ? ClearImage(state) : *image;
    glBindTexture(GL_TEXTURE_2D, shown.texture.Name());
    SetSampling(*texture, shown);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, texture->environment);
    if (!isDrawing && (look == Look::Black || look == Look::White)) ShowAlphaAlone();
    glMatrixMode(GL_TEXTURE);
    glTranslated(0.5, 0.5, 0);
    glScaled(coordinatesPerTexture / container.placement.size[0], coordinatesPerTexture / container.placement.size[1],
             1);
}

void DrawRectangle(const std::array<double, 2>& size) {
    constexpr std::array<std::array<double, 2>, 4> corners{{{-0.5, -0.5}, {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}}};
    glBegin(GL_QUADS);
    for (const auto& corner : corners) {
        const double x = corner[0] * size[0];
        const double y = corner[1] * size[1];
        for (std::size_t unit = 0; unit < textureUnits; ++unit)
            glMultiTexCoord2d(UnitName(unit), x / coordinatesPerTexture, y / coordinatesPerTexture);
        glVertex2d(x, y);
    }
    glEnd();
}

void Prepare(HostState& state, const ContainerObject& container, const Matrix& camera, Look look) {
    ResetState(look);
    for (std::size_t unit = 0; unit < textureUnits; ++unit) BindUnit(state, container, unit, look);
    glActiveTexture(UnitName(0));
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(camera.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(WorldMatrix(container.placement).data());
}

void CallRender(HostState& state, Instance& instance, Callback which, RenderCallback EntryPoints::*entry) {
    // What the word and the float mean is the host's business; this one has nothing to say by them.
    state.CallInstance(instance, which, [&](const EntryPoints& module, chalkpane::PluginInstance* block) {
        (module.*entry)(block, 0, 0);
    });
    if (glGetError() == GL_NO_ERROR) return;
    state.wrongUses.Report(WrongUse::OpenGlRefused, "OpenGL refused what was asked for in a render callback");
    while (glGetError() != GL_NO_ERROR) continue;
}

void RenderContainer(HostState& state, ContainerObject& container, const Matrix& camera, Look look) {
    Prepare(state, container, camera, look);
    Instance* instance = container.instance.get();
    if (instance != nullptr) CallRender(state, *instance, Callback::PreRender, &EntryPoints::preRender);
    const bool hasArea = container.placement.size[0] > 0 && container.placement.size[1] > 0;
    if (state.drawing && hasArea) DrawRectangle(container.placement.size);
    if (instance != nullptr) CallRender(state, *instance, Callback::PostRender, &EntryPoints::postRender);
}

}  // namespace

void ResetState(Look look) {
    for (std::size_t unit = 0; unit < textureUnits; ++unit) ResetUnit(unit);
    glActiveTexture(UnitName(0));
    glMatrixMode(GL_MODELVIEW);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_STENCIL_TEST);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_ALPHA_TEST);  // what is wholly clear leaves no depth behind
    glAlphaFunc(GL_GREATER, 0);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const GLfloat grey = look == Look::Black ? 0 : 1;
    glColor4f(grey, grey, grey, 1);
}

void RenderScene(HostState& state, const FrameBuffer& target, Look look) {
    const Matrix camera = CurrentCameraMatrix(state);
    ResetState(look);
    // Without a picture to draw the clearing goes too: every upload would wait for it.
    if (state.drawing) {
        target.BindAndClear(look == Look::White ? 1 : 0);
    } else {
        target.Bind();
    }
    state.objects.ForEach<ContainerObject>(
        [&](ObjectId, ContainerObject& container) { RenderContainer(state, container, camera, look); });
}

void BuildTexture(ImageObject& image) {
    if (image.texture.Name() == 0) image.texture = GlTexture::Generate();
    const BoundTexture bound(image.texture);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(image.format), image.width, image.height, 0, image.format,
                 GL_UNSIGNED_BYTE, image.pixels.data());
    if (image.mipmaps) glGenerateMipmap(GL_TEXTURE_2D);
    glPopClientAttrib();
}

ImageObject MakeImage(const picture_io::Picture& picture) {
    ImageObject image;
    image.width = picture.width;
    image.height = picture.height;
    image.format = GL_RGBA;
    image.pixels = picture_io::Flipped(picture).rgba;
    image.mipmaps = true;
    return image;
}

}  // namespace kel
