#pragma once

#include <cstdint>

#include "kel/scene/frame_buffer.h"

namespace kel {

// A canvas that a container shows in the place of the one that its module draws, in the module's own texture, so that
// every output has it.
class CanvasSubstitute {
public:
    CanvasSubstitute() = default;
    CanvasSubstitute(const CanvasSubstitute&) = delete;
    CanvasSubstitute& operator=(const CanvasSubstitute&) = delete;
    CanvasSubstitute(CanvasSubstitute&&) = delete;
    CanvasSubstitute& operator=(CanvasSubstitute&&) = delete;

    // Rows as the module's texture has them, four bytes a pixel, red first, multiplied by alpha.
    struct View {
        const std::uint8_t* pixels = nullptr;  // borrowed until the next call
        std::int32_t width = 0;
        std::int32_t height = 0;
        FrameArea changed;  // since the last call, in the texture's pixels
    };
    // Asked in each render, after the fields that it shows.
    virtual View Look() = 0;

protected:
    ~CanvasSubstitute() = default;
};

}  // namespace kel
