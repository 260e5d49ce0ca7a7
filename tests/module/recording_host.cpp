#include "tests/module/recording_host.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>

#include "module/abi/host_api.h"

namespace chalkpane::testing {
namespace {

RecordingHost* current = nullptr;
constexpr std::size_t textureSide = 1024;

using Matrix = std::array<double, 16>;  // column vectors, as OpenGL stores them

// Gauss and Jordan with the greatest pivot.
std::optional<Matrix> Inverse(const Matrix& matrix) {
    std::array<std::array<double, 8>, 4> rows{};
    for (std::size_t r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 4; ++c) rows[r][c] = matrix[c * 4 + r];
        rows[r][4 + r] = 1;
    }
    for (std::size_t c = 0; c < 4; ++c) {
        std::size_t pivot = c;
        for (std::size_t r = c + 1; r < 4; ++r) {
            if (std::abs(rows[r][c]) > std::abs(rows[pivot][c])) pivot = r;
        }
        if (!(std::abs(rows[pivot][c]) > 0)) return std::nullopt;
        std::swap(rows[c], rows[pivot]);
        const double divisor = rows[c][c];
        for (double& value : rows[c]) value /= divisor;
        for (std::size_t r = 0; r < 4; ++r) {
            if (r == c) continue;
            const double factor = rows[r][c];
            for (std::size_t k = 0; k < 8; ++k) rows[r][k] -= factor * rows[c][k];
        }
    }
    Matrix inverse{};
    for (std::size_t r = 0; r < 4; ++r) {
        for (std::size_t c = 0; c < 4; ++c) inverse[c * 4 + r] = rows[r][4 + c];
    }
    return inverse;
}

Matrix Product(const double* a, const double* b) {
    Matrix product{};
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r) {
            for (std::size_t k = 0; k < 4; ++k) product[c * 4 + r] += a[k * 4 + r] * b[c * 4 + k];
        }
    }
    return product;
}

template <typename... Arguments>
void Record(const char* name, const Arguments&... arguments) {
    RecordingHost& host = CurrentHost();
    if (!host.recording) return;
    std::ostringstream line;
    line << name;
    ((line << ' ' << arguments), ...);
    host.calls.push_back(line.str());
}

void LoadPart(RecordingHost& host, std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
              const std::uint8_t* pixels) {
    const auto stride = static_cast<std::size_t>(host.unpackRowLength != 0 ? host.unpackRowLength : width) * 4;
    for (std::int32_t row = 0; row < height; ++row) {
        const std::size_t start = (static_cast<std::size_t>(y + row) * textureSide + static_cast<std::size_t>(x)) * 4;
        std::memcpy(host.texture.data() + start, pixels + static_cast<std::size_t>(row) * stride,
                    static_cast<std::size_t>(width) * 4);
    }
}

}  // namespace

RecordingHost& CurrentHost() { return *current; }

RecordingHost::RecordingHost() : texture(textureSide * textureSide * 4), former_(std::exchange(current, this)) {}
RecordingHost::~RecordingHost() { current = former_; }

std::vector<std::string> RecordingHost::TakeCalls() { return std::exchange(calls, {}); }

std::vector<std::string> RecordingHost::CallsOf(const std::string& name) const {
    std::vector<std::string> found;
    for (const std::string& line : calls) {
        if (line.substr(0, line.find(' ')) == name) found.push_back(line);
    }
    return found;
}

}  // namespace chalkpane::testing

using chalkpane::testing::CurrentHost;
using chalkpane::testing::Record;
using chalkpane::testing::RecordingHost;

void qoRegisterPlugin(const char* name) { Record("qoRegisterPlugin", name); }
void qoRegisterPluginType(std::int32_t type) { Record("qoRegisterPluginType", type); }
void qoRegisterPluginFolder(const char* folder) { Record("qoRegisterPluginFolder", folder); }
void qoRegisterParameterBool(const char* name, const char* label, std::int32_t defaultValue) {
    Record("qoRegisterParameterBool", name, label, defaultValue);
}
void qoRegisterParameterInt(const char* name, const char* label, std::int32_t defaultValue, std::int32_t minimum,
                            std::int32_t maximum) {
    Record("qoRegisterParameterInt", name, label, defaultValue, minimum, maximum);
}
void qoRegisterParameterFloat(const char* name, const char* label, float defaultValue, float minimum, float maximum) {
    Record("qoRegisterParameterFloat", name, label, defaultValue, minimum, maximum);
}
void qoRegisterParameterColor(const char* name, const char* label, std::uint32_t defaultValue) {
    Record("qoRegisterParameterColor", name, label, defaultValue);
}
void qoRegisterParameterImage(const char* name, const char* label, const char* defaultName) {
    Record("qoRegisterParameterImage", name, label, std::string("'") + defaultName + "'");
}
void qoRegisterParameterRadio(const char* name, const char* label, std::int32_t defaultValue,
                              const char* const* options) {
    std::string all;
    for (; *options != nullptr; ++options) all += std::string("'") + *options + "'";
    Record("qoRegisterParameterRadio", name, label, defaultValue, all);
}
void qoRegisterPushButton(const char* name, const char* label, std::int32_t action) {
    Record("qoRegisterPushButton", name, label, action);
}
void qoRegisterTotalSize(std::int32_t bytes) { Record("qoRegisterTotalSize", bytes); }
void qoHideParameter(const char* name) { Record("qoHideParameter", name); }
std::int32_t qoSendGuiParameterShow(const char* name, std::int32_t visible) {
    Record("qoSendGuiParameterShow", name, visible);
    return CurrentHost().showAnswer;
}

