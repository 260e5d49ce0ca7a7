#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "picture_io/jpeg_codec.h"
#include "picture_io/picture.h"
#include "picture_io/picture_file.h"
#include "picture_io/picture_format.h"
#include "picture_io/picture_info.h"
#include "picture_io/png_writer.h"

namespace picture_io {

// A picture file made from the top row down. A PNG and a JPEG are packed as their rows come; the others are gathered
// first. Throws Error with the reason alone.
//
// What channels a file has it says at its beginning, where the pixels are not known yet. So it is begun with the fewest
// that may do, and where a row turns out to need more, begun anew.
class RowWriter {
public:
    // What all pixels are held to be.
    struct Guess {
        bool isGrey = false;
        bool isOpaque = false;
    };
    // The boldest one for a file of this format.
    [[nodiscard]] static Guess FirstGuess(const FormatRow& format, const WriteOptions& options);

    RowWriter(const FormatRow& format, std::int32_t width, std::int32_t height, WriteOptions options, Guess guess);

    // The next rows. False: they need more, `WidenedGuess` is to be begun anew with, and this writer is done.
    [[nodiscard]] bool Write(const AnyPicture& rows);
    [[nodiscard]] Guess WidenedGuess() const { return m_guess; }
    // The bytes of the file, when all rows have been written.
    [[nodiscard]] std::vector<std::uint8_t> Finish();

private:
    void Begin(const AnyPicture& rows);
    void Gather(const AnyPicture& rows);

    const FormatRow& m_format;
    std::int32_t m_width;
    std::int32_t m_height;
    WriteOptions m_options;
    Guess m_guess;
    std::optional<PngWriter> m_png;
    std::optional<JpegWriter> m_jpeg;
    std::optional<AnyPicture> m_whole;
    std::int32_t m_gathered = 0;  // rows
};

}  // namespace picture_io
