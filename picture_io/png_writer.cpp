#include "picture_io/png_writer.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <string_view>
#include <utility>

#include "picture_io/png_chunks.h"
#include "picture_io/png_filters.h"
#include "picture_io/png_info.h"
#include "picture_io/side_by_side.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t window = 32768;                     // bytes back that packed data may refer to
constexpr std::size_t bandBytes = std::size_t{1} << 19U;  // large, so that its end costs nothing that counts
constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::array<std::uint8_t, 2> packedStart{0x78, 0x9C};  // deflated, with a window of 32 KiB

std::size_t WordsOf(Channels channels) {
    constexpr std::array<std::size_t, 4> words{1, 2, 3, 4};
    return words[static_cast<std::size_t>(channels)];
}

Bytes HeaderOf(const PngShape& shape) {
    constexpr std::array<std::uint8_t, 4> kinds{0, 4, 2, 6};
    Bytes header;
    AppendWord(header, static_cast<std::uint32_t>(shape.width));
    AppendWord(header, static_cast<std::uint32_t>(shape.height));
    header.insert(header.end(), {static_cast<std::uint8_t>(shape.hasWords ? 16 : 8),
                                 kinds[static_cast<std::size_t>(shape.channels)], 0, 0, 0});
    return header;
}

// Words go high byte first.
template <typename Word>
std::uint8_t* PutWord(Word word, std::uint8_t* to) {
    if constexpr (sizeof(Word) == 2) *to++ = static_cast<std::uint8_t>(word >> 8U);
    *to = static_cast<std::uint8_t>(word);
    return to + 1;
}

template <typename Word>
void PackRow(const Word* rgba, std::size_t width, Channels channels, std::uint8_t* to) {
    const bool isGrey = channels == Channels::Grey || channels == Channels::GreyAlpha;
    const bool hasAlpha = channels == Channels::GreyAlpha || channels == Channels::RGBA;
    for (std::size_t x = 0; x < width; ++x, rgba += 4) {
        to = PutWord(rgba[0], to);
        if (!isGrey) to = PutWord(rgba[2], PutWord(rgba[1], to));
        if (hasAlpha) to = PutWord(rgba[3], to);
    }
}

