#include "kel/scene/frame_shrinker.h"

#include <algorithm>

#include "kel/scene/gl.h"

namespace kel {
namespace {

// Limits what is drawn for its lifetime.
class Scissor {
public:
    explicit Scissor(const FrameArea& part) {
        glEnable(GL_SCISSOR_TEST);
        glScissor(part.x, part.y, std::max(part.width, 0), std::max(part.height, 0));
    }
    ~Scissor() { glDisable(GL_SCISSOR_TEST); }
    Scissor(const Scissor&) = delete;
    Scissor& operator=(const Scissor&) = delete;
    Scissor(Scissor&&) = delete;
    Scissor& operator=(Scissor&&) = delete;
};

bool IsTwiceAsLarge(const FrameBuffer& frame, const FrameArea& area) {
    return frame.Width() >= 2 * area.width && frame.Height() >= 2 * area.height;
}

// What of a frame is seen in a part of the area that shows it, and a little more for what is taken from between pixels.
FrameArea SeenIn(const FrameBuffer& frame, const FrameArea& area, const FrameArea& part) {
    constexpr std::int64_t margin = 2;  // pixels
    const auto first = [](std::int64_t at, std::int64_t shown, std::int64_t size) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(at * size / shown - margin, 0, size));
    };
    const auto last = [](std::int64_t at, std::int64_t shown, std::int64_t size) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>((at * size + shown - 1) / shown + margin, 0, size));
    };
    const std::int32_t x0 = first(part.x - area.x, area.width, frame.Width());
    const std::int32_t y0 = first(part.y - area.y, area.height, frame.Height());
    return {x0, y0, last(part.x + part.width - area.x, area.width, frame.Width()) - x0,
            last(part.y + part.height - area.y, area.height, frame.Height()) - y0};
}

FrameArea WholeOf(const FrameBuffer& frame) { return {0, 0, frame.Width(), frame.Height()}; }

}  // namespace

void FrameShrinker::Show(const FrameBuffer& frame, const FrameArea& area, const FrameArea& part, std::uint32_t target) {
    const FrameBuffer* shown = &frame;
    std::size_t used = 0;
    if (!part.IsEmpty()) {
        for (; IsTwiceAsLarge(*shown, area); shown = m_halves[used++].get()) {
            const FrameArea half{0, 0, (shown->Width() + 1) / 2, (shown->Height() + 1) / 2};
            if (used == m_halves.size()) m_halves.push_back(nullptr);
            auto& into = m_halves[used];
            if (!into || WholeOf(*into) != half) into = std::make_unique<FrameBuffer>(half.width, half.height);
            const Scissor scissor(SeenIn(*into, area, part));
            shown->ShowIn(half, *into);
        }
    }
    const Scissor scissor(part);
    shown->ShowIn(area, target);
}

}  // namespace kel
