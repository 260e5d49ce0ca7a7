#include <doctest/doctest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <regex>
#include <set>
#include <string>

namespace chalkpane::testing {
namespace {

using Names = std::set<std::string>;

std::string OutputOf(const std::string& command) {
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    REQUIRE(pipe != nullptr);
    std::array<char, 4096> part{};
    while (std::fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr) text += part.data();
    REQUIRE_EQ(pclose(pipe), 0);
    return text;
}

Names DynamicSymbols(const std::string& options) {
    const std::string text =
        OutputOf(std::string(CHALKPANE_NM) + " -D " + options + " --format=posix '" CHALKPANE_MODULE "'");
    Names names;
    const std::regex firstWord("(^|\n)([^ \n]+) ");
    for (std::sregex_iterator match(text.begin(), text.end(), firstWord), end; match != end; ++match) {
        names.insert((*match)[2].str());
    }
    return names;
}

TEST_CASE("The module exports the eleven entry points and nothing else") {
    CHECK_EQ(DynamicSymbols("--defined-only"),
             Names{"PLUGIN_INIT_EX", "PLUGIN_INIT_FUNCTION", "PLUGIN_CLEANUP_FUNCTION", "PLUGIN_GUI_STATUS",
                   "PLUGIN_CHANGED_CALLBACK", "PLUGIN_EXEC_ACTION", "PLUGIN_EXEC_PER_FIELD", "PLUGIN_MOUSE_CALLBACK",
                   "PLUGIN_KEYBOARD_CALLBACK", "PLUGIN_PRE_RENDER_OPENGL", "PLUGIN_POST_RENDER_OPENGL"});
}

TEST_CASE("The module imports every function of the host and no other of its kind") {
    Names imported;
    for (const std::string& name : DynamicSymbols("--undefined-only")) {
        if (std::regex_match(name, std::regex("qo[A-Z].*|_api__.*|kelGL_.*"))) imported.insert(name);
    }
    CHECK_EQ(imported, Names{"qoRegisterPlugin",
                             "qoRegisterPluginType",
                             "qoRegisterPluginFolder",
                             "qoRegisterParameterBool",
                             "qoRegisterParameterInt",
                             "qoRegisterParameterFloat",
                             "qoRegisterParameterColor",
                             "qoRegisterParameterImage",
                             "qoRegisterParameterRadio",
                             "qoRegisterPushButton",
                             "qoRegisterTotalSize",
                             "qoHideParameter",
                             "qoSendGuiParameterShow",
                             "_api__object_valid",
                             "_api__set_changed",
                             "_api__get_objectid_local",
                             "_api__container_get_drop",
                             "_api__container_get_bounding_box",
                             "_api__container_get_transformation_matrix",
                             "_api__container_set_multi_texture",
                             "_api__container_delete_multi_texture",
                             "_api__container_delete_texture",
                             "_api__get_image_objectid",
                             "_api__get_image_size",
                             "_api__get_image_data",
                             "_api__get_image_format",
                             "_api__create_image",
                             "_api__image_delete_image",
                             "_api__rebuild_texture",
                             "_api__image_subtexload",
                             "_api__texture_create_texture",
                             "_api__texture_delete_texture",
                             "_api__set_texture_map_type",
                             "_api__set_texture_env_type",
                             "_api__set_texture_qual_type",
                             "_api__set_texture_wrap_type",
                             "_api__texture_set_optimize",
                             "_api__get_sceneid_local",
                             "_api__get_scene_current_camera",
                             "_api__get_cameraid",
                             "_api__get_camera_matrix",
                             "_api__scene_redraw",
                             "_api__tessmar_query_mouse_pos",
                             "_api__tessmar_get_window_size",
                             "kelGL_glActiveTexture",
                             "kelGL_glTexEnvi",
                             "kelGL_glMatrixMode",
                             "kelGL_glLoadIdentity",
                             "kelGL_glTranslatef",
                             "kelGL_glScalef",
                             "kelGL_glGetIntegerv",
                             "kelGL_glPixelStorei",
                             "kelGL_glEnable",
                             "kelGL_glDisable",
                             "kelGL_glBlendFunc",
                             "kelGL_gluUnProject"});
}

}  // namespace
}  // namespace chalkpane::testing
