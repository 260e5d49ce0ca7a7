#pragma once

#include <cstdint>
#include <vector>

#include "kel/session/session.h"

namespace kel {

// What the pointer does in one field.
struct TimedPointerStep {
    std::int64_t field = 0;
    PointerStep step;
    bool isStep = false;  // happens before the field, with a field callback of its own
    friend bool operator==(const TimedPointerStep&, const TimedPointerStep&) = default;
};

// All that the pointer does in a session, field by field, strokes resolved into press, moves and release.
//
// A field has one press or one release at most, with nothing of the pointer after it: whatever the file puts behind it
// in the same field waits for the next one, so that the module uploads what each of them changed. Of several moves in
// one field the last one counts. Steps are all there, in front of what the field itself has; one that the file puts
// behind that waits for the next field. Throws Error where a stroke meets another event of the pointer, and where
// waiting would lead past the session's end.
[[nodiscard]] std::vector<TimedPointerStep> PointerTrack(const Session& session);

}  // namespace kel
