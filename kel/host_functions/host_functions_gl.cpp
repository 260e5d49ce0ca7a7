// Exported to the modules, which are the only ones to call these.
#pragma GCC visibility push(default)
#include "module/abi/host_api.h"
#pragma GCC visibility pop

#include <GL/glu.h>

#include <bit>

#include "kel/host_functions/host_call.h"
#include "kel/scene/gl.h"

// OpenGL and GLU by way of the host, which lends them to the render callbacks alone.
namespace {

using kel::GlCall;
using kel::HostCall;
using Function = kel::GlCall::Function;

// Does it, and notes it where the picture is the scene's own.
void Do(const char* function, const GlCall& wanted) {
    const HostCall call(function, kel::inRender);
    if (!call) return;
    wanted.Do();
    if (call.State().noting != nullptr) call.State().noting->push_back(wanted);
}

std::uint32_t Word(float number) { return std::bit_cast<std::uint32_t>(number); }

}  // namespace

void kelGL_glActiveTexture(std::int32_t unit) {
    const HostCall call(__func__, kel::inRender);
    if (call && call.HasUnit(unit)) Do(__func__, {Function::ActiveTexture, {static_cast<std::uint32_t>(unit)}});
}

void kelGL_glTexEnvi(std::uint32_t target, std::uint32_t name, std::int32_t value) {
    Do(__func__, {Function::TexEnvi, {target, name, static_cast<std::uint32_t>(value)}});
}

void kelGL_glMatrixMode(std::uint32_t mode) { Do(__func__, {Function::MatrixMode, {mode}}); }

void kelGL_glLoadIdentity() { Do(__func__, {Function::LoadIdentity, {}}); }

void kelGL_glTranslatef(float x, float y, float z) {
    Do(__func__, {Function::Translatef, {Word(x), Word(y), Word(z)}});
}

void kelGL_glScalef(float x, float y, float z) { Do(__func__, {Function::Scalef, {Word(x), Word(y), Word(z)}}); }

void kelGL_glGetIntegerv(std::uint32_t name, std::int32_t* values) {
    const HostCall call(__func__, kel::inRender);
    if (call && call.HasPlace(values)) glGetIntegerv(name, values);
}

// How rows lie in memory is no part of the picture.
void kelGL_glPixelStorei(std::uint32_t name, std::int32_t value) {
    if (HostCall(__func__, kel::inRender)) glPixelStorei(name, value);
}

void kelGL_glEnable(std::uint32_t capability) { Do(__func__, {Function::Enable, {capability}}); }

void kelGL_glDisable(std::uint32_t capability) { Do(__func__, {Function::Disable, {capability}}); }

void kelGL_glBlendFunc(std::uint32_t source, std::uint32_t destination) {
    Do(__func__, {Function::BlendFunc, {source, destination}});
}

std::int32_t kelGL_gluUnProject(double windowX, double windowY, double windowZ, const double* model,
                                const double* projection, const std::int32_t* viewport, double* objectX,
                                double* objectY, double* objectZ) {
    const HostCall call(__func__, kel::inInstance);
    if (!call || !call.HasPlace(model) || !call.HasPlace(projection) || !call.HasPlace(viewport) ||
        !call.HasPlace(objectX) || !call.HasPlace(objectY) || !call.HasPlace(objectZ))
        return GLU_FALSE;
    return gluUnProject(windowX, windowY, windowZ, model, projection, viewport, objectX, objectY, objectZ);
}
