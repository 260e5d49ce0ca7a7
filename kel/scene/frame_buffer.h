#pragma once

#include <cstdint>

#include "picture_io/picture.h"

namespace kel {

// A rectangle of a window, in pixels counted from its lower left corner.
struct FrameArea {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] bool IsEmpty() const { return width <= 0 || height <= 0; }
    friend bool operator==(const FrameArea&, const FrameArea&) = default;
};

// Both at once; empty: they do not meet.
[[nodiscard]] FrameArea Intersection(const FrameArea& one, const FrameArea& other);

// What the scene is drawn into: colour and depth, in the size of the window. The context is current in every call.
class FrameBuffer {
public:
    FrameBuffer(std::int32_t width, std::int32_t height);  // pixels; throws Error for a size that is not possible
    ~FrameBuffer();
    FrameBuffer(const FrameBuffer&) = delete;
    FrameBuffer& operator=(const FrameBuffer&) = delete;
    FrameBuffer(FrameBuffer&&) = delete;
    FrameBuffer& operator=(FrameBuffer&&) = delete;

    [[nodiscard]] std::int32_t Width() const { return m_width; }
    [[nodiscard]] std::int32_t Height() const { return m_height; }

    void Bind() const;
    // grey: 0.0 black .. 1.0 white; as far away as can be
    void BindAndClear(float grey) const;
    [[nodiscard]] picture_io::Picture Read() const;  // opaque
    // The part inside the area, which is not empty and lies within.
    [[nodiscard]] picture_io::Picture Read(const FrameArea& area) const;
    // The same as a screen takes it: top row first, a pixel as blue, green, red and anything.
    //   rowPixels  from one row to the next
    void ReadForScreen(const FrameArea& area, void* pixels, std::int32_t rowPixels) const;
    // Copies a part of a texture of GL_RGBA8, from its texel (x, y) on and as large as `area`, into `area`.
    void Copy(std::uint32_t texture, std::int32_t x, std::int32_t y, const FrameArea& area) const;
    // Copies the colours over `area` of the framebuffer `target`, which stays bound.
    void ShowIn(const FrameArea& area, std::uint32_t target) const;
    void ShowIn(const FrameArea& area, const FrameBuffer& target) const { ShowIn(area, target.m_frame); }

private:
    std::int32_t m_width;
    std::int32_t m_height;
    std::uint32_t m_frame = 0;
    std::uint32_t m_colour = 0;
    std::uint32_t m_depth = 0;
};

}  // namespace kel
