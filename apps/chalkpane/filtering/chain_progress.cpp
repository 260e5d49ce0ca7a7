#include "apps/chalkpane/filtering/chain_progress.h"

#include <algorithm>
#include <utility>

#include "apps/chalkpane/filtering/filter_run.h"

namespace chalkpane::app {
namespace {

class LoopCount final : public RunListener {
public:
    LoopCount() { MultiProcessor::SetListener(this); }
    ~LoopCount() override { MultiProcessor::SetListener(nullptr); }
    LoopCount(const LoopCount&) = delete;
    LoopCount& operator=(const LoopCount&) = delete;
    LoopCount(LoopCount&&) = delete;
    LoopCount& operator=(LoopCount&&) = delete;
    void BeginLoop(std::int64_t /*rows*/) override { ++m_loops; }
    void RowDone() override {}
    [[nodiscard]] std::int64_t Loops() const { return m_loops; }

private:
    std::int64_t m_loops = 0;
};

// How many of its loops a copy of the filter tells: what it goes over and how often follows from its settings, and the
// picture only has to be large enough for more than one band.
std::int64_t LoopsOf(const Filter& filter) {
    constexpr std::int32_t side = 512;
    std::vector<std::unique_ptr<Filter>> copy;
    copy.push_back(filter.Clone());
    auto picture = std::make_unique<Image>(side, side, PixelType::Colour, Depth::Eight, AlphaForm::Straight);
    LoopCount count;
    (void)RunFilters(copy, std::move(picture), {});
    return std::max<std::int64_t>(count.Loops(), 1);
}

}  // namespace

ChainProgress::ChainProgress(std::span<const std::unique_ptr<Filter>> filters, std::int64_t rowsOfPicture, Show show)
    : m_rowsOfPicture(rowsOfPicture), m_show(std::move(show)) {
    for (const auto& filter : filters) m_loops.push_back(LoopsOf(*filter));
    MultiProcessor::SetListener(this);
}

ChainProgress::~ChainProgress() { MultiProcessor::SetListener(nullptr); }

std::int64_t ChainProgress::RowsInFilter() const {
    if (m_filter >= m_loops.size() || m_loop == 0) return 0;
    const double loops =
        static_cast<double>(m_loop - 1) + static_cast<double>(m_rowsDone) / static_cast<double>(m_rows);
    const double part = std::min(loops / static_cast<double>(m_loops[m_filter]), 1.0);
    return static_cast<std::int64_t>(part * static_cast<double>(m_rowsOfPicture));
}

void ChainProgress::Tell(std::int64_t rows) {
    if (rows <= m_told) return;
    m_told = rows;
    m_show(rows);
}

void ChainProgress::EndFilter(std::int32_t count) {
    const std::lock_guard lock(m_lock);
    m_filter = static_cast<std::size_t>(count);
    m_loop = 0;
    Tell(m_rowsOfPicture * count);
}

void ChainProgress::BeginLoop(std::int64_t rows) {
    const std::lock_guard lock(m_lock);
    ++m_loop;
    m_rows = rows;
    m_rowsDone = 0;
}

void ChainProgress::RowDone() {
    const std::lock_guard lock(m_lock);
    ++m_rowsDone;
    Tell(m_rowsOfPicture * static_cast<std::int64_t>(m_filter) + RowsInFilter());
}

}  // namespace chalkpane::app
