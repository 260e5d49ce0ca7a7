#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "picture_io/channels.h"
#include "picture_io/picture.h"
#include "picture_io/picture_info.h"

namespace picture_io {

struct PngShape {
    std::int32_t width = 0;
    std::int32_t height = 0;
    Channels channels = Channels::RGBA;
    bool hasWords = false;  // 16 bits a channel
};

// Makes a PNG from its top row down, holding only what it has packed and a few rows.
//
// Rows are filtered and packed in bands, side by side on all processors. A band's size and what it may refer to are
// fixed, so the bytes are the same on every machine. Throws std::bad_alloc.
class PngWriter {
public:
    // compression: 0 (none) to 9 (the most)
    PngWriter(const PngShape& shape, const PictureInfo& info, int compression);

    // The next rows, of the picture's width and depth.
    void Write(const Picture& rows) { Put(rows); }
    void Write(const Picture16& rows) { Put(rows); }
    // The bytes of the file, when all rows have been written.
    [[nodiscard]] std::vector<std::uint8_t> Finish();

private:
    using Bytes = std::vector<std::uint8_t>;

    template <typename Word>
    void Put(const BasicPicture<Word>& rows);
    void Flush(bool isLast);
    [[nodiscard]] std::size_t RowsIn(std::size_t band) const;
    void FilterBand(std::size_t band);
    [[nodiscard]] Bytes PackedBand(std::size_t band, bool isLast) const;

    PngShape m_shape;
    int m_compression;
    std::size_t m_pixelBytes;
    std::size_t m_rowBytes;
    std::size_t m_bandRows;
    std::size_t m_mostRows;       // that wait
    std::size_t m_waiting = 0;    // rows
    std::size_t m_referable = 0;  // filtered bytes of the bands before
    Bytes m_rows;                 // the row before those that wait, and they
    Bytes m_filtered;             // room for what is referable, and the rows that wait as they are packed
    Bytes m_file;
    std::uint32_t m_checksum = 1;
    bool m_isFirst = true;
};

}  // namespace picture_io
