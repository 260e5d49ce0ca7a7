#include "chalkpane/filters/neighbourhood/median_columns.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace chalkpane {
namespace {

// Sixteen counts at once, as every machine has them.
using Bins = std::uint8_t __attribute__((vector_size(16)));

// One in each bin from the first on, for each of them as the first.
constexpr auto fromBin = [] {
    std::array<std::array<std::uint8_t, sizeof(Bins)>, sizeof(Bins)> table{};
    for (std::size_t first = 0; first < table.size(); ++first)
        for (std::size_t bin = first; bin < sizeof(Bins); ++bin) table[first][bin] = 1;
    return table;
}();

inline Bins LoadBins(const std::uint8_t* from) {
    Bins bins;
    std::memcpy(&bins, from, sizeof bins);
    return bins;
}
inline void StoreBins(std::uint8_t* to, const Bins& bins) { std::memcpy(to, &bins, sizeof bins); }
inline Bins OneFrom(std::size_t first) { return LoadBins(fromBin[first].data()); }

// Where a value is counted.
struct CountedPlace {
    std::size_t group;
    std::size_t bin;

    explicit CountedPlace(std::uint8_t value) : group(value / sizeof(Bins)), bin(value % sizeof(Bins)) {}
};

}  // namespace

MedianColumns::MedianColumns(std::size_t rowBytes, std::int32_t channels, std::int32_t radius)
    : m_columns(rowBytes),
      m_channels(static_cast<std::size_t>(channels)),
      m_radius(radius),
      m_coarse(rowBytes * groupSize),
      m_fine(rowBytes * groupSize * groupSize) {}

void MedianColumns::Clear() {
    std::fill(m_coarse.begin(), m_coarse.end(), std::uint8_t{0});
    std::fill(m_fine.begin(), m_fine.end(), std::uint8_t{0});
}

void MedianColumns::AddRow(const std::uint8_t* row) {
    std::uint8_t* const coarse = m_coarse.data();
    std::uint8_t* const fine = m_fine.data();
    for (std::size_t column = 0; column < m_columns; ++column) {
        const CountedPlace in(row[column]);
        StoreBins(coarse + column * groupSize, LoadBins(coarse + column * groupSize) + OneFrom(in.group));
        std::uint8_t* const bins = fine + (in.group * m_columns + column) * groupSize;
        StoreBins(bins, LoadBins(bins) + OneFrom(in.bin));
    }
}

void MedianColumns::MoveDown(const std::uint8_t* leaving, const std::uint8_t* entering) {
    std::uint8_t* coarse = m_coarse.data();
    std::uint8_t* fine = m_fine.data();
    const std::size_t groupBytes = m_columns * groupSize;
    const std::uint8_t* const end = leaving + m_columns;
    for (; leaving != end; ++leaving, ++entering, coarse += groupSize, fine += groupSize) {
        const CountedPlace out(*leaving);
        const CountedPlace in(*entering);
        StoreBins(coarse, LoadBins(coarse) - OneFrom(out.group) + OneFrom(in.group));
        std::uint8_t* const outBins = fine + out.group * groupBytes;
        StoreBins(outBins, LoadBins(outBins) - OneFrom(out.bin));
        std::uint8_t* const inBins = fine + in.group * groupBytes;
        StoreBins(inBins, LoadBins(inBins) + OneFrom(in.bin));
    }
}

}  // namespace chalkpane
