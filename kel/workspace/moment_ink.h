#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "telestrator/journal/ink_stroke.h"

namespace kel {

// Which strokes of a canvas belong to which moment of the live pictures, so that what is drawn on a replay leaves with
// its moment and is there again when that is shown. What is drawn while they are live is always there.
class MomentInk {
public:
    using Strokes = std::vector<chalkpane::SharedStroke>;
    // Microseconds, as the ring has them; nothing: they are live.
    using Moment = std::optional<std::int64_t>;

    // How far to either side of its moment a stroke is seen, so that a hand finds it again.
    static constexpr std::int64_t reach = 200'000;

    [[nodiscard]] Moment Shown() const { return m_shown; }
    [[nodiscard]] bool IsEmpty() const { return m_strokes.empty(); }

    // What is on the canvas now: strokes that are new belong to the moment that is shown, and those that are gone are
    // forgotten. One that belongs elsewhere is there because a change of moments was undone, which means nothing.
    void Note(const Strokes& onCanvas);
    // The strokes of that moment, which is shown from now on, in the order in which they were drawn.
    [[nodiscard]] Strokes Show(const Moment& moment);
    // All of them, which are of no moment any more.
    [[nodiscard]] Strokes ShowAll();
    // No moment before this one is ever shown again.
    void ForgetBefore(std::int64_t moment);

private:
    struct Stroke {
        chalkpane::SharedStroke ink;
        Moment moment;
    };
    [[nodiscard]] bool Knows(const chalkpane::SharedStroke& ink) const;

    std::vector<Stroke> m_strokes;
    Strokes m_onCanvas;  // as it was shown or noted last
    Moment m_shown;
};

}  // namespace kel
