#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace picture_io {

// What a row of a PNG may be told as: differences from its neighbours, which pack better.
class PngRowFilter {
public:
    // pixelBytes: how far the pixel to the left lies
    PngRowFilter(std::size_t rowBytes, std::size_t pixelBytes) : m_pixelBytes(pixelBytes) {
        for (auto& candidate : m_candidates) candidate.resize(rowBytes);
    }

    // Writes the number of the filter and the row told by it: the one whose bytes, as signed numbers, are the least
    // altogether, which is what usually packs best.
    void Apply(std::span<const std::uint8_t> row, std::span<const std::uint8_t> above, std::uint8_t* to);

private:
    std::size_t m_pixelBytes;
    std::array<std::vector<std::uint8_t>, 5> m_candidates;  // as it is, left, above, their mean, Paeth's
};

}  // namespace picture_io
