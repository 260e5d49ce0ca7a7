#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "picture_io/decoded.h"
#include "picture_io/jpeg_codec.h"
#include "picture_io/picture_file.h"
#include "picture_io/png_reader.h"

namespace picture_io {

// A picture file from the top row down, upright. A JPEG that is stored so is decoded as its rows are asked for, and a
// PNG whose rows follow each other; of the others all is there from the beginning. Throws Error naming the file and the
// reason.
class RowReader {
public:
    // bytes: of the whole file, which outlive the reader
    RowReader(const std::vector<std::uint8_t>& bytes, Depths depths, std::string name);

    [[nodiscard]] std::int32_t Width() const;
    [[nodiscard]] std::int32_t Height() const;
    [[nodiscard]] bool HasWords() const;
    [[nodiscard]] const PictureInfo& Info() const { return m_info; }

    // The next rows as a picture: so many, or those that are left, of which there is one at least.
    [[nodiscard]] AnyPicture Read(std::int32_t count);

private:
    void Open(const std::vector<std::uint8_t>& bytes, Depths depths);
    bool OpensByRows(const std::vector<std::uint8_t>& bytes, Depths depths);
    template <typename Word>
    AnyPicture WholeRows(const BasicPicture<Word>& whole, std::int32_t first) const;

    std::string m_name;
    std::unique_ptr<JpegReader> m_jpeg;  // null, as the next: m_whole has it all
    std::unique_ptr<PngReader> m_png;
    AnyPicture m_whole;
    PictureInfo m_info;
    std::int32_t m_next = 0;
};

}  // namespace picture_io
