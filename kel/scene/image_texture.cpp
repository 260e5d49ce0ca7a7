#include "kel/scene/image_texture.h"

#include <algorithm>

#include "kel/scene/gl.h"
#include "kel/scene/inked_area.h"

namespace kel {
namespace {

bool IsOpaque(const picture_io::Picture& picture) {
    std::uint8_t least = 255;
    for (std::size_t alpha = 3; alpha < picture.rgba.size(); alpha += 4) least &= picture.rgba[alpha];
    return least == 255;
}

}  // namespace

void BuildTexture(ImageObject& image) {
    if (image.texture.Name() == 0) image.texture = GlTexture::Generate();
    const BoundTexture bound(image.texture);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    const GLenum stored = image.format == GL_RGBA ? GL_RGBA8 : image.format;  // exactly what frames have
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(stored), image.width, image.height, 0, image.format,
                 GL_UNSIGNED_BYTE, image.pixels.data());
    image.areMipmapsStale = image.mipmaps;
    if (!image.mipmaps && image.format == GL_RGBA) image.shown = image.pixels;
    image.inked = BoxAroundInk(image);
    glPopClientAttrib();
}

bool ReplacePixels(ImageObject& image, const picture_io::Picture& picture) {
    picture_io::Picture upwards = picture_io::Flipped(picture);
    return ExchangePixels(image, upwards, IsOpaque(picture) ? PictureAlpha::Full : PictureAlpha::Any);
}

bool ExchangePixels(ImageObject& image, picture_io::Picture& picture, PictureAlpha alpha) {
    if (image.width != picture.width || image.height != picture.height || image.format != GL_RGBA) return false;
    image.pixels.swap(picture.rgba);
    image.isOpaque = alpha == PictureAlpha::Full;
    if (image.texture.Name() == 0) return true;
    const BoundTexture bound(image.texture);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, image.width, image.height, GL_RGBA, GL_UNSIGNED_BYTE, image.pixels.data());
    glPopClientAttrib();
    image.areMipmapsStale = image.mipmaps;
    return true;
}

ImageObject MakeImage(const picture_io::Picture& picture) {
    ImageObject image;
    image.width = picture.width;
    image.height = picture.height;
    image.format = GL_RGBA;
    image.pixels = picture_io::Flipped(picture).rgba;
    image.mipmaps = true;
    image.isOpaque = IsOpaque(picture);
    return image;
}

}  // namespace kel
