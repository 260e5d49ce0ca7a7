#pragma once

#include <cstdint>

#include "host/picture.h"

namespace kel {

// What the scene is drawn into: colour and depth, in the size of the window. The context is current in every call.
class FrameBuffer {
public:
    FrameBuffer(std::int32_t width, std::int32_t height);  // pixels; throws Error for a size that is not possible
    ~FrameBuffer();
    FrameBuffer(const FrameBuffer&) = delete;
    FrameBuffer& operator=(const FrameBuffer&) = delete;
    FrameBuffer(FrameBuffer&&) = delete;
    FrameBuffer& operator=(FrameBuffer&&) = delete;

    void Bind() const;
    // grey: 0.0 black .. 1.0 white; as far away as can be
    void BindAndClear(float grey) const;
    [[nodiscard]] Picture Read() const;  // opaque

private:
    std::int32_t m_width;
    std::int32_t m_height;
    std::uint32_t m_frame = 0;
    std::uint32_t m_colour = 0;
    std::uint32_t m_depth = 0;
};

}  // namespace kel
