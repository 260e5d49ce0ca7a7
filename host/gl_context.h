#pragma once

namespace kel {

// An OpenGL context of the compatibility profile that needs neither display nor graphics card, current on the thread
// that made it. Throws Error when this machine has no such OpenGL.
class GlContext {
public:
    GlContext();
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
    GlContext(GlContext&&) = delete;
    GlContext& operator=(GlContext&&) = delete;

private:
    void* m_context = nullptr;
};

// The texture units that containers have; the module takes three at most and the picture one.
constexpr int textureUnits = 4;

}  // namespace kel
