// Exported to the modules, which are the only ones to call these.
#pragma GCC visibility push(default)
#include "module/abi/host_api.h"
#pragma GCC visibility pop

#include <GL/glu.h>

#include "kel/host_functions/host_call.h"
#include "kel/scene/gl.h"

// OpenGL and GLU by way of the host, which lends them to the render callbacks alone.
namespace {

using kel::HostCall;

bool InRender(const char* function) { return static_cast<bool>(HostCall(function, kel::inRender)); }

}  // namespace

void kelGL_glActiveTexture(std::int32_t unit) {
    const HostCall call(__func__, kel::inRender);
    if (call && call.HasUnit(unit)) glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
}

void kelGL_glTexEnvi(std::uint32_t target, std::uint32_t name, std::int32_t value) {
    if (InRender(__func__)) glTexEnvi(target, name, value);
}

void kelGL_glMatrixMode(std::uint32_t mode) {
    if (InRender(__func__)) glMatrixMode(mode);
}

void kelGL_glLoadIdentity() {
    if (InRender(__func__)) glLoadIdentity();
}

void kelGL_glTranslatef(float x, float y, float z) {
    if (InRender(__func__)) glTranslatef(x, y, z);
}

void kelGL_glScalef(float x, float y, float z) {
    if (InRender(__func__)) glScalef(x, y, z);
}

void kelGL_glGetIntegerv(std::uint32_t name, std::int32_t* values) {
    const HostCall call(__func__, kel::inRender);
    if (call && call.HasPlace(values)) glGetIntegerv(name, values);
}

void kelGL_glPixelStorei(std::uint32_t name, std::int32_t value) {
    if (InRender(__func__)) glPixelStorei(name, value);
}

void kelGL_glEnable(std::uint32_t capability) {
    if (InRender(__func__)) glEnable(capability);
}

void kelGL_glDisable(std::uint32_t capability) {
    if (InRender(__func__)) glDisable(capability);
}

void kelGL_glBlendFunc(std::uint32_t source, std::uint32_t destination) {
    if (InRender(__func__)) glBlendFunc(source, destination);
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
