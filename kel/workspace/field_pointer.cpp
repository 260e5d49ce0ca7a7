#include "kel/workspace/field_pointer.h"

namespace kel {

std::optional<FieldPointer::Event> FieldPointer::TakeField(int fieldsDue) {
    const auto fields = static_cast<std::size_t>(fieldsDue);
    const std::size_t share = (m_waiting.size() + fields - 1) / fields;
    std::optional<Event> taken;
    for (std::size_t i = 0; i < share; ++i) {
        taken = m_waiting.front();
        m_waiting.pop_front();
        if (taken->kind != PointerKind::Move) break;
    }
    return taken;
}

}  // namespace kel
