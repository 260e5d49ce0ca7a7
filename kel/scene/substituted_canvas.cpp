#include "kel/scene/substituted_canvas.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "kel/scene/gl.h"
#include "kel/scene/image_texture.h"
#include "kel/scene/stored_upload.h"

namespace kel {
namespace {

ObjectId CanvasImageId(HostState& state, const ContainerObject& container) {
    for (const ObjectId id : container.multiTextures) {
        const auto* texture = state.objects.Find<TextureObject>(id);
        if (texture != nullptr && state.objects.Find<ImageObject>(texture->image) != nullptr) return texture->image;
    }
    return noObject;
}

FrameArea Inside(const FrameArea& area, const ImageObject& image) {
    const std::int32_t left = std::max(area.x, 0);
    const std::int32_t bottom = std::max(area.y, 0);
    return {left, bottom, std::min(area.x + area.width, image.width) - left,
            std::min(area.y + area.height, image.height) - bottom};
}

}  // namespace

ImageObject* CanvasImage(HostState& state, const ContainerObject& container) {
    auto* image = state.objects.Find<ImageObject>(CanvasImageId(state, container));
    if (image != nullptr && image->texture.Name() == 0) BuildTexture(*image);
    return image;
}

void ShowSubstitute(HostState& state, const ContainerObject& container) {
    const CanvasSubstitute::View view = container.substitute->Look();
    ImageObject* const image = CanvasImage(state, container);
    if (image == nullptr || view.pixels == nullptr || view.width != image->width || view.height != image->height)
        return;
    const ObjectId id = CanvasImageId(state, container);
    FrameArea area = view.changed;
    for (const UploadedPart& part : state.changes.Uploads())
        if (part.image == id) area = Union(area, part.area);
    area = Inside(area, *image);
    if (area.IsEmpty()) return;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, image->width);
    const auto first =
        static_cast<std::size_t>(area.y) * static_cast<std::size_t>(image->width) + static_cast<std::size_t>(area.x);
    const std::uint8_t* const pixels = view.pixels + first * 4;
    const FrameArea changed = StoreUpload(*image, area, GL_RGBA, pixels);
    if (!changed.IsEmpty()) {
        const BoundTexture bound(image->texture);
        glTexSubImage2D(GL_TEXTURE_2D, 0, area.x, area.y, area.width, area.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
        state.changes.AddUpload({id, changed});
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
}

}  // namespace kel
