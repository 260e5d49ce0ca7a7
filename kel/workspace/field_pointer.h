#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "kel/scene/host.h"

namespace kel {

// What the hand does between two fields, handed out field by field as a session writes it: a field has one press or one
// release at most, or else the place where the pointer has come to.
class FieldPointer {
public:
    struct Event {
        PointerKind kind = PointerKind::Move;
        std::int32_t x = 0;  // window pixels
        std::int32_t y = 0;
        friend bool operator==(const Event&, const Event&) = default;
    };

    void Add(const Event& event) { m_waiting.push_back(event); }

    // What the next field gets. fieldsDue: how many fields follow each other at once, this one counted, at least 1;
    // what waits is spread over them, so that a hand that moved while the machine was busy still draws its path.
    [[nodiscard]] std::optional<Event> TakeField(int fieldsDue);

private:
    std::deque<Event> m_waiting;
};

}  // namespace kel
