#include "chalkpane/filters/noise/sparse_rows.h"

#include <algorithm>
#include <memory>
#include <span>

#include "chalkpane/base/cpu_features.h"
#include "chalkpane/base/multi_processor.h"

namespace chalkpane {
namespace {

// Enough for the workers to be woken for, and less than two megabytes to remember.
constexpr std::int64_t sectionsAtOnce = 128;

// Short enough that a row's start is near its block's, long enough that blocks are few.
std::size_t DrawsOfBlock(double drawsPerRow) {
    return static_cast<std::size_t>(
        std::clamp(drawsPerRow / 16.0, double{SparseSection::fewestDraws}, double{SparseSection::mostDraws}));
}

double DrawsPerPixel(const SparseDraws& draws) {
    return 1.0 + draws.more * std::clamp((draws.density + 1.0) / 100.0, 0.0, 1.0);
}

// Sections of the sequence that follow each other.
class Sections {
public:
    Sections(const GrainRandom& first, const SparseDraws& draws, std::size_t blockDraws)
        : m_first(first),
          m_draws(draws),
          m_blockDraws(blockDraws),
          m_starts(blockDraws * SparseSection::blocks),
          m_jump(GrainJump::Of(DrawsOfOne())) {}

    [[nodiscard]] std::uint64_t DrawsOfOne() const {
        return std::uint64_t{m_blockDraws} * SparseSection::blocks * SparseSection::stretches;
    }

    // Counts the next ones by the workers.
    void Count(std::int64_t sections) {
        m_done += m_count;
        m_count = sections;
        const auto blocks = static_cast<std::size_t>(sections) * SparseSection::blocks;
        if (m_capacity < blocks) {
            // Not cleared: the workers write all of it, and touch its pages first.
            m_words = std::make_unique_for_overwrite<SparseSection::Words[]>(blocks);
            m_counts = std::make_unique_for_overwrite<SparseSection::Counts[]>(blocks * FirstNumbers());
            m_capacity = blocks;
        }
        const auto count = [](std::int32_t section, void* self, std::int32_t /*worker*/) {
            static_cast<Sections*>(self)->CountOne(section);
        };
        MultiProcessor::Instance().Run(0, static_cast<std::int32_t>(sections - 1), count, this);
    }

    // Calls `visit` with each of the blocks in the order of the sequence until it answers false: the generators before
    // it, which of them is the block's, and the counts of its first numbers.
    template <typename Visit>
    void ForEachBlock(Visit visit) const {
        for (std::size_t section = 0; section < static_cast<std::size_t>(m_count); ++section) {
            for (std::size_t stretch = 0; stretch < SparseSection::stretches; ++stretch) {
                Fetch(section + 1, stretch);
                for (std::size_t i = section * SparseSection::blocks; i < (section + 1) * SparseSection::blocks; ++i)
                    if (!visit(m_words[i], stretch, &m_counts[i * FirstNumbers()])) return;
            }
        }
    }

private:
    [[nodiscard]] std::size_t FirstNumbers() const { return m_draws.more + 1; }

    // What workers wrote comes from their caches, each line after the one that says where the next is, unless it was
    // asked for before: here a sixteenth of a section's counts.
    void Fetch(std::size_t section, std::size_t part) const {
        static_assert(SparseSection::blocks == SparseSection::stretches);
        if (section >= static_cast<std::size_t>(m_count)) return;
        const auto* const counts = &m_counts[(section * SparseSection::blocks + part) * FirstNumbers()];
        constexpr std::size_t countsInLine = 64 / sizeof(SparseSection::Counts);
        for (std::size_t i = 0; i < FirstNumbers(); i += countsInLine) __builtin_prefetch(counts + i);
    }

    void CountOne(std::int32_t section) {
        if constexpr (builtWithAvx2) {
            GrainRandom start = m_first;
            start.Jump(m_jump.Repeated(static_cast<std::uint64_t>(m_done + section)));
            const std::size_t block = static_cast<std::size_t>(section) * SparseSection::blocks;
            CountSectionAvx2(start, m_starts, m_draws, m_blockDraws,
                             {std::span(&m_words[block], SparseSection::blocks),
                              std::span(&m_counts[block * FirstNumbers()], SparseSection::blocks * FirstNumbers())});
        }
    }

    GrainRandom m_first;
    SparseDraws m_draws;
    std::size_t m_blockDraws;
    GrainStarts m_starts;
    GrainJump m_jump;
    std::int64_t m_done = 0;     // sections before those that were counted last
    std::int64_t m_count = 0;    // of those
    std::size_t m_capacity = 0;  // blocks
    std::unique_ptr<SparseSection::Words[]> m_words;
    std::unique_ptr<SparseSection::Counts[]> m_counts;
};

}  // namespace

void SparseRows::FindAvx2(const GrainRandom& first, std::int64_t pixelsPerRow, std::int64_t rows,
                          const SparseDraws& draws) {
    Clear();
    m_draws = draws;
    if (pixelsPerRow < 1 || rows < 1) return;
    m_starts.reserve(static_cast<std::size_t>(rows));
    const double drawsPerPixel = DrawsPerPixel(draws);
    Sections sections(first, draws, DrawsOfBlock(drawsPerPixel * static_cast<double>(pixelsPerRow)));
    std::int64_t ahead = 0;   // pixels from the block's first to that of the next row
    std::uint32_t skips = 0;  // numbers before the block's first pixel
    for (std::int64_t left = rows; left > 0; left = rows - static_cast<std::int64_t>(m_starts.size())) {
        // As many as there will be, a little more often than not.
        const double wanted = static_cast<double>(left) * static_cast<double>(pixelsPerRow) * drawsPerPixel * 1.004;
        sections.Count(static_cast<std::int64_t>(
            std::min(wanted / static_cast<double>(sections.DrawsOfOne()) + 1.0, double{sectionsAtOnce})));
        sections.ForEachBlock(
            [&](const SparseSection::Words& words, std::size_t stretch, const SparseSection::Counts* counts) {
                const std::uint32_t counted = counts[skips].ofStretch[stretch];
                const std::int64_t pixels = counted / SparseSection::countFactor;
                for (; ahead < pixels; ahead += pixelsPerRow) {
                    m_starts.push_back({GrainRandom(words.a[stretch], words.b[stretch], words.c[stretch]),
                                        static_cast<std::uint16_t>(skips), static_cast<std::uint16_t>(ahead)});
                    if (static_cast<std::int64_t>(m_starts.size()) == rows) return false;
                }
                ahead -= pixels;
                skips = counted % SparseSection::countFactor;
                return true;
            });
    }
}

GrainRandom SparseRows::StartOf(std::size_t row) const {
    const Start& start = m_starts[row];
    GrainRandom random = start.block;
    for (std::uint32_t i = 0; i < start.skips; ++i) random.Next();
    for (std::uint32_t pixel = 0; pixel < start.pixels; ++pixel) {
        if (!m_draws.Passes(random.Next())) continue;
        for (std::uint32_t i = 0; i < m_draws.more; ++i) random.Next();
    }
    return random;
}

}  // namespace chalkpane
