#include "kel/ink/ink_follower.h"

#include <doctest/doctest.h>

#include <cstring>

#include "tests/kel/ink/drawing_hand.h"

namespace kel {
namespace {

using testing::HandAct;
using testing::RandomHand;
using testing::SlantedPane;

// A follower of the module on a pane.
class FollowedPane {
public:
    FollowedPane()
        : m_module(*TelestratorModule::Find(pane.host.LoadModule(CHALKPANE_MODULE).registration)),
          follower(pane.host.State(), pane.container, m_module, pane.host.History(pane.container), nullptr) {}

    void Do(const HandAct& act) {
        pane.Do(act, [&](const std::string&) { Check(); });
        Check();
    }
    void Check() {
        follower.Follow(pane.host.History(pane.container), pane.host.FieldsRun());
        REQUIRE(follower.IsInStep());
        const auto texture = pane.host.TextureBytes(pane.container);
        const chalkpane::CanvasPixels pixels = follower.Telestrator().Inner().canvasSurface->GetPixels();
        REQUIRE_EQ(texture.size(), pixels.byteSize);
        REQUIRE(std::memcmp(texture.data(), pixels.bytes, pixels.byteSize) == 0);
    }

    SlantedPane pane;

private:
    TelestratorModule m_module;

public:
    InkFollower follower;
};

}  // namespace

TEST_CASE("a follower has the canvas of the module after every field, whatever is done") {
    for (std::uint32_t seed = 1; seed <= 6; ++seed) {
        CAPTURE(seed);
        FollowedPane followed;
        RandomHand hand(seed);
        for (int i = 0; i < 25; ++i) followed.Do(hand.Next());
        followed.Do(RandomHand::Waiting(10));
    }
}

TEST_CASE("a follower goes with the module's undo as far as its ring, and round it") {
    FollowedPane followed;
    RandomHand hand(11);
    followed.Do(RandomHand::Setting("MaxUndos", 3));
    for (int i = 0; i < 6; ++i) followed.Do(hand.Stroke());
    for (int i = 0; i < 5; ++i) followed.Do(RandomHand::Button("Undo"));
    followed.Do(hand.Stroke());
    followed.Do(RandomHand::Button("Undo"));
}

TEST_CASE("a shape that waits while all is cleared or undone comes as the module's does") {
    for (const char* button : {"Clear", "Undo"}) {
        CAPTURE(button);
        FollowedPane followed;
        RandomHand hand(5);
        followed.Do(hand.Stroke());
        followed.Do(RandomHand::Setting("RecoShapes", 1));
        followed.Do(hand.Stroke());
        followed.Do(RandomHand::Button(button));
        followed.Do(RandomHand::Waiting(10));
        followed.Do(hand.Stroke());
        followed.Do(RandomHand::Waiting(10));
    }
}

TEST_CASE("a follower is lost when recognition is switched off while a line waits, until all is cleared") {
    FollowedPane followed;
    RandomHand hand(5);
    followed.Do(hand.Stroke());
    followed.Do(RandomHand::Setting("RecoShapes", 1));
    followed.Do(hand.Stroke());
    followed.pane.host.SetParameter(followed.pane.container, "RecoShapes", std::int32_t{0});
    followed.pane.host.RunField();
    followed.follower.Follow(followed.pane.host.History(followed.pane.container), followed.pane.host.FieldsRun());
    CHECK_FALSE(followed.follower.IsInStep());
    for (int i = 0; i < 8; ++i) followed.pane.host.RunField();
    followed.pane.host.PushButton(followed.pane.container, "Clear");
    followed.pane.host.RunField();
    followed.Do(hand.Stroke());
    followed.Do(hand.Stroke());
}

TEST_CASE("a follower says that it is lost where a picture is the brush") {
    FollowedPane followed;
    followed.pane.host.AddImage("brush", picture_io::Picture(4, 4));
    followed.pane.host.SetParameter(followed.pane.container, "BrushImage", std::string("brush"));
    followed.pane.host.RunField();
    followed.follower.Follow(followed.pane.host.History(followed.pane.container), followed.pane.host.FieldsRun());
    CHECK_FALSE(followed.follower.IsInStep());
}

}  // namespace kel
