#include "kel/window/live_wait.h"

#include "kel/window/progress_window.h"
#include "kel/window/sdl_window.h"

namespace kel {
namespace {

constexpr auto soon = std::chrono::milliseconds(1500);
constexpr auto lookAgain = std::chrono::milliseconds(50);

}  // namespace

std::shared_ptr<LiveSource> ConnectLive(const LiveName& name, const PacketRing::Limits& replay) {
    auto live = std::make_shared<LiveSource>(name, replay);
    if (live->WaitForPicture(soon)) return live;
    // Without a display nobody could end the waiting.
    { const SdlWindow anyWindow("kel"); }
    bool isThere = false;
    RunWithProgressWindow("Waiting for pictures from " + name.shown, [&](WorkProgress& progress) {
        while (!isThere && !progress.isStopped) isThere = live->WaitForPicture(lookAgain);
    });
    return isThere ? live : nullptr;
}

}  // namespace kel
