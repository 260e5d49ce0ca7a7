#include "kel/scene/scene_renderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "kel/scene/drawing_plan.h"
#include "kel/scene/gl.h"
#include "kel/scene/image_texture.h"
#include "kel/scene/matrix.h"
#include "kel/scene/picking.h"
#include "kel/scene/seen_size.h"
#include "kel/scene/substituted_canvas.h"

namespace kel {
namespace {

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

void SetSampling(const TextureObject& texture, bool hasMipmaps) {
    const GLint filter = texture.quality == 0 ? GL_NEAREST : GL_LINEAR;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, hasMipmaps ? GL_LINEAR_MIPMAP_LINEAR : filter);
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

// True: smaller copies of the bound image are needed, which then are there. What a module does with a container's
// matrices nobody knows beforehand.
bool PrepareMipmaps(HostState& state, const ContainerObject& container, const Matrix& camera, ImageObject& image) {
    if (!image.mipmaps) return false;
    const ImageSize window{state.window.width, state.window.height};
    if (container.instance == nullptr && !IsSeenSmall({image.width, image.height}, container.placement, camera, window))
        return false;
    if (image.areMipmapsStale) glGenerateMipmap(GL_TEXTURE_2D);
    image.areMipmapsStale = false;
    return true;
}

// Shows the unit's texture spread over the whole rectangle, until the module says otherwise.
void BindUnit(HostState& state, const ContainerObject& container, std::size_t unit, const Matrix& camera, Look look) {
    const auto* texture = state.objects.Find<TextureObject>(container.TextureOn(unit));
    auto* image = texture == nullptr ? nullptr : state.objects.Find<ImageObject>(texture->image);
    if (image == nullptr) return;
    if (image->texture.Name() == 0) BuildTexture(*image);
    glActiveTexture(UnitName(unit));
    glEnable(GL_TEXTURE_2D);
    const bool isDrawing = container.multiTextures[unit] != noObject;
    const bool isHidden = isDrawing && look == Look::Undrawn;
    glBindTexture(GL_TEXTURE_2D, isHidden ? ClearImage(state).texture.Name() : image->texture.Name());
    SetSampling(*texture, !isHidden && PrepareMipmaps(state, container, camera, *image));
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
    for (std::size_t unit = 0; unit < textureUnits; ++unit) BindUnit(state, container, unit, camera, look);
    glActiveTexture(UnitName(0));
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(camera.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(WorldMatrix(container.placement).data());
}

void CallRender(HostState& state, Instance& instance, Callback which, RenderCallback EntryPoints::*entry,
                std::vector<GlCall>* noted) {
    if (noted != nullptr) noted->clear();
    std::vector<GlCall>* const notingBefore = std::exchange(state.noting, noted);
    // What the word and the float mean is the host's business; this one has nothing to say by them.
    state.CallInstance(instance, which, [&](const EntryPoints& module, chalkpane::PluginInstance* block) {
        (module.*entry)(block, 0, 0);
    });
    state.noting = notingBefore;
    if (glGetError() == GL_NO_ERROR) return;
    state.wrongUses.Report(WrongUse::OpenGlRefused, "OpenGL refused what was asked for in a render callback");
    while (glGetError() != GL_NO_ERROR) continue;
}

void Repeat(const std::vector<GlCall>& calls) {
    for (const GlCall& call : calls) call.Do();
}

// One way through the scene.
struct Pass {
    Matrix camera;
    Look look = Look::AsItIs;
    bool draws = true;
    bool repeats = false;             // what the callbacks asked of OpenGL last, in place of the callbacks
    const FrameArea* part = nullptr;  // null: all of the picture
    DrawingPlan plan{};
    FrameArea* drawn = nullptr;  // grows by what the drawing without depth changes of the window at all; null: untold
};

void Limit(const FrameArea& part) {
    glEnable(GL_SCISSOR_TEST);
    glScissor(part.x, part.y, part.width, part.height);
}

void RunBefore(HostState& state, ContainerObject& container, const Pass& pass) {
    if (pass.repeats) return Repeat(container.calls.before);
    CallRender(state, *container.instance, Callback::PreRender, &EntryPoints::preRender,
               pass.look == Look::AsItIs ? &container.calls.before : nullptr);
    if (container.substitute != nullptr) ShowSubstitute(state, container);
}

void RunAfter(HostState& state, ContainerObject& container, const Pass& pass) {
    if (pass.repeats) return Repeat(container.calls.after);
    CallRender(state, *container.instance, Callback::PostRender, &EntryPoints::postRender,
               pass.look == Look::AsItIs ? &container.calls.after : nullptr);
}

// Where on this container, which is about to be drawn, what was uploaded is seen.
void FindUploads(HostState& state, const ContainerObject& container) {
    const FrameArea window{0, 0, state.window.width, state.window.height};
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    for (UploadedPart& part : state.changes.Uploads())
        for (std::size_t unit = 0; unit < textureUnits; ++unit) {
            const auto* texture = state.objects.Find<TextureObject>(container.TextureOn(unit));
            if (texture == nullptr || texture->image != part.image) continue;
            const auto* image = state.objects.Find<ImageObject>(part.image);
            glActiveTexture(UnitName(unit));
            FrameArea seen;
            if (image == nullptr || !FindSeenArea(*image, part, container.placement, window, seen))
                state.changes.AddEverything();
            state.changes.AddArea(seen);
            ++part.places;
        }
    glActiveTexture(static_cast<GLenum>(active));
}

// What was uploaded when a container that shows it had had its turn already is seen at the next one.
void FinishUploads(HostState& state) {
    for (const UploadedPart& part : state.changes.Uploads()) {
        int places = 0;
        state.objects.ForEach<ContainerObject>([&](ObjectId, const ContainerObject& container) {
            for (std::size_t unit = 0; unit < textureUnits; ++unit) {
                const auto* texture = state.objects.Find<TextureObject>(container.TextureOn(unit));
                if (texture != nullptr && texture->image == part.image) ++places;
            }
        });
        if (places != part.places) state.changes.AddEverything();
    }
    state.changes.ForgetUploads();
}

FrameArea WholeWindow(const HostState& state) { return {0, 0, state.window.width, state.window.height}; }

void DrawContainer(HostState& state, const ContainerObject& container, const Pass& pass) {
    if (pass.plan.hasDepth) return DrawRectangle(container.placement.size);
    glDisable(GL_DEPTH_TEST);
    const FrameArea limit = pass.part != nullptr ? *pass.part : WholeWindow(state);
    const FrameArea anywhere = ChangedByDrawing(state, container, pass.look);
    if (pass.drawn != nullptr) *pass.drawn = Union(*pass.drawn, anywhere);
    const FrameArea changed = Intersection(anywhere, limit);
    if (changed.IsEmpty()) return;
    if (changed != limit) Limit(changed);
    DrawRectangle(container.placement.size);
}

void RenderContainer(HostState& state, ObjectId id, ContainerObject& container, const Pass& pass) {
    Prepare(state, container, pass.camera, pass.look);
    if (pass.part != nullptr) Limit(*pass.part);
    if (container.instance != nullptr) RunBefore(state, container, pass);
    const bool hasArea = container.placement.size[0] > 0 && container.placement.size[1] > 0;
    if (pass.look == Look::AsItIs && !pass.repeats && !state.changes.Uploads().empty()) FindUploads(state, container);
    if (pass.draws && hasArea && id != pass.plan.copied) DrawContainer(state, container, pass);
    if (container.instance != nullptr) RunAfter(state, container, pass);
}

// In black and in white a picture that covers its place is what the target is cleared with.
bool ShowsPictures(Look look) { return look == Look::AsItIs || look == Look::Undrawn; }

void ClearFor(HostState& state, const FrameBuffer& target, const Pass& pass) {
    const bool isCovered = ShowsPictures(pass.look) && !pass.plan.hasDepth && pass.plan.place == WholeWindow(state);
    if (isCovered) return target.Bind();
    target.BindAndClear(pass.look == Look::White ? 1 : 0);
}

void RunPlannedPass(HostState& state, const FrameBuffer& target, const Pass& pass) {
    ResetState(pass.look);
    if (pass.part != nullptr) Limit(*pass.part);
    // Without a picture to draw the clearing goes too: every upload would wait for it.
    if (pass.draws) {
        ClearFor(state, target, pass);
    } else {
        target.Bind();
    }
    state.objects.ForEach<ContainerObject>([&](ObjectId id, ContainerObject& container) {
        RenderContainer(state, id, container, pass);
        if (id == pass.plan.copied && ShowsPictures(pass.look))
            CopyPlanned(state, pass.plan, target, pass.part != nullptr ? *pass.part : WholeWindow(state));
    });
}

// What an overlay may be made by: where all drawings are, when the plan has told that.
void NoteDrawn(HostState& state, const Pass& pass, bool isTold) {
    state.overlay.inked = isTold ? *pass.drawn : WholeWindow(state);
    state.overlay.copied = isTold ? pass.plan.copied : noObject;
}

// Draws with as little as gives the same pixels. What modules ask for meanwhile may need more: then all is drawn again.
void RunPass(HostState& state, const FrameBuffer& target, Pass pass) {
    FrameArea drawn;
    if (pass.draws && state.redraws != Redraw::Whole) {
        pass.plan = PlanDrawing(state, pass.camera);
        if (!pass.plan.hasDepth) pass.drawn = &drawn;
    }
    RunPlannedPass(state, target, pass);
    if (!pass.draws) return;
    const bool isMore = !pass.repeats && pass.plan.LeavesOut() && PlanDrawing(state, pass.camera) != pass.plan;
    if (pass.look == Look::AsItIs) NoteDrawn(state, pass, pass.drawn != nullptr && !isMore);
    if (!isMore) return;
    pass.repeats = true;
    pass.plan = {};
    pass.drawn = nullptr;
    RunPlannedPass(state, target, pass);
}

// True: what modules ask of OpenGL is what the picture was drawn with.
bool AreCallsAsDrawn(HostState& state) {
    bool areEqual = true;
    state.objects.ForEach<ContainerObject>([&](ObjectId, const ContainerObject& container) {
        areEqual = areEqual && container.calls == container.drawnCalls &&
                   std::ranges::none_of(container.calls.before, &GlCall::IsScissor);
    });
    return areEqual;
}

// Beyond half of the window a part costs more than all.
bool IsLarge(const FrameArea& part, const FrameArea& window) {
    return std::int64_t{2} * part.width * part.height > std::int64_t{1} * window.width * window.height;
}

void NotePicture(HostState& state, const FrameArea& changed) {
    state.objects.ForEach<ContainerObject>(
        [&](ObjectId, ContainerObject& container) { container.drawnCalls = container.calls; });
    state.changedArea = Union(state.changedArea, changed);
    state.overlay.stale = Union(state.overlay.stale, changed);
    ++state.pictureNumber;
}

// The modules upload first, and what they upload is found in the window; then that part of it is drawn as they asked.
void DrawChanges(HostState& state, Pass pass) {
    pass.draws = false;
    RunPass(state, *state.frame, pass);
    FinishUploads(state);
    if (!AreCallsAsDrawn(state)) state.changes.AddEverything();
    const FrameArea window = WholeWindow(state);
    const FrameArea part = state.changes.Area();
    const bool isWhole = state.changes.IsEverything() || IsLarge(part, window);
    state.changes.Forget();
    if (!isWhole && part.IsEmpty()) return;
    pass.draws = true;
    pass.repeats = true;
    if (!isWhole) pass.part = &part;
    RunPass(state, *state.frame, pass);
    while (glGetError() != GL_NO_ERROR) continue;  // told when it was asked for first
    NotePicture(state, isWhole ? window : part);
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
    RunPass(state, target, {CurrentCameraMatrix(state), look, state.drawing});
}

void DrawAgain(HostState& state, const FrameBuffer& target, Look look, const FrameArea& part) {
    const FrameArea* const limit = part == WholeWindow(state) ? nullptr : &part;
    RunPass(state, target, {CurrentCameraMatrix(state), look, true, true, limit});
    while (glGetError() != GL_NO_ERROR) continue;  // told when it was asked for first
}

void RunRenderCallbacks(HostState& state, ContainerObject& container) {
    ResetState(Look::AsItIs);
    state.frame->Bind();
    RenderContainer(state, noObject, container, {CurrentCameraMatrix(state), Look::AsItIs, false});
    FinishUploads(state);
}

void RenderField(HostState& state) {
    const Pass pass{CurrentCameraMatrix(state), Look::AsItIs, state.drawing};
    const bool isWhole = state.changes.IsEverything() || state.redraws == Redraw::Whole;
    if (state.drawing && !isWhole) return DrawChanges(state, pass);
    if (state.drawing) state.changes.Forget();  // what changes in the midst of the pass waits for the next one
    RunPass(state, *state.frame, pass);
    FinishUploads(state);
    if (!state.drawing) {
        // What ReadOverlay would answer changes without the picture.
        if (state.changes.IsEverything() || !state.changes.Area().IsEmpty()) ++state.pictureNumber;
        return;
    }
    state.changes.ForgetArea();
    if (!AreCallsAsDrawn(state)) state.changes.AddCalls();
    NotePicture(state, WholeWindow(state));
}

void DrawFieldAgain(HostState& state) {
    DrawAgain(state, *state.frame, Look::AsItIs, WholeWindow(state));
    state.changedArea = WholeWindow(state);
    state.overlay.stale = WholeWindow(state);
    ++state.pictureNumber;
}

}  // namespace kel
