#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kel/scene/frame_buffer.h"

namespace kel {

// Shows a frame smaller than it is with all of its pixels in it: where two or more of them would fall on one, the frame
// is halved first, so often that they no longer do. Scaling alone takes four of them and passes over the rest, which
// makes thin lines flicker. The context is current in every call, and the same in all of them.
class FrameShrinker {
public:
    // Shows all of the frame in `area` of the framebuffer `target`, as far as it lies within `part`, which may be
    // empty. The target stays bound.
    void Show(const FrameBuffer& frame, const FrameArea& area, const FrameArea& part, std::uint32_t target);

private:
    std::vector<std::unique_ptr<FrameBuffer>> m_halves;  // each half as large as the one before it
};

}  // namespace kel
