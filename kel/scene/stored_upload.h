#pragma once

#include "kel/scene/frame_buffer.h"
#include "kel/scene/objects.h"

namespace kel {

// Keeps what a module loads into the texture of its image, and answers what of the region it changes: a module that has
// nothing new may load the same again and again, and nothing of it has to be drawn. OpenGL's pixel storage says how the
// rows lie. An image whose texture is not known changes all of the region.
[[nodiscard]] FrameArea StoreUpload(ImageObject& image, const FrameArea& region, std::int32_t format,
                                    const void* pixels);

}  // namespace kel
