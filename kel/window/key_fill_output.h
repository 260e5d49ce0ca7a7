#pragma once

#include <memory>
#include <optional>

#include "kel/scene/host.h"

union SDL_Event;

namespace kel {

// Two windows with the strokes alone, for a mixer: their colours, and their alpha as grey. As CleanOutput is otherwise.
class KeyFillOutput {
public:
    // display     of the fill, counted from 1; the key is on the next one. Nothing: the second and the third one, and
    //             windows where there are none
    // isStraight  the fill's colours are not multiplied by alpha
    // Throws Error when there is no such display, or no window can be opened.
    KeyFillOutput(WindowSize scene, std::optional<int> display, bool isStraight);
    ~KeyFillOutput();
    KeyFillOutput(const KeyFillOutput&) = delete;
    KeyFillOutput& operator=(const KeyFillOutput&) = delete;
    KeyFillOutput(KeyFillOutput&&) = delete;
    KeyFillOutput& operator=(KeyFillOutput&&) = delete;

    // changed: of the scene's picture since the last call, in its pixels
    void Show(Host& host, const FrameArea& changed);
    // All is shown by the next call, also of another host.
    void ShowAnew();
    [[nodiscard]] bool TakeEvent(SDL_Event& event);
    [[nodiscard]] bool IsClosed() const;  // one of the two

private:
    struct Pair;
    std::unique_ptr<Pair> m_pair;
};

}  // namespace kel
