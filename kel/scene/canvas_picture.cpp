#include "kel/scene/canvas_picture.h"

#include "cli/error.h"
#include "kel/scene/gl.h"
#include "kel/scene/substituted_canvas.h"

namespace kel {
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
