#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/filter.h"

namespace chalkpane::app {

// How far a chain of filters has come over a whole picture, while it runs, in rows: each filter counts as many as the
// picture has, however often it goes over it.
//
// It listens to the engine's loops as long as it lives, so there is one at a time. How many loops a filter has it
// learns from a rehearsal on a small picture, before the chain begins.
class ChainProgress final : public RunListener {
public:
    // Called with rows of all filters, from any thread but one at a time, never with fewer than before.
    using Show = std::function<void(std::int64_t rows)>;

    ChainProgress(std::span<const std::unique_ptr<Filter>> filters, std::int64_t rowsOfPicture, Show show);
    ~ChainProgress() override;
    ChainProgress(const ChainProgress&) = delete;
    ChainProgress& operator=(const ChainProgress&) = delete;
    ChainProgress(ChainProgress&&) = delete;
    ChainProgress& operator=(ChainProgress&&) = delete;

    // So many filters are done.
    void EndFilter(std::int32_t count);

    void BeginLoop(std::int64_t rows) override;
    void RowDone() override;

private:
    [[nodiscard]] std::int64_t RowsInFilter() const;
    void Tell(std::int64_t rows);

    std::int64_t m_rowsOfPicture;
    Show m_show;
    std::vector<std::int64_t> m_loops;  // of each filter
    std::mutex m_lock;
    std::size_t m_filter = 0;
    std::int64_t m_loop = 0;  // of the filter, from 1; 0: before the first
    std::int64_t m_rows = 1;  // of the loop
    std::int64_t m_rowsDone = 0;
    std::int64_t m_told = 0;
};

}  // namespace chalkpane::app
