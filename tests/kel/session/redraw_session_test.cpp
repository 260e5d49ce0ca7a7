#include <doctest/doctest.h>

#include <algorithm>
#include <filesystem>

#include "kel/scene/host.h"
#include "kel/session/player.h"

namespace kel {

TEST_CASE("Every example session looks the same whether its changes are drawn or all of it, byte for byte") {
    constexpr std::int64_t looks = 12;
    int sessions = 0;
    int still = 0;  // fields in which nothing was drawn
    for (const auto& entry : std::filesystem::directory_iterator(KEL_SOURCE_FOLDER "/examples")) {
        if (entry.path().extension() != ".json") continue;
        const Session session = ReadSession(entry.path());
        Host parts({session.window.width, session.window.height});
        Host whole({session.window.width, session.window.height});
        whole.SetRedraw(Redraw::Whole);
        Player changed(session, parts, CHALKPANE_MODULE);
        Player all(session, whole, CHALKPANE_MODULE);
        const std::int64_t between = std::max<std::int64_t>(session.fields / looks, 1);
        while (!changed.IsOver()) {
            CAPTURE(entry.path().string());
            CAPTURE(changed.NextField());
            const bool isLookedAt = changed.NextField() % between == 0;
            // The parts are drawn in most fields and gathered over the others.
            const bool isDrawn = isLookedAt || changed.NextField() % 5 != 0;
            const std::uint64_t before = parts.PictureNumber();
            (void)changed.PlayField(isDrawn ? Player::Rendering::Wanted : Player::Rendering::NotWanted);
            (void)all.PlayField(isLookedAt ? Player::Rendering::Wanted : Player::Rendering::NotWanted);
            if (parts.PictureNumber() == before) ++still;
            if (isLookedAt || changed.IsOver()) CHECK(parts.ReadFrame() == whole.ReadFrame());
        }
        ++sessions;
    }
    CHECK_GE(sessions, 6);
    CHECK_GT(still, 100);
}

}  // namespace kel
