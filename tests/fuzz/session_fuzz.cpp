#include "kel/session/player_pointer.h"
#include "kel/session/session.h"
#include "tests/fuzz/fuzz_input.h"

// A session, and the way of its pointer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::TakeOrRefuse([&] {
        const kel::Session session = kel::ParseSession(fuzz::TextOf(bytes, size), "fuzz.json");
        if (session.fields < 10'000) (void)kel::PointerTrack(session);
    });
    return 0;
}
