#pragma once

#include "kel/scene/frame_buffer.h"
#include "kel/scene/gl_texture.h"
#include "picture_io/picture.h"

namespace kel {

// The strokes alone as OpenGL has them, shown by their colours or by their alpha. The context is current in every call.
class StrokesTexture {
public:
    enum class Look { Colours, AlphaAsGrey };

    // Takes over what has changed of the picture; another size, or the first one: all of it.
    //   changed  in its pixels, from the lower left corner
    void Renew(const picture_io::Picture& strokes, const FrameArea& changed);
    // Shows it in `area` of the current window as far as it lies in `part`, and leaves OpenGL's state as it was.
    void Show(Look look, const FrameArea& area, const FrameArea& part) const;

private:
    GlTexture m_texture;
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
};

}  // namespace kel
