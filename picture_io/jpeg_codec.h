#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "picture_io/picture.h"
#include "picture_io/picture_info.h"

namespace picture_io {

// JPEG files from the top row down; their pixels are opaque. What goes wrong is thrown as Error with the reason alone.

// The pixels are as they are stored, however the file says that they stand.
class JpegReader {
public:
    // bytes: of the whole file, which outlive the reader
    explicit JpegReader(const std::vector<std::uint8_t>& bytes);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;
    JpegReader(JpegReader&&) = delete;
    JpegReader& operator=(JpegReader&&) = delete;

    [[nodiscard]] std::int32_t Width() const;
    [[nodiscard]] std::int32_t Height() const;
    // What the file says besides; the EXIF block is as it stands there.
    [[nodiscard]] const PictureInfo& Info() const;

    // The next rows, as many as fit; no more than there are.
    void Read(std::span<std::uint8_t> rgba);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

class JpegWriter {
public:
    // isGrey: red, green and blue are alike everywhere, and one channel is written
    JpegWriter(std::int32_t width, std::int32_t height, const WriteOptions& options, bool isGrey);
    ~JpegWriter();
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;
    JpegWriter(JpegWriter&&) = delete;
    JpegWriter& operator=(JpegWriter&&) = delete;

    // The next rows; alpha is left out.
    void Write(const Picture& rows);
    // The bytes of the file, when all rows have been written.
    [[nodiscard]] std::vector<std::uint8_t> Finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace picture_io
