#include "kel/workspace/workspace_scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <numbers>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "kel/session/session_json.h"
#include "kel/session/session_lines.h"
#include "kel/session/session_values.h"
#include "kel/video/video_reader.h"
#include "kel/workspace/panel_layout.h"
#include "picture_io/picture_format.h"

namespace kel {
namespace {

using nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr double fieldOfView = 40;
constexpr double usualFieldsPerSecond = 50;

// How much nearer to the camera than the picture the pane stands. It is smaller by as much, so that both meet the same
// pixels.
constexpr double paneNearness = 0.001;

// What is drawn on.
struct Backdrop {
    std::string key;  // of a container: "picture", "film" or "live"
    WindowSize size;
    double fieldsPerSecond = usualFieldsPerSecond;
};

enum class FileKind { Picture, Video, Session };

FileKind KindOf(const fs::path& file) {
    cli::RequireRegularFile(file);
    std::array<char, 64> bytes{};
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) throw cli::Error(file.string(), {}, "cannot be read: " + std::generic_category().message(errno));
    stream.read(bytes.data(), bytes.size());
    const std::string_view start(bytes.data(), static_cast<std::size_t>(stream.gcount()));
    if (picture_io::FormatOfBytes({reinterpret_cast<const std::uint8_t*>(start.data()), start.size()}) != nullptr)
        return FileKind::Picture;
    const std::size_t letter = start.find_first_not_of(" \t\r\n");
    const bool isObject = letter != std::string_view::npos && start[letter] == '{';
    return isObject || file.extension() == ".json" ? FileKind::Session : FileKind::Video;
}

// A video's frames change with a field, every time: its rate is taken as often as comes nearest to the usual one.
double FieldsPerSecondFor(double framesPerSecond) {
    return std::clamp(framesPerSecond * std::max(1.0, std::round(usualFieldsPerSecond / framesPerSecond)), 1.0, 1000.0);
}

Backdrop PictureBackdrop(const fs::path& file) {
    const picture_io::Picture picture = picture_io::ReadPicture(file);
    return {"picture", {picture.width, picture.height}};
}

Backdrop VideoBackdrop(const fs::path& file) {
    const VideoReader video(file);
    return {"film", {video.Width(), video.Height()}, FieldsPerSecondFor(video.FramesPerSecond())};
}

// Of the workspace's values for the pen those that the module takes.
ordered_json PenValues(const Registration& module) {
    ordered_json values = ordered_json::object();
    for (const SessionValue& value : ThePanelLayout().pen) {
        const Parameter* parameter = module.FindParameter(value.name);
        if (parameter == nullptr) continue;
        try {
            values[value.name] = JsonValue(*parameter, ToParameterValue(Session{}, value, *parameter));
        } catch (const cli::Error&) {
            continue;  // another module's parameter of the same name
        }
    }
    return values;
}

ordered_json SceneAround(const std::string& source, const Backdrop& backdrop, const Registration& module) {
    const auto [width, height] = backdrop.size;
    const double side = std::max(width, height);
    const double distance = height / 2.0 / std::tan(fieldOfView / 2 / 180 * std::numbers::pi);
    const double paneScale = 1 - paneNearness;
    return {{"window", {{"width", width}, {"height", height}}},
            {"fieldsPerSecond", backdrop.fieldsPerSecond},
            {"camera", {{"position", {0, 0, distance}}, {"target", {0, 0, 0}}, {"fieldOfView", fieldOfView}}},
            {"containers",
             {{{"name", backdrop.key}, {"size", {width, height}}, {backdrop.key, source}},
              {{"name", "pane"},
               {"size", {side, side}},
               {"position", {0, 0, distance * paneNearness}},
               {"scale", {paneScale, paneScale, 1}},
               {"plugin", {{"parameters", PenValues(module)}}}}}}};
}

WorkspaceScene SceneOf(const std::string& source, const fs::path& file, const Backdrop& backdrop,
                       const Registration& module) {
    WorkspaceScene scene;
    scene.text = SceneAround(source, backdrop, module).dump(2, ' ', false, ordered_json::error_handler_t::replace);
    scene.session = ParseSession(scene.text, file);
    return scene;
}

}  // namespace

bool IsSessionFile(const fs::path& file) { return KindOf(file) == FileKind::Session; }

WorkspaceScene OpenWorkspaceScene(const fs::path& file, const Registration& module) {
    WorkspaceScene scene;
    const FileKind kind = KindOf(file);
    if (kind == FileKind::Session) {
        scene.session = ReadSession(file);
        const auto bytes = cli::ReadFileBytes(file);
        scene.text = WholeSessionText({bytes.begin(), bytes.end()});
        return scene;
    }
    const Backdrop backdrop = kind == FileKind::Picture ? PictureBackdrop(file) : VideoBackdrop(file);
    return SceneOf(fs::absolute(file).string(), file, backdrop, module);
}

WorkspaceScene LiveWorkspaceScene(const ScenePictures& live, const Registration& module) {
    return SceneOf(live.name, live.name, {"live", live.size, FieldsPerSecondFor(live.framesPerSecond)}, module);
}

WorkspaceScene VideoWorkspaceScene(const ScenePictures& video, const Registration& module) {
    return SceneOf(video.name, video.name, {"film", video.size, FieldsPerSecondFor(video.framesPerSecond)}, module);
}

}  // namespace kel