std::int32_t _api__object_valid(std::int32_t id) {
    Record("_api__object_valid", id);
    return id >= 0 && !CurrentHost().allIdsInvalid ? 1 : 0;
}
void _api__set_changed(std::int32_t id) { Record("_api__set_changed", id); }
std::int32_t _api__get_objectid_local(std::int32_t* word, std::int32_t kind) {
    Record("_api__get_objectid_local", *word, kind);
    return CurrentHost().ownContainer;
}
void _api__container_get_drop(std::int32_t* container, std::int32_t reserved, std::int32_t x, std::int32_t y,
                              std::int32_t* result) {
    Record("_api__container_get_drop", reserved, x, y);
    *container = CurrentHost().containerUnderPointer;
    *result = 0;
}
void _api__container_get_bounding_box(std::int32_t id, float* minX, float* minY, float* minZ, float* maxX, float* maxY,
                                      float* maxZ) {
    Record("_api__container_get_bounding_box", id);
    const auto& box = CurrentHost().box;
    *minX = box[0];
    *minY = box[1];
    *minZ = box[2];
    *maxX = box[3];
    *maxY = box[4];
    *maxZ = box[5];
}
void _api__container_get_transformation_matrix(std::int32_t id, float* matrix) {
    Record("_api__container_get_transformation_matrix", id);
    std::copy(CurrentHost().containerMatrix.begin(), CurrentHost().containerMatrix.end(), matrix);
}
void _api__container_set_multi_texture(std::int32_t id, std::int32_t unit, std::int32_t texture) {
    Record("_api__container_set_multi_texture", id, unit, texture);
}
void _api__container_delete_multi_texture(std::int32_t id, std::int32_t unit) {
    Record("_api__container_delete_multi_texture", id, unit);
}
void _api__container_delete_texture(std::int32_t id) { Record("_api__container_delete_texture", id); }

std::int32_t _api__get_image_objectid(const char* name) {
    RecordingHost& host = CurrentHost();
    Record("_api__get_image_objectid", name);
    const auto found = host.imageIds.find(std::string_view(name));
    return found == host.imageIds.end() ? -1 : found->second;
}
void _api__get_image_size(std::int32_t id, std::int32_t* width, std::int32_t* height) {
    Record("_api__get_image_size", id);
    *width = CurrentHost().brushImageWidth;
    *height = CurrentHost().brushImageHeight;
}
void _api__get_image_data(std::int32_t id, void** data) {
    Record("_api__get_image_data", id);
    *data = CurrentHost().brushImageHasData ? CurrentHost().brushImagePixels.data() : nullptr;
}
void _api__get_image_format(std::int32_t id, std::int32_t* format) {
    Record("_api__get_image_format", id);
    *format = CurrentHost().brushImageFormat;
}
std::int32_t _api__create_image(std::int32_t reserved, std::int32_t width, std::int32_t height, std::int32_t format) {
    Record("_api__create_image", reserved, width, height, format);
    if (CurrentHost().createdImage >= 0) ++CurrentHost().images;
    return CurrentHost().createdImage;
}
void _api__image_delete_image(std::int32_t* image) {
    Record("_api__image_delete_image", *image);
    if (*image >= 0) --CurrentHost().images;
    *image = -1;
}
void _api__rebuild_texture(std::int32_t image) { Record("_api__rebuild_texture", image); }
void _api__image_subtexload(std::int32_t image, std::int32_t reserved, std::int32_t x, std::int32_t y,
                            std::int32_t width, std::int32_t height, std::int32_t format, std::int32_t type,
                            const void* pixels) {
    Record("_api__image_subtexload", image, reserved, x, y, width, height, format, type);
    chalkpane::testing::LoadPart(CurrentHost(), x, y, width, height, static_cast<const std::uint8_t*>(pixels));
}
void _api__texture_create_texture(std::int32_t* texture, std::int32_t image) {
    Record("_api__texture_create_texture", image);
    if (CurrentHost().createdTexture >= 0) ++CurrentHost().textures;
    *texture = CurrentHost().createdTexture;
}
void _api__texture_delete_texture(std::int32_t* texture) {
    Record("_api__texture_delete_texture", *texture);
    if (*texture >= 0) --CurrentHost().textures;
    *texture = -1;
}
void _api__set_texture_map_type(std::int32_t texture, std::int32_t value) {
    Record("_api__set_texture_map_type", texture, value);
}
void _api__set_texture_env_type(std::int32_t texture, std::int32_t value) {
    Record("_api__set_texture_env_type", texture, value);
}
void _api__set_texture_qual_type(std::int32_t texture, std::int32_t value) {
    Record("_api__set_texture_qual_type", texture, value);
}
void _api__set_texture_wrap_type(std::int32_t texture, std::int32_t value) {
    Record("_api__set_texture_wrap_type", texture, value);
}
void _api__texture_set_optimize(std::int32_t texture, std::int32_t value) {
    Record("_api__texture_set_optimize", texture, value);
}

