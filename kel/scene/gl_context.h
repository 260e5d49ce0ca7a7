#pragma once

namespace kel {

// Where the OpenGL context comes from: a new one without a display, or the one that is current on this thread, such as
// a window's, which then outlives its user.
enum class GlSource { Own, Current };

// An OpenGL context of the compatibility profile, current on the thread that made it, which is the one to use it. An
// own one needs neither display nor graphics card. Throws Error when this machine has no such OpenGL.
class GlContext {
public:
    explicit GlContext(GlSource source = GlSource::Own);
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;
    GlContext(GlContext&&) = delete;
    GlContext& operator=(GlContext&&) = delete;

    // Makes it current again, where another one has become so since. A borrowed one is its lender's to keep current.
    void Use() const;

private:
    void MakeOwn();
    void EndOwn();

    void* m_context = nullptr;  // null: borrowed
};

// The texture units that containers have; the module takes three at most and the picture one.
constexpr int textureUnits = 4;

}  // namespace kel
