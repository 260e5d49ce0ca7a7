#pragma once

#include "kel/scene/objects.h"
#include "picture_io/picture.h"

namespace kel {

// Makes the image's texture anew from its pixels.
void BuildTexture(ImageObject& image);

// Puts a picture of the same size in the place of one that MakeImage has made, in its texture too: the next frame of a
// video. False: the sizes differ, and nothing was done.
bool ReplacePixels(ImageObject& image, const picture_io::Picture& picture);

// What is known of a picture's alpha.
enum class PictureAlpha { Any, Full };

// The same for rows from the bottom. `picture` has the pixels of the one before it then, whose memory is free.
bool ExchangePixels(ImageObject& image, picture_io::Picture& picture, PictureAlpha alpha);

// An image of the host's own, from a picture; smooth also when seen small. Its texture is built at its first render.
[[nodiscard]] ImageObject MakeImage(const picture_io::Picture& picture);

}  // namespace kel
