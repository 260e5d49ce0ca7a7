#include "host/canvas_picture.h"

#include <algorithm>

#include "host/error.h"
#include "host/gl.h"
#include "host/scene_renderer.h"

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

void DivideByAlpha(std::vector<std::uint8_t>& rgba) {
    for (std::size_t pixel = 0; pixel < rgba.size(); pixel += 4) {
        const int alpha = rgba[pixel + 3];
        if (alpha == 0) continue;
        for (std::size_t channel = pixel; channel < pixel + 3; ++channel)
            rgba[channel] = static_cast<std::uint8_t>(std::min(255, (rgba[channel] * 255 + alpha / 2) / alpha));
    }
}

}  // namespace

Picture CanvasPicture(HostState& state, const ContainerObject& container, AlphaForm form) {
    const ImageObject* image = CanvasImage(state, container);
    if (image == nullptr) throw Error("the container shows no canvas yet");
    Picture picture(image->width, image->height);
    const BoundTexture bound(image->texture);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.rgba.data());
    if (form == AlphaForm::Straight) DivideByAlpha(picture.rgba);
    return Flipped(picture);
}

}  // namespace kel
