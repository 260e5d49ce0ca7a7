#pragma once

#include "kel/scene/host.h"
#include "kel/scene/host_state.h"

namespace kel {

// The drawings of all modules alone, at the window's size; colours multiplied by alpha. Borrowed until the next call.
[[nodiscard]] const picture_io::Picture& OverlayPicture(HostState& state);

// One scene, rendered in four ways; opaque pictures of one size.
struct OverlaySources {
    picture_io::Picture drawn;      // as it is
    picture_io::Picture undrawn;    // without the drawings
    picture_io::Picture overBlack;  // the drawings with all else black
    picture_io::Picture overWhite;  // and white
};

// What, composited over `undrawn`, gives `drawn` but for rounding; colours multiplied by alpha.
[[nodiscard]] picture_io::Picture OverlayOf(const OverlaySources& sources);

}  // namespace kel
