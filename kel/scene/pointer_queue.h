#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

namespace kel {

enum class PointerKind { Press, Move, Release };

// One thing that the pointer does, and where.
struct PointerStep {
    PointerKind kind = PointerKind::Move;
    std::int32_t x = 0;   // window pixels, from the left; may lie outside
    std::int32_t y = 0;   // window pixels, from the top
    double pressure = 1;  // of a pen, 0.0 .. 1.0, for those who keep what the hand did; modules are not told
    friend bool operator==(const PointerStep&, const PointerStep&) = default;
};

// What the hand does between two fields, handed out field by field: a field gets one press or one release at most, or
// else the place where the pointer has come to. A second press or release in the same field would replace the changed
// rectangle of the first before it was uploaded, and so would the poll of a later move.
class PointerQueue {
public:
    void Add(const PointerStep& step) { m_waiting.push_back(step); }

    // What the next field gets. fieldsDue: how many fields follow each other at once, this one counted, at least 1;
    // what waits is spread over them, so that a hand that moved while the machine was busy still draws its path.
    [[nodiscard]] std::optional<PointerStep> TakeField(int fieldsDue = 1);

    // What TakeField would answer, of all that waits; empty: nothing waits.
    [[nodiscard]] std::optional<PointerKind> Next() const;

    [[nodiscard]] std::size_t Buttons() const;  // how many presses and releases wait

private:
    std::deque<PointerStep> m_waiting;
};

}  // namespace kel
