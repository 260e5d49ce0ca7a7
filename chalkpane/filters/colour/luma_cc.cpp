#include "chalkpane/filters/colour/luma_cc.h"

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/filters/colour/curve_table.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {

void LumaCC::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region, bool expand) {
    try {
        const std::int32_t fullScale = WithFormatOf(source, [](auto format) { return decltype(format)::fullScale; });
        const auto table = CurveTable(m_graph, fullScale);
        m_ratios.resize(table.size());
        bool changes = false;
        for (std::size_t luma = 0; luma < table.size(); ++luma) {
            const std::int32_t entry = Truncated(table[luma]);
            changes = changes || entry != static_cast<std::int32_t>(luma);
            m_ratios[luma] =
                luma == 0 ? static_cast<float>(entry) : static_cast<float>(entry) / static_cast<float>(luma);
        }
        if (changes) return RowFilter::Apply(source, result, fast, region, expand);
        EndRun();
        ApplyAsCopy(source, result);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

}  // namespace chalkpane
