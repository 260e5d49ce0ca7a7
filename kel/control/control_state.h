#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kel/workspace/workspace.h"

namespace kel {

// What the workspace tells those outside: each change once, whoever made it, as a JSON object on one line.
// docs/control.md lists them.
class ControlState {
public:
    // The changes since the last call, to be asked after each field; the first time all there is. The workspace may be
    // another one than before: all of it is told then.
    [[nodiscard]] std::vector<std::string> TakeEvents(Workspace& workspace);

private:
    struct VideoLook {
        std::int64_t frame = 0;
        bool isRunning = false;
        bool loops = false;
        double speed = 1;
        std::int64_t in = 0;
        std::int64_t out = 0;
        friend bool operator==(const VideoLook&, const VideoLook&) = default;
    };
    struct LiveLook {
        bool isThere = false;
        bool isReplay = false;
        bool inkLeaves = false;
        friend bool operator==(const LiveLook&, const LiveLook&) = default;
    };
    using Events = std::vector<std::string>;

    void TellParameters(Workspace& workspace, Events& events);
    void TellChosen(const Workspace& workspace, Events& events);
    void TellVideo(const Workspace& workspace, Events& events);
    void TellLive(const Workspace& workspace, Events& events);
    void TellInk(const Workspace& workspace, Events& events);

    const Workspace* m_workspace = nullptr;             // only compared
    std::vector<std::vector<ParameterValue>> m_values;  // of each plug-in; empty: not told yet
    std::optional<std::size_t> m_chosen;
    std::optional<VideoLook> m_video;
    std::optional<LiveLook> m_live;
    std::int64_t m_videoField = 0;  // in which it was told last
    std::optional<std::size_t> m_strokes;
    std::int64_t m_strokesField = 0;  // in which they were counted last
    std::optional<Workspace::Fading> m_fading;
};

}  // namespace kel
