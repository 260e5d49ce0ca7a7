#include "kel/scene/pointer_queue.h"

#include <algorithm>

namespace kel {

std::optional<PointerStep> PointerQueue::TakeField(int fieldsDue) {
    const auto fields = static_cast<std::size_t>(fieldsDue);
    const std::size_t share = (m_waiting.size() + fields - 1) / fields;
    std::optional<PointerStep> taken;
    for (std::size_t i = 0; i < share; ++i) {
        taken = m_waiting.front();
        m_waiting.pop_front();
        if (taken->kind != PointerKind::Move) break;
    }
    return taken;
}

std::optional<PointerKind> PointerQueue::Next() const {
    if (m_waiting.empty()) return std::nullopt;
    const auto button =
        std::ranges::find_if(m_waiting, [](const PointerStep& step) { return step.kind != PointerKind::Move; });
    return button == m_waiting.end() ? PointerKind::Move : button->kind;
}

std::size_t PointerQueue::Buttons() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(m_waiting, [](const PointerStep& step) { return step.kind != PointerKind::Move; }));
}

}  // namespace kel
