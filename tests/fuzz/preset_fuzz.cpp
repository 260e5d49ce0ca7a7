#include "apps/chalkpane/curves/frame_rate_clock.h"
#include "apps/chalkpane/presets/preset.h"
#include "tests/fuzz/fuzz_input.h"

// A preset: what was read can be written, and what was written reads as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace chalkpane::app;
    const FrameRateClock clock;
    std::string text;
    fuzz::TakeOrRefuse(
        [&] { text = TextOfPreset(ViewOf(ReadPresetText(fuzz::TextOf(bytes, size), "fuzz", {}, clock)), {}); });
    if (text.empty()) return 0;
    if (TextOfPreset(ViewOf(ReadPresetText(text, "again", {}, clock)), {}) != text) std::abort();
    return 0;
}