std::int32_t _api__get_sceneid_local(char* name, std::int32_t reserved) {
    Record("_api__get_sceneid_local", name, reserved);
    return 3;
}
std::int32_t _api__get_scene_current_camera(std::int32_t scene, std::int32_t* result) {
    Record("_api__get_scene_current_camera", scene);
    *result = 0;
    return 4;
}
std::int32_t _api__get_cameraid(std::int32_t camera, char* name, std::int32_t kind) {
    Record("_api__get_cameraid", camera, name, kind);
    return 5;
}
void _api__get_camera_matrix(std::int32_t camera, float* matrix) {
    Record("_api__get_camera_matrix", camera);
    std::copy(CurrentHost().cameraMatrix.begin(), CurrentHost().cameraMatrix.end(), matrix);
}
std::int32_t _api__scene_redraw() {
    Record("_api__scene_redraw");
    ++CurrentHost().redraws;
    return CurrentHost().redrawAnswer;
}
void _api__tessmar_query_mouse_pos(std::int32_t reserved, std::int32_t* x, std::int32_t* y) {
    Record("_api__tessmar_query_mouse_pos", reserved);
    *x = CurrentHost().pointerX;
    *y = CurrentHost().pointerY;
}
void _api__tessmar_get_window_size(std::int32_t* width, std::int32_t* height) {
    Record("_api__tessmar_get_window_size");
    *width = CurrentHost().windowWidth;
    *height = CurrentHost().windowHeight;
}

void kelGL_glActiveTexture(std::int32_t unit) { Record("glActiveTexture", unit); }
void kelGL_glTexEnvi(std::uint32_t target, std::uint32_t name, std::int32_t value) {
    Record("glTexEnvi", target, name, value);
}
void kelGL_glMatrixMode(std::uint32_t mode) { Record("glMatrixMode", mode); }
void kelGL_glLoadIdentity() { Record("glLoadIdentity"); }
void kelGL_glTranslatef(float x, float y, float z) { Record("glTranslatef", x, y, z); }
void kelGL_glScalef(float x, float y, float z) { Record("glScalef", x, y, z); }
void kelGL_glGetIntegerv(std::uint32_t name, std::int32_t* values) {
    Record("glGetIntegerv", name);
    const auto& state = CurrentHost().glState;
    *values = state.contains(name) ? state.at(name) : 0;
}
void kelGL_glPixelStorei(std::uint32_t name, std::int32_t value) {
    Record("glPixelStorei", name, value);
    CurrentHost().unpackRowLength = value;
}
void kelGL_glEnable(std::uint32_t capability) { Record("glEnable", capability); }
void kelGL_glDisable(std::uint32_t capability) { Record("glDisable", capability); }
void kelGL_glBlendFunc(std::uint32_t source, std::uint32_t destination) { Record("glBlendFunc", source, destination); }
std::int32_t kelGL_gluUnProject(double windowX, double windowY, double windowZ, const double* model,
                                const double* projection, const std::int32_t* viewport, double* objectX,
                                double* objectY, double* objectZ) {
    Record("gluUnProject", windowX, windowY, windowZ);
    if (!CurrentHost().unprojects) return 0;
    const auto inverse = chalkpane::testing::Inverse(chalkpane::testing::Product(projection, model));
    if (!inverse) return 0;
    const std::array<double, 4> point{(windowX - viewport[0]) / viewport[2] * 2 - 1,
                                      (windowY - viewport[1]) / viewport[3] * 2 - 1, windowZ * 2 - 1, 1};
    std::array<double, 4> result{};
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t k = 0; k < 4; ++k) result[row] += (*inverse)[k * 4 + row] * point[k];
    }
    if (result[3] == 0) return 0;
    *objectX = result[0] / result[3];
    *objectY = result[1] / result[3];
    *objectZ = result[2] / result[3];
    return 1;
}
