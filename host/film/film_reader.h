#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "host/picture.h"

namespace kel {

class FilmDecoder;

// A film on disk, read frame by frame: MP4, MOV, MKV or WebM. Sound is left out. One thread at a time.
//
// Frames are numbered from 0 in the order in which they are shown, and a number always gives the same pixels, however
// it was come to. Pixels are as stored: neither turned nor stretched for an aspect of the pixels.
class FilmReader {
public:
    // Passes through the whole file once, to know all frames, and decodes the first. Throws Error, one line with file
    // and reason, for what is no film, breaks off, has no frames, or frames beyond largestFilmPixels.
    explicit FilmReader(const std::filesystem::path& file);
    ~FilmReader();
    FilmReader(FilmReader&&) noexcept;
    FilmReader& operator=(FilmReader&&) noexcept;
    FilmReader(const FilmReader&) = delete;
    FilmReader& operator=(const FilmReader&) = delete;

    static constexpr std::int64_t largestFilmPixels = std::int64_t{8192} * 8192;

    [[nodiscard]] std::int32_t Width() const;       // pixels, of the first frame; later ones are scaled to it
    [[nodiscard]] std::int32_t Height() const;      // pixels
    [[nodiscard]] double FramesPerSecond() const;   // above 0; the mean where frames come unevenly
    [[nodiscard]] std::int64_t FrameCount() const;  // at least 1; counted, not guessed
    [[nodiscard]] bool HasAlpha() const;            // false: every frame is opaque

    // The frame shown at a time, counted from the first frame; the first before it, the last after the end.
    [[nodiscard]] std::int64_t FrameAt(double seconds) const;

    // Alpha is straight, as films have it; without alpha the picture is opaque. Numbers outside 0 .. FrameCount() - 1
    // give the first and the last frame. Cheap for the frame read last and for the following ones; any other is decoded
    // from the key frame before it. Throws Error when the frame is damaged; others can still be read.
    [[nodiscard]] Picture ReadFrame(std::int64_t index);

private:
    std::unique_ptr<FilmDecoder> m_decoder;
};

}  // namespace kel
