#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kel/session/session_lines.h"
#include "kel/workspace/workspace.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/pixels.h"

namespace kel::testing {

// A folder with a grey picture of 320 x 240, and how a workspace is opened on it.
class GreyPlace {
public:
    GreyPlace() {
        picture_io::WritePicture(Plain(320, 240, {90, 90, 90, 255}), folder / "grey.png");
        options.module = CHALKPANE_MODULE;
        options.recording = folder / "run.json";
        options.saves = folder.Path();
    }
    [[nodiscard]] nlohmann::json Recorded() const {
        return nlohmann::json::parse(WholeSessionText(cli::testing::ReadText(options.recording)));
    }

    cli::testing::TemporaryFolder folder;
    WorkspaceOptions options;
};

struct DrawnLine {
    std::int32_t fromX, fromY, toX, toY;
};

// One field for each of some places along the way.
inline void Draw(Workspace& workspace, const DrawnLine& line) {
    constexpr int steps = 8;
    workspace.Point(PointerKind::Press, line.fromX, line.fromY);
    workspace.RunFields(1);
    for (int i = 1; i <= steps; ++i) {
        workspace.Point(PointerKind::Move, line.fromX + (line.toX - line.fromX) * i / steps,
                        line.fromY + (line.toY - line.fromY) * i / steps);
        workspace.RunFields(1);
    }
    workspace.Point(PointerKind::Release, line.toX, line.toY);
    workspace.RunFields(1);
}

inline picture_io::Picture CanvasOf(Workspace& workspace) {
    return workspace.TheHost().ReadCanvas(workspace.Chosen()->id);
}

// What `kel play` makes of a session.
inline picture_io::Picture CanvasWhenPlayed(const std::filesystem::path& file) {
    const Session session = ReadSession(file);
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::NotWanted);
    return host.ReadCanvas(player.OverlayContainer());
}

inline std::size_t IndexOf(const Workspace& workspace, const std::string& parameter) {
    const Registration& registration = *workspace.Chosen()->registration;
    return static_cast<std::size_t>(registration.FindParameter(parameter) - registration.parameters.data());
}

}  // namespace kel::testing
