#pragma once

#include <memory>

#include "kel/live/live_source.h"

namespace kel {

// Opens live pictures and waits for the first of them, in a small window when it takes long. Null: the operator has
// closed that. Throws Error when there will never be one, or when there is no display.
[[nodiscard]] std::shared_ptr<LiveSource> ConnectLive(const LiveName& name, const PacketRing::Limits& replay);

}  // namespace kel
