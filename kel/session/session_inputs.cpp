#include "kel/session/session_inputs.h"

#include <system_error>

#include "cli/nearest_name.h"

namespace kel {
namespace {

void AddValues(const Session& session, const std::vector<SessionValue>& values, std::vector<SessionInput>& inputs) {
    for (const SessionValue& value : values) {
        const auto* text = std::get_if<std::string>(&value.value);
        std::error_code failure;
        if (text != nullptr && !text->empty() && std::filesystem::exists(session.Resolve(*text), failure))
            inputs.push_back({*text, value.place, SessionInput::Use::PluginPicture});
    }
}

}  // namespace

std::vector<SessionInput> InputsOf(const Session& session) {
    std::vector<SessionInput> inputs;
    for (const SessionContainer& container : session.containers) {
        if (!container.picture.empty())
            inputs.push_back({container.picture, container.place + "/picture", SessionInput::Use::Picture});
        if (!container.video.empty())
            inputs.push_back({container.video, container.place + "/film", SessionInput::Use::Video});
        if (container.plugin) AddValues(session, container.plugin->parameters, inputs);
    }
    for (const SessionEvent& event : session.events) {
        if (const auto* set = std::get_if<SetEvent>(&event.what)) AddValues(session, set->values, inputs);
        if (const auto* ink = std::get_if<InkEvent>(&event.what)) AddValues(session, ink->values, inputs);
    }
    return inputs;
}

std::vector<std::filesystem::path> InputFilesOf(const Session& session) {
    std::vector<std::filesystem::path> files{session.file};
    for (const SessionInput& input : InputsOf(session)) files.push_back(session.Resolve(input.path));
    return files;
}

std::vector<std::string> LiveNotices(const Session& session) {
    std::vector<std::string> notices;
    for (const SessionContainer& container : session.containers)
        if (!container.live.empty())
            notices.push_back(session.file.string() + ": " + container.place +
                              "/live: no file has live pictures opened, so " + cli::Quoted(container.live) +
                              " stays black under the ink");
    return notices;
}

}  // namespace kel
