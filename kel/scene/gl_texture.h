#pragma once

#include <cstdint>
#include <utility>

namespace kel {

// A texture in OpenGL's keeping, deleted with its owner. The context is current in every call.
class GlTexture {
public:
    GlTexture() = default;  // none
    static GlTexture Generate();
    ~GlTexture();
    GlTexture(const GlTexture&) = delete;
    GlTexture& operator=(const GlTexture&) = delete;
    GlTexture(GlTexture&& other) noexcept : m_name(std::exchange(other.m_name, 0)) {}
    GlTexture& operator=(GlTexture&& other) noexcept {
        std::swap(m_name, other.m_name);
        return *this;
    }

    [[nodiscard]] std::uint32_t Name() const { return m_name; }  // 0: none

private:
    std::uint32_t m_name = 0;
};

// Binds a texture to the active unit and puts back what was there before.
class BoundTexture {
public:
    explicit BoundTexture(const GlTexture& texture);
    ~BoundTexture();
    BoundTexture(const BoundTexture&) = delete;
    BoundTexture& operator=(const BoundTexture&) = delete;
    BoundTexture(BoundTexture&&) = delete;
    BoundTexture& operator=(BoundTexture&&) = delete;

private:
    std::int32_t m_before = 0;
};

}  // namespace kel
