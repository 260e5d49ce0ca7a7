#include "kel/workspace/recording.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "kel/session/session_json.h"

namespace kel {
namespace {

using nlohmann::ordered_json;
namespace fs = std::filesystem;

std::string Dump(const ordered_json& json) { return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace); }

// A path of the scene's file, for a file that lies elsewhere.
void MakeAbsolute(ordered_json& path, const Session& session) {
    const auto text = path.get<std::string>();
    if (!text.empty()) path = fs::absolute(session.Resolve(text)).lexically_normal().string();
}

// The values that are paths of images.
void MakeImagesAbsolute(ordered_json& values, const Registration& module, const Session& session) {
    for (auto& [name, value] : values.items()) {
        const Parameter* parameter = module.FindParameter(name);
        if (parameter != nullptr && parameter->kind == ParameterKind::Image) MakeAbsolute(value, session);
    }
}

// Every container gets a name, which events may need.
std::vector<std::string> NameContainers(ordered_json& containers) {
    std::set<std::string> taken;
    for (const ordered_json& container : containers) taken.insert(container.value("name", ""));
    std::vector<std::string> names;
    for (ordered_json& container : containers) {
        if (!container.contains("name")) {
            std::string name = "container " + std::to_string(names.size() + 1);
            while (!taken.insert(name).second) name += '+';
            container["name"] = name;
        }
        names.push_back(container["name"].get<std::string>());
    }
    return names;
}

ordered_json PointerJson(std::int64_t field, const PointerStep& step) {
    constexpr std::int32_t farthest = 100'000;  // what a session takes
    const char* kind = step.kind == PointerKind::Press ? "press" : step.kind == PointerKind::Move ? "move" : "release";
    ordered_json event{{"field", field},
                       {kind, {std::clamp(step.x, -farthest, farthest), std::clamp(step.y, -farthest, farthest)}}};
    constexpr double full = 1;
    if (step.pressure < full) event["pressure"] = step.pressure;
    return event;
}

}  // namespace

Recording::Recording(const WorkspaceScene& scene, const std::vector<const Registration*>& modules,
                     const fs::path& module, const SessionPermissions& permissions) {
    ordered_json json = ordered_json::parse(scene.text);
    const Session& session = scene.session;
    const SessionAccess access(session, permissions);
    json["recording"] = true;
    ordered_json& containers = json["containers"];
    m_names = NameContainers(containers);
    for (std::size_t i = 0; i < containers.size(); ++i) {
        ordered_json& container = containers[i];
        for (const char* key : {"picture", "film"})
            if (container.contains(key)) MakeAbsolute(container[key], session);
        if (modules[i] == nullptr) continue;
        ordered_json& plugin = container["plugin"];
        if (!plugin.contains("module") && !module.empty())
            plugin["module"] = module.filename().string();
        else if (plugin.contains("module") && !access.TrustedModule(plugin["module"].get<std::string>()))
            MakeAbsolute(plugin["module"], session);
        if (plugin.contains("parameters")) MakeImagesAbsolute(plugin["parameters"], *modules[i], session);
    }
    // The parsed events know their containers; they stand in the order of their fields, those of the file in its own.
    ordered_json events = json.value("events", ordered_json::array());
    for (const SessionEvent& event : session.events) {
        const auto* set = std::get_if<SetEvent>(&event.what);
        const auto* ink = std::get_if<InkEvent>(&event.what);
        if (set == nullptr && (ink == nullptr || ink->values.empty())) continue;
        ordered_json& written = json[ordered_json::json_pointer(event.place)];
        if (set != nullptr) MakeImagesAbsolute(written["set"], *modules[set->container], session);
        if (ink != nullptr) MakeImagesAbsolute(written["parameters"], *modules[ink->container], session);
    }
    events = json.value("events", ordered_json::array());
    for (const char* key : {"$schema", "events", "fields"}) json.erase(key);
    AddLine(Dump(json));
    for (const ordered_json& event : events) AddLine(Dump(event));
}

void Recording::AddPointer(std::int64_t field, const PointerStep& step) { AddLine(Dump(PointerJson(field, step))); }

void Recording::AddStep(std::int64_t field, const PointerStep& step) {
    ordered_json event = PointerJson(field, step);
    event["step"] = true;
    AddLine(Dump(event));
}

void Recording::AddSetting(std::int64_t field, std::size_t container, const Parameter& parameter,
                           const ParameterValue& value) {
    AddLine(Dump({{"field", field},
                  {"container", m_names[container]},
                  {"set", {{parameter.name, JsonValue(parameter, value)}}}}));
}

void Recording::AddButton(std::int64_t field, std::size_t container, const std::string& button) {
    AddLine(Dump({{"field", field}, {"container", m_names[container]}, {"button", button}}));
}

void Recording::AddVideo(std::int64_t field, std::size_t container, const VideoChange& change) {
    ordered_json video = ordered_json::object();
    if (change.frame) video["frame"] = *change.frame;
    if (change.play) video["play"] = *change.play;
    if (change.loop) video["loop"] = *change.loop;
    if (change.speed) video["speed"] = *change.speed;
    if (change.in) video["in"] = *change.in;
    if (change.out) video["out"] = *change.out;
    AddLine(Dump({{"field", field}, {"container", m_names[container]}, {"film", video}}));
}

void Recording::AddFields(std::int64_t fields) { AddLine(Dump({{"fields", std::max<std::int64_t>(fields, 1)}})); }

}  // namespace kel
