#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "kel/module_loading/module.h"
#include "kel/scene/pointer_queue.h"
#include "kel/session/session_access.h"
#include "kel/video/video_clock.h"
#include "kel/workspace/workspace_scene.h"

namespace kel {

// What happens at the workspace, as the session that plays it again: the scene with the events it had, and the
// operator's after them, in the lines of kel/session/session_lines.h.
class Recording {
public:
    // modules: what each of the scene's containers carries, null: nothing; used for the time of the call.
    // module: what a plug-in without a module of its own was given; empty: what `kel play` takes by itself. The
    // operator's and installed modules are written by their names alone, under which `kel play` knows those that it is
    // given.
    Recording(const WorkspaceScene& scene, const std::vector<const Registration*>& modules,
              const std::filesystem::path& module, const SessionPermissions& permissions);

    // Fields never go back. The container is an index into the scene's.
    void AddPointer(std::int64_t field, const PointerStep& step);
    // Of a step that was run before the field.
    void AddStep(std::int64_t field, const PointerStep& step);
    void AddSetting(std::int64_t field, std::size_t container, const Parameter& parameter, const ParameterValue& value);
    void AddButton(std::int64_t field, std::size_t container, const std::string& button);
    // module: what the container carries.
    void AddInk(std::int64_t field, std::size_t container, const InkEdit& edit, const Registration& module,
                double fieldsPerSecond);
    void AddVideo(std::int64_t field, std::size_t container, const VideoChange& change);

    // How many fields have been played; at least 1 is said.
    void AddFields(std::int64_t fields);

    [[nodiscard]] bool HasLines() const { return !m_lines.empty(); }
    // What has been added since the last call, at first with the scene.
    [[nodiscard]] std::string TakeLines() { return std::exchange(m_lines, {}); }

private:
    void AddLine(const std::string& line) { m_lines.append(line) += '\n'; }

    std::string m_lines;
    std::vector<std::string> m_names;  // of the containers
};

}  // namespace kel
