#pragma once

#include <cstdint>

// The functions that the host program exports to the module: the module's only link to scene, renderer and operator.
//
// Plain functions with C linkage over 32-bit words, floats and pointers, all called on the host's render thread from
// inside a callback. Ids are signed and -1 stands for "no object". Texts are null-terminated and borrowed for the call;
// pointers to results are written before the function returns. Where a function's purpose leaves a result open it
// returns nothing.
extern "C" {

// Registration, only inside PLUGIN_INIT_EX.
void qoRegisterPlugin(const char* name);
void qoRegisterPluginType(std::int32_t type);
void qoRegisterPluginFolder(const char* folder);
void qoRegisterParameterBool(const char* name, const char* label, std::int32_t defaultValue);
void qoRegisterParameterInt(const char* name, const char* label, std::int32_t defaultValue, std::int32_t minimum,
                            std::int32_t maximum);
void qoRegisterParameterFloat(const char* name, const char* label, float defaultValue, float minimum, float maximum);
// Four bytes in memory order red, green, blue, alpha.
void qoRegisterParameterColor(const char* name, const char* label, std::uint32_t defaultValue);
void qoRegisterParameterImage(const char* name, const char* label, const char* defaultName);
// `options` ends with a null pointer.
void qoRegisterParameterRadio(const char* name, const char* label, std::int32_t defaultValue,
                              const char* const* options);
void qoRegisterPushButton(const char* name, const char* label, std::int32_t action);
void qoRegisterTotalSize(std::int32_t bytes);
void qoHideParameter(const char* name);

// visible: 1 shows, 0 hides.
std::int32_t qoSendGuiParameterShow(const char* name, std::int32_t visible);

// Objects and containers.
std::int32_t _api__object_valid(std::int32_t id);  // non-zero: a living object
void _api__set_changed(std::int32_t id);
// `word` points to a module-wide word that starts at 0 and that the module never writes; `kind` is 2. Returns the id of
// the container that the calling instance is attached to.
std::int32_t _api__get_objectid_local(std::int32_t* word, std::int32_t kind);
// Fills `container` with the container under window pixel (x, y), y from the top; -1 when there is none.
void _api__container_get_drop(std::int32_t* container, std::int32_t reserved, std::int32_t x, std::int32_t y,
                              std::int32_t* result);
void _api__container_get_bounding_box(std::int32_t id, float* minX, float* minY, float* minZ, float* maxX, float* maxY,
                                      float* maxZ);
void _api__container_get_transformation_matrix(std::int32_t id, float* matrix);  // 16 floats, local to world
void _api__container_set_multi_texture(std::int32_t id, std::int32_t unit, std::int32_t texture);
void _api__container_delete_multi_texture(std::int32_t id, std::int32_t unit);
void _api__container_delete_texture(std::int32_t id);

// Images and textures.
std::int32_t _api__get_image_objectid(const char* name);
void _api__get_image_size(std::int32_t id, std::int32_t* width, std::int32_t* height);
void _api__get_image_data(std::int32_t id, void** data);  // the host keeps the pixels
void _api__get_image_format(std::int32_t id, std::int32_t* format);
std::int32_t _api__create_image(std::int32_t reserved, std::int32_t width, std::int32_t height, std::int32_t format);
void _api__image_delete_image(std::int32_t* image);
void _api__rebuild_texture(std::int32_t image);
// Loads that part of the texture at once; legal inside pre render. Rows of `pixels` follow GL_UNPACK_ROW_LENGTH.
void _api__image_subtexload(std::int32_t image, std::int32_t reserved, std::int32_t x, std::int32_t y,
                            std::int32_t width, std::int32_t height, std::int32_t format, std::int32_t type,
                            const void* pixels);
void _api__texture_create_texture(std::int32_t* texture, std::int32_t image);
void _api__texture_delete_texture(std::int32_t* texture);
void _api__set_texture_map_type(std::int32_t texture, std::int32_t value);
void _api__set_texture_env_type(std::int32_t texture, std::int32_t value);
void _api__set_texture_qual_type(std::int32_t texture, std::int32_t value);
void _api__set_texture_wrap_type(std::int32_t texture, std::int32_t value);
void _api__texture_set_optimize(std::int32_t texture, std::int32_t value);

// Scene, camera and window.
std::int32_t _api__get_sceneid_local(char* name, std::int32_t reserved);  // "SCENE", 0
std::int32_t _api__get_scene_current_camera(std::int32_t scene, std::int32_t* result);
std::int32_t _api__get_cameraid(std::int32_t camera, char* name, std::int32_t kind);  // "RENDERCAMERA", 62
void _api__get_camera_matrix(std::int32_t camera, float* matrix);                     // projection times view
std::int32_t _api__scene_redraw();
void _api__tessmar_query_mouse_pos(std::int32_t reserved, std::int32_t* x, std::int32_t* y);
void _api__tessmar_get_window_size(std::int32_t* width, std::int32_t* height);

// OpenGL and GLU by way of the host. The texture unit is the plain number, not a GL_TEXTUREn enumerant.
void kelGL_glActiveTexture(std::int32_t unit);
void kelGL_glTexEnvi(std::uint32_t target, std::uint32_t name, std::int32_t value);
void kelGL_glMatrixMode(std::uint32_t mode);
void kelGL_glLoadIdentity();
void kelGL_glTranslatef(float x, float y, float z);
void kelGL_glScalef(float x, float y, float z);
void kelGL_glGetIntegerv(std::uint32_t name, std::int32_t* values);
void kelGL_glPixelStorei(std::uint32_t name, std::int32_t value);
void kelGL_glEnable(std::uint32_t capability);
void kelGL_glDisable(std::uint32_t capability);
void kelGL_glBlendFunc(std::uint32_t source, std::uint32_t destination);
// Matrices of sixteen doubles, column vectors as OpenGL stores them. Returns 0 when the point cannot be unprojected.
std::int32_t kelGL_gluUnProject(double windowX, double windowY, double windowZ, const double* model,
                                const double* projection, const std::int32_t* viewport, double* objectX,
                                double* objectY, double* objectZ);

}  // extern "C"
