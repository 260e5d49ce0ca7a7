#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace kel {

// What a module asks of OpenGL in a render callback, as a value: it is done at once, compared with what the last
// picture was drawn with, and done again where a part of that picture is drawn anew.
struct GlCall {
    enum class Function : std::uint8_t {
        ActiveTexture,
        TexEnvi,
        MatrixMode,
        LoadIdentity,
        Translatef,
        Scalef,
        Enable,
        Disable,
        BlendFunc
    };
    Function function = Function::LoadIdentity;
    std::array<std::uint32_t, 3> words{};  // the arguments; floats by their bits

    void Do() const;
    // True: it settles which pixels are drawn at all, which only whole pictures bear.
    [[nodiscard]] bool IsScissor() const;
    friend bool operator==(const GlCall&, const GlCall&) = default;
};

// Of one container, before and after it is drawn.
struct RenderCalls {
    std::vector<GlCall> before;
    std::vector<GlCall> after;
    friend bool operator==(const RenderCalls&, const RenderCalls&) = default;
};

}  // namespace kel
