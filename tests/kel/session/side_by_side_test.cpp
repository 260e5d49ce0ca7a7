#include <doctest/doctest.h>

#include <array>
#include <future>
#include <string>

#include "kel/scene/host.h"
#include "kel/session/player.h"

// Two hosts, each on a thread of its own. The thread sanitizer runs this too.

namespace kel {
namespace {

struct PlayedBeside {
    picture_io::Picture frame;
    picture_io::Picture canvas;
    friend bool operator==(const PlayedBeside&, const PlayedBeside&) = default;
};

PlayedBeside PlayBeside(const std::string& name) {
    const Session session = ReadSession(KEL_SOURCE_FOLDER "/examples/" + name + ".json");
    Host host({session.window.width, session.window.height});
    Player player(session, host, CHALKPANE_MODULE);
    while (!player.IsOver()) (void)player.PlayField(Player::Rendering::NotWanted);
    CHECK(host.WrongUses().empty());
    return {host.ReadFrame(), host.ReadCanvas(player.OverlayContainer())};
}

}  // namespace

TEST_CASE("Sessions played side by side on two threads end as each does alone") {
    // Both recognise shapes, and the one undoes while the other smooths.
    const std::array names{"telestration", "undo"};
    const std::array alone{PlayBeside(names[0]), PlayBeside(names[1])};
    CHECK_FALSE(alone[0].canvas == alone[1].canvas);
    auto first = std::async(std::launch::async, PlayBeside, names[0]);
    auto second = std::async(std::launch::async, PlayBeside, names[1]);
    CHECK(first.get() == alone[0]);
    CHECK(second.get() == alone[1]);
}

}  // namespace kel
