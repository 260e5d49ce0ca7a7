#pragma once

#include "host/host.h"
#include "host/host_state.h"

namespace kel {

// The drawings of all modules alone, at the window's size.
[[nodiscard]] Picture OverlayPicture(HostState& state, AlphaForm form);

// One scene, rendered in four ways; opaque pictures of one size.
struct OverlaySources {
    Picture drawn;      // as it is
    Picture undrawn;    // without the drawings
    Picture overBlack;  // the drawings with all else black
    Picture overWhite;  // and white
};

// What, laid over `undrawn`, gives `drawn` but for rounding; colours multiplied by alpha.
[[nodiscard]] Picture OverlayOf(const OverlaySources& sources);

}  // namespace kel