// zlib's state, freed on every way out.
struct Deflater : z_stream {
    explicit Deflater(int level) : z_stream{} {
        constexpr int withoutHeader = -15;
        constexpr int usualMemory = 8;
        if (deflateInit2(this, level, Z_DEFLATED, withoutHeader, usualMemory, Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::bad_alloc();
    }
    ~Deflater() { deflateEnd(this); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
    Deflater(Deflater&&) = delete;
    Deflater& operator=(Deflater&&) = delete;
};

}  // namespace

PngWriter::PngWriter(const PngShape& shape, const PictureInfo& info, int compression)
    : m_shape(shape),
      m_compression(compression),
      m_pixelBytes(WordsOf(shape.channels) * (shape.hasWords ? 2 : 1)),
      m_rowBytes(m_pixelBytes * static_cast<std::size_t>(shape.width)),
      m_bandRows(std::max<std::size_t>(1, bandBytes / (m_rowBytes + 1))),
      m_mostRows(std::min(m_bandRows * ProcessorCount(), static_cast<std::size_t>(shape.height))),
      m_rows((m_mostRows + 1) * m_rowBytes),
      m_filtered(window + m_mostRows * (m_rowBytes + 1)),
      m_file(signature.begin(), signature.end()) {
    // As much as rows that cannot be packed take: what stays unused is never there, and what grows is never there
    // twice.
    m_file.reserve(static_cast<std::size_t>(shape.height) * (m_rowBytes + 1 + m_rowBytes / 1024 + 16) + window);
    AppendChunk(m_file, "IHDR", HeaderOf(shape));
    const Bytes chunks = PngChunksOf(info);
    m_file.insert(m_file.end(), chunks.begin(), chunks.end());
    constexpr std::array<std::uint8_t, 1> perceptual{0};
    if (info.profile.empty()) AppendChunk(m_file, "sRGB", perceptual);
}

template <typename Word>
void PngWriter::Put(const BasicPicture<Word>& rows) {
    const auto width = static_cast<std::size_t>(rows.width);
    for (std::size_t y = 0; y < static_cast<std::size_t>(rows.height); ++y) {
        if (m_waiting == m_mostRows) Flush(false);
        PackRow(rows.rgba.data() + 4 * width * y, width, m_shape.channels, m_rows.data() + ++m_waiting * m_rowBytes);
    }
}
template void PngWriter::Put(const Picture&);
template void PngWriter::Put(const Picture16&);

std::size_t PngWriter::RowsIn(std::size_t band) const { return std::min(m_bandRows, m_waiting - band * m_bandRows); }

void PngWriter::FilterBand(std::size_t band) {
    PngRowFilter filter(m_rowBytes, m_pixelBytes);
    const std::span<const std::uint8_t> rows(m_rows);
    for (std::size_t row = band * m_bandRows; row < band * m_bandRows + RowsIn(band); ++row) {
        const auto own = rows.subspan((row + 1) * m_rowBytes, m_rowBytes);
        std::uint8_t* const to = m_filtered.data() + window + row * (m_rowBytes + 1);
        if (m_compression == 0) {
            *to = 0;
            std::ranges::copy(own, to + 1);
        } else {
            filter.Apply(own, rows.subspan(row * m_rowBytes, m_rowBytes), to);
        }
    }
}

// All bands but the last one end at a whole byte, so that they can be put one behind the other.
Bytes PngWriter::PackedBand(std::size_t band, bool isLast) const {
    const std::size_t before = band * m_bandRows * (m_rowBytes + 1);
    const std::uint8_t* const from = m_filtered.data() + window + before;
    const std::size_t size = RowsIn(band) * (m_rowBytes + 1);
    Deflater deflater(m_compression);
    const std::size_t referable = std::min(window, m_referable + before);
    if (referable != 0 && deflateSetDictionary(&deflater, from - referable, static_cast<uInt>(referable)) != Z_OK)
        throw std::bad_alloc();
    Bytes packed(deflateBound(&deflater, size) + 16);
    deflater.next_in = const_cast<Bytef*>(from);  // it is only read
    deflater.avail_in = static_cast<uInt>(size);
    deflater.next_out = packed.data();
    deflater.avail_out = static_cast<uInt>(packed.size());
    deflate(&deflater, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    packed.resize(deflater.total_out);
    packed.shrink_to_fit();
    return packed;
}

void PngWriter::Flush(bool isLast) {
    const std::size_t bands = (m_waiting + m_bandRows - 1) / m_bandRows;
    RunSideBySide(bands, [this](std::size_t band) { FilterBand(band); });
    std::vector<Bytes> packed(bands);
    RunSideBySide(bands, [&](std::size_t band) { packed[band] = PackedBand(band, isLast && band + 1 == bands); });
    const std::uint8_t* const filtered = m_filtered.data() + window;
    const std::size_t size = m_waiting * (m_rowBytes + 1);
    m_checksum = static_cast<std::uint32_t>(adler32_z(m_checksum, filtered, size));
    for (std::size_t band = 0; band < bands; ++band) {
        if (std::exchange(m_isFirst, false))
            packed[band].insert(packed[band].begin(), packedStart.begin(), packedStart.end());
        if (isLast && band + 1 == bands) AppendWord(packed[band], m_checksum);
        AppendChunk(m_file, "IDAT", packed[band]);
        packed[band] = {};
    }
    m_referable = std::min(window, m_referable + size);
    std::copy_n(filtered + size - m_referable, m_referable, m_filtered.data() + window - m_referable);
    std::copy_n(m_rows.data() + m_waiting * m_rowBytes, m_rowBytes, m_rows.data());
    m_waiting = 0;
}

Bytes PngWriter::Finish() {
    Flush(true);
    AppendChunk(m_file, "IEND", {});
    return std::move(m_file);
}

}  // namespace picture_io
