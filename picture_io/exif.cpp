#include "picture_io/exif.h"

#include <cstddef>
#include <optional>

namespace picture_io {
namespace {

constexpr std::uint32_t orientationTag = 0x0112;
constexpr std::uint32_t shortType = 3;
constexpr std::size_t entrySize = 12;

// Reads of a block that anybody may have written: a place outside it has no number.
template <typename Byte>
class Block {
public:
    explicit Block(std::span<Byte> bytes) : m_bytes(bytes) {
        if (bytes.size() < 8) return;
        m_isBigEndian = bytes[0] == 'M' && bytes[1] == 'M';
        m_isValid = (m_isBigEndian || (bytes[0] == 'I' && bytes[1] == 'I')) && Number(2, 2) == 42U;
    }

    [[nodiscard]] std::optional<std::uint32_t> Number(std::size_t at, std::size_t size) const {
        if (at > m_bytes.size() || m_bytes.size() - at < size) return std::nullopt;
        std::uint32_t number = 0;
        for (std::size_t i = 0; i < size; ++i) number = number << 8U | m_bytes[at + (m_isBigEndian ? i : size - 1 - i)];
        return number;
    }

    // Calls `visit` with the place of the orientation's value in the first two directories: picture and thumbnail.
    template <typename Visit>
    void VisitOrientations(Visit visit) const {
        if (!m_isValid) return;
        std::uint32_t directory = Number(4, 4).value_or(0);
        for (int count = 0; count < 2 && directory != 0; ++count) {
            const std::uint32_t entries = Number(directory, 2).value_or(0);
            for (std::size_t i = 0; i < entries; ++i) {
                const std::size_t entry = directory + 2 + i * entrySize;
                if (Number(entry, 2) == orientationTag && Number(entry + 2, 2) == shortType && Number(entry + 8, 2))
                    visit(count, entry + 8);
            }
            directory = Number(directory + 2 + entries * entrySize, 4).value_or(0);
        }
    }

    void PutShort(std::size_t at, std::uint8_t value) const {
        m_bytes[at] = m_isBigEndian ? 0 : value;
        m_bytes[at + 1] = m_isBigEndian ? value : 0;
    }

private:
    std::span<Byte> m_bytes;
    bool m_isBigEndian = false;
    bool m_isValid = false;
};

}  // namespace

Orientation OrientationIn(std::span<const std::uint8_t> exif) {
    const Block<const std::uint8_t> block(exif);
    std::uint32_t found = 1;
    block.VisitOrientations([&](int directory, std::size_t at) {
        if (directory == 0) found = block.Number(at, 2).value_or(1);
    });
    return found >= 1 && found <= 8 ? static_cast<Orientation>(found) : Orientation::Upright;
}

void SetUpright(std::span<std::uint8_t> exif) {
    const Block<std::uint8_t> block(exif);
    block.VisitOrientations(
        [&](int, std::size_t at) { block.PutShort(at, static_cast<std::uint8_t>(Orientation::Upright)); });
}

}  // namespace picture_io
