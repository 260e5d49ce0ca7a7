#pragma once

#include <vector>

#include "chalkpane/filters/row_filter.h"

namespace chalkpane {

// "Posterize": leaves a few levels of every colour.
class PosterizeEffect final : public RowFilter<PosterizeEffect> {
public:
    static constexpr FilterIdentity identity{"Posterize Effect", "Posterize", "Filters"};
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<PosterizeEffect>>({
            {0, "Levels", "Levels", 8, {2, 255}, &PosterizeEffect::m_levels},
        });
    }

    void BeginRun(const Image& source) override;
    void EndRun() override { m_table = {}; }

    template <typename F>
    void Row(std::span<typename F::Channel> pixels) const {
        MapChannels<F>(pixels, m_table.data());
    }

private:
    std::int32_t m_levels = 2;  // DIFFERS from the default's 8
    std::vector<std::uint16_t> m_table;
};

}  // namespace chalkpane
