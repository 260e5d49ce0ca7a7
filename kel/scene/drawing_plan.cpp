#include "kel/scene/drawing_plan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "kel/scene/gl.h"

namespace kel {
namespace {

// As the unit cube has it, with w beside.
struct Corner {
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 0;
};

// From the lower left corner anticlockwise.
std::array<Corner, 4> CornersOf(const Placement& placement, const Matrix& camera) {
    constexpr std::array<std::array<double, 2>, 4> corners{{{-0.5, -0.5}, {0.5, -0.5}, {0.5, 0.5}, {-0.5, 0.5}}};
    const Matrix m = camera * WorldMatrix(placement);
    std::array<Corner, 4> seen;
    std::ranges::transform(corners, seen.begin(), [&](const std::array<double, 2>& corner) {
        const double x = corner[0] * placement.size[0];
        const double y = corner[1] * placement.size[1];
        const auto row = [&](std::size_t i) { return m[i] * x + m[4 + i] * y + m[12 + i]; };
        const double w = row(3);
        return Corner{row(0) / w, row(1) / w, row(2) / w, w};
    });
    return seen;
}

bool HasArea(const ContainerObject& container) {
    return container.placement.size[0] > 0 && container.placement.size[1] > 0;
}

// Where a picture of this size is seen, when each of its pixels covers one of the window: upright, straight on, within
// the window.
std::optional<FrameArea> PixelPlace(const std::array<Corner, 4>& corners, WindowSize picture, WindowSize window) {
    constexpr double exactness = 1e-6;  // pixels
    const auto pixel = [](double at, std::int32_t side) { return (at + 1) / 2 * side; };
    const double left = std::round(pixel(corners[0].x, window.width));
    const double bottom = std::round(pixel(corners[0].y, window.height));
    const std::array<std::array<double, 2>, 4> wanted{{{left, bottom},
                                                       {left + picture.width, bottom},
                                                       {left + picture.width, bottom + picture.height},
                                                       {left, bottom + picture.height}}};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const bool isThere = corners[i].w > 0 && std::abs(corners[i].z) < 1 &&
                             std::abs(corners[i].z - corners[0].z) < exactness &&
                             std::abs(pixel(corners[i].x, window.width) - wanted[i][0]) < exactness &&
                             std::abs(pixel(corners[i].y, window.height) - wanted[i][1]) < exactness;
        if (!isThere) return std::nullopt;
    }
    const bool isWithin =
        left >= 0 && bottom >= 0 && left + picture.width <= window.width && bottom + picture.height <= window.height;
    if (!isWithin) return std::nullopt;
    return FrameArea{static_cast<std::int32_t>(left), static_cast<std::int32_t>(bottom), picture.width, picture.height};
}

// True: what it asks for may move it, or change which of its pixels count.
bool MayMove(const ContainerObject& container) {
    std::uint32_t mode = GL_MODELVIEW;
    for (const GlCall& call : container.calls.before) {
        using Function = GlCall::Function;
        const bool isOfMatrix = call.function == Function::LoadIdentity || call.function == Function::Translatef ||
                                call.function == Function::Scalef;
        if (isOfMatrix && mode != GL_TEXTURE) return true;
        if (call.function == Function::MatrixMode) mode = call.words[0];
        const bool isSwitch = call.function == Function::Enable || call.function == Function::Disable;
        if (call.IsScissor() || (isSwitch && call.words[0] == GL_DEPTH_TEST)) return true;
    }
    return false;
}

// Nothing of it is as far away as `depth`, with room for how roughly OpenGL counts.
bool IsBefore(const ContainerObject& container, const Matrix& camera, double depth) {
    constexpr double room = 2e-6;
    const auto corners = CornersOf(container.placement, camera);
    return !MayMove(container) &&
           std::ranges::all_of(corners, [&](const Corner& corner) { return corner.w > 0 && corner.z < depth - room; });
}

bool CanCopyTextures() {
    static const bool can = [] {
        GLint major = 0;
        GLint minor = 0;
        glGetIntegerv(GL_MAJOR_VERSION, &major);
        glGetIntegerv(GL_MINOR_VERSION, &minor);
        return glGetError() == GL_NO_ERROR && (major > 4 || (major == 4 && minor >= 3));
    }();
    return can;
}

// The one image that a container without a module shows; null: it is not opaque, or anything is asked besides.
const ImageObject* PlainImage(HostState& state, const ContainerObject& container) {
    constexpr std::int32_t modulate = 0x2100;  // GL_MODULATE
    const auto* texture = state.objects.Find<TextureObject>(container.picture);
    const bool isPlain = container.instance == nullptr && texture != nullptr && texture->environment == modulate &&
                         container.multiTextures == ContainerObject::NoTextures();
    const auto* image = isPlain ? state.objects.Find<ImageObject>(texture->image) : nullptr;
    return image != nullptr && image->isOpaque && image->format == GL_RGBA ? image : nullptr;
}

GLint Environment(GLenum name) {
    GLint value = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, name, &value);
    return value;
}

