#include <algorithm>

#include "kel/session/player.h"
#include "tests/fuzz/fuzz_input.h"

// A session that is played on the real module: what it names lies nowhere, so it is pictures, parameters, buttons and
// the pointer that count. Sizes and lengths are bounded; what they cost is known.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::TakeOrRefuse([&] {
        constexpr std::int32_t largestSide = 128;
        constexpr std::int64_t mostFields = 40;
        kel::Session session = kel::ParseSession(fuzz::TextOf(bytes, size), "/nonexistent/fuzz.json");
        if (session.containers.size() > 3 || session.events.size() > 100) return;
        const auto isLong = [](const kel::SessionEvent& event) { return event.LastField() > 10'000; };
        if (std::ranges::any_of(session.events, isLong)) return;
        session.window.width = std::min(session.window.width, largestSide);
        session.window.height = std::min(session.window.height, largestSide);
        kel::Host host({session.window.width, session.window.height});
        kel::Player player(session, host, CHALKPANE_MODULE);
        while (!player.IsOver() && player.NextField() < mostFields)
            (void)player.PlayField(kel::Player::Rendering::NotWanted);
        if (const auto canvas = player.OverlayContainer(); canvas != kel::noObject && player.NextField() > 1)
            fuzz::TakeOrRefuse([&] { (void)host.ReadCanvas(canvas); });
    });
    return 0;
}
