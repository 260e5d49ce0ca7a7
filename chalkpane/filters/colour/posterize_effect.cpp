#include "chalkpane/filters/colour/posterize_effect.h"

#include "chalkpane/image/image_rows.h"

namespace chalkpane {

void PosterizeEffect::BeginRun(const Image& source) {
    WithFormatOf(source, [this](auto format) {
        using F = decltype(format);
        m_table.resize(static_cast<std::size_t>(F::fullScale) + 1);
        const std::int64_t steps = m_levels == 1 ? 1 : std::int64_t{m_levels} - 1;  // one level alone is black
        for (std::int64_t i = 0; i <= F::fullScale; ++i) {
            const std::int64_t level = (m_levels * i) >> F::bits;
            m_table[static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(level * F::fullScale / steps);
        }
    });
}

}  // namespace chalkpane