// True: the active unit makes clear black of clear black, whatever stands before it.
bool KeepsClear() {
    const GLint mode = Environment(GL_TEXTURE_ENV_MODE);
    if (mode == GL_MODULATE) return true;
    return mode == GL_COMBINE && Environment(GL_COMBINE_RGB) == GL_MODULATE &&
           Environment(GL_SOURCE0_RGB) == GL_TEXTURE && Environment(GL_OPERAND0_RGB) == GL_SRC_COLOR &&
           Environment(GL_COMBINE_ALPHA) == GL_MODULATE && Environment(GL_SOURCE0_ALPHA) == GL_TEXTURE &&
           Environment(GL_OPERAND0_ALPHA) == GL_SRC_ALPHA;
}

// True: blending clear black with what is there gives that.
bool BlendingKeepsTarget() {
    GLint factor = 0;
    glGetIntegerv(GL_BLEND_DST, &factor);
    return glIsEnabled(GL_BLEND) == GL_TRUE && (factor == GL_ONE || factor == GL_ONE_MINUS_SRC_ALPHA);
}

}  // namespace

DrawingPlan PlanDrawing(HostState& state, const Matrix& camera) {
    const ContainerObject* first = nullptr;
    DrawingPlan plan;
    int others = 0;
    bool areBefore = CanCopyTextures();
    double depth = 0;
    state.objects.ForEach<ContainerObject>([&](ObjectId id, const ContainerObject& container) {
        if (!HasArea(container)) return;
        if (first != nullptr) {
            ++others;
            areBefore = areBefore && IsBefore(container, camera, depth);
            return;
        }
        first = &container;
        const ImageObject* const image = PlainImage(state, container);
        if (image == nullptr) return;
        const auto corners = CornersOf(container.placement, camera);
        const auto place = PixelPlace(corners, {image->width, image->height}, state.window);
        if (!place) return;
        depth = corners[0].z;
        plan = {id, *place, true};
    });
    if (!areBefore || plan.copied == noObject) return {};
    plan.hasDepth = others > 1;
    return plan;
}

void CopyPlanned(HostState& state, const DrawingPlan& plan, const FrameBuffer& target, const FrameArea& part) {
    const auto* container = state.objects.Find<ContainerObject>(plan.copied);
    const auto* texture = state.objects.Find<TextureObject>(container->picture);
    const auto* image = state.objects.Find<ImageObject>(texture->image);
    const FrameArea copied = Intersection(plan.place, part);
    if (!copied.IsEmpty()) target.Copy(image->texture.Name(), copied.x - plan.place.x, copied.y - plan.place.y, copied);
}

FrameArea ChangedByDrawing(HostState& state, const ContainerObject& container, Look look) {
    const FrameArea window{0, 0, state.window.width, state.window.height};
    if (!BlendingKeepsTarget()) return window;
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    FrameArea changed = window;
    int units = 0;
    for (std::size_t unit = 0; unit < textureUnits; ++unit) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        if (glIsEnabled(GL_TEXTURE_2D) == GL_FALSE) continue;
        ++units;
        const auto* texture = state.objects.Find<TextureObject>(container.TextureOn(unit));
        const auto* image = texture == nullptr ? nullptr : state.objects.Find<ImageObject>(texture->image);
        if (image == nullptr || image->shown.empty() || !KeepsClear()) continue;
        FrameArea seen;
        const bool isHidden = look == Look::Undrawn && container.multiTextures[unit] != noObject;
        if (isHidden || image->inked.IsEmpty())
            changed = {};
        else if (FindSeenArea(*image, {noObject, image->inked}, container.placement, window, seen))
            changed = seen;
    }
    glActiveTexture(static_cast<GLenum>(active));
    return units == 1 ? changed : window;
}

}  // namespace kel
