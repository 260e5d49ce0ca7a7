#pragma once

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace picture_io {

// Numbers and words at places of a file that may be far longer than there is memory, or of bytes that are there.
class PlacedBytes {
public:
    // Borrow the bytes and the descriptor.
    explicit PlacedBytes(std::span<const std::uint8_t> bytes) : m_seen(bytes) {}
    explicit PlacedBytes(int descriptor) : m_descriptor(descriptor) {}
    PlacedBytes(const PlacedBytes&) = delete;
    PlacedBytes& operator=(const PlacedBytes&) = delete;
    PlacedBytes(PlacedBytes&&) = delete;
    PlacedBytes& operator=(PlacedBytes&&) = delete;
    ~PlacedBytes() = default;

    // Nothing behind the end.
    [[nodiscard]] std::optional<std::uint8_t> At(std::uint64_t offset) {
        if (!IsSeen(offset)) Load(offset);
        return IsSeen(offset) ? std::optional(m_seen[static_cast<std::size_t>(offset - m_start)]) : std::nullopt;
    }

    // Of one to four bytes, the lowest first or last. Behind the end each byte is 0.
    [[nodiscard]] std::uint32_t Little(std::uint64_t offset, unsigned count) {
        std::uint32_t number = 0;
        for (unsigned i = 0; i < count; ++i) number |= std::uint32_t{At(offset + i).value_or(0)} << (8 * i);
        return number;
    }
    [[nodiscard]] std::uint32_t Big(std::uint64_t offset, unsigned count) {
        std::uint32_t number = 0;
        for (unsigned i = 0; i < count; ++i) number = number << 8U | At(offset + i).value_or(0);
        return number;
    }

    [[nodiscard]] bool Has(std::uint64_t offset, std::string_view word) {
        return std::ranges::all_of(word,
                                   [&](char letter) { return At(offset++) == static_cast<std::uint8_t>(letter); });
    }

private:
    static constexpr std::size_t blockSize = 4096;

    [[nodiscard]] bool IsSeen(std::uint64_t offset) const {
        return offset >= m_start && offset - m_start < m_seen.size();
    }

    void Load(std::uint64_t offset) {
        if (m_descriptor < 0 || offset > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max()) - blockSize)
            return;
        m_start = offset;
        m_block.resize(blockSize);
        const ssize_t got = pread(m_descriptor, m_block.data(), m_block.size(), static_cast<off_t>(offset));
        m_seen = std::span(m_block).first(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    }

    int m_descriptor = -1;  // below 0: what is seen is all there is
    std::uint64_t m_start = 0;
    std::span<const std::uint8_t> m_seen;  // of the file, from m_start
    std::vector<std::uint8_t> m_block;
};

}  // namespace picture_io
