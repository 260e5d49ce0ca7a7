#pragma once

#include <cstdlib>
#include <memory>
#include <string>

#include "kel/workspace/workspace.h"
#include "tests/cli/temporary_folder.h"
#include "tests/kel/live/camera.h"
#include "tests/kel/pixels.h"

namespace kel::testing {

// A workspace over a camera of grey 128, of 320 x 240.
class LivePlace {
public:
    LivePlace() {
        camera = CameraOf(320, 240);
        options.module = CHALKPANE_MODULE;
        options.recording = folder / "run.json";
        options.saves = folder.Path();
        options.live = std::make_shared<LiveSource>(
            ParseLiveName("tcp://127.0.0.1:" + std::to_string(port) + "?timeout=90000000"));
        Await("the first picture", [this] { return options.live->WaitForPicture(std::chrono::milliseconds(20)); });
    }

    // Whoever was there before is gone.
    [[nodiscard]] std::unique_ptr<Camera> CameraOf(int width, int height) {
        camera.reset();
        return std::make_unique<Camera>(
            Camera::Settings{.address = "tcp://127.0.0.1:" + std::to_string(port) + "?listen",
                             .format = "nut",
                             .width = width,
                             .height = height});
    }

    cli::testing::TemporaryFolder folder;
    int port = FreePort();
    WorkspaceOptions options;
    std::unique_ptr<Camera> camera;
};

// Through the middle, from left to right.
inline void DrawAcross(Workspace& workspace, std::int32_t y = 120) {
    workspace.Point(PointerKind::Press, 40, y);
    workspace.RunFields(1);
    workspace.Point(PointerKind::Move, 160, y);
    workspace.RunFields(1);
    workspace.Point(PointerKind::Release, 280, y);
    workspace.RunFields(100);  // so that it has become what it will
}

// Until the corner, where nothing is drawn, shows the grey.
inline void AwaitCorner(Workspace& workspace, int grey) {
    Await("the corner's grey", [&] {
        workspace.RunFields(1);
        return std::abs(workspace.TheHost().ReadFrame().At(5, 5)[0] - ShownGrey(grey)) <= 4;
    });
}

}  // namespace kel::testing
