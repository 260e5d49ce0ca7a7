#include "kel/scene/canvas_picture.h"

#include <utility>

#include "cli/error.h"
#include "kel/scene/gl.h"
#include "kel/scene/scene_renderer.h"

namespace kel {
namespace {

const ImageObject* CanvasImage(HostState& state, const ContainerObject& container) {
    for (const ObjectId id : container.multiTextures) {
        const auto* texture = state.objects.Find<TextureObject>(id);
        auto* image = texture == nullptr ? nullptr : state.objects.Find<ImageObject>(texture->image);
        if (image == nullptr) continue;
        if (image->texture.Name() == 0) BuildTexture(*image);
        return image;
    }
    return nullptr;
}

}  // namespace

picture_io::Picture CanvasPicture(HostState& state, const ContainerObject& container) {
    const ImageObject* image = CanvasImage(state, container);
    if (image == nullptr) throw cli::Error("the container shows no canvas yet");
    picture_io::Picture picture(image->width, image->height);
    const BoundTexture bound(image->texture);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
    return picture_io::Flipped(picture);
}

}  // namespace kel
