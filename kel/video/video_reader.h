#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

#include "kel/video/video_conversion.h"
#include "picture_io/picture.h"

namespace kel {

class VideoDecoder;
class VideoPackets;

// A video on disk, read frame by frame: MP4, MOV, MKV or WebM. Sound is left out. One thread at a time.
//
// Frames are numbered from 0 in the order in which they are shown, and a number always gives the same pixels, however
// it was come to. Pictures stand upright as the file says, in quarters of a rotation, and are not
// stretched for an aspect of the pixels.
class VideoReader {
public:
    // Passes through the whole file once, to know all frames, and decodes the first. Throws Error, one line with file
    // and reason, for what is no video, breaks off, has no frames, or frames beyond largestVideoPixels.
    explicit VideoReader(const std::filesystem::path& file);
    // The same for a video that is kept elsewhere (kel/video/video_packets.h); not null.
    explicit VideoReader(std::unique_ptr<VideoPackets> packets);
    ~VideoReader();
    VideoReader(VideoReader&&) noexcept;
    VideoReader& operator=(VideoReader&&) noexcept;
    VideoReader(const VideoReader&) = delete;
    VideoReader& operator=(const VideoReader&) = delete;

    static constexpr std::int64_t largestVideoPixels = std::int64_t{8192} * 8192;

    [[nodiscard]] std::int32_t Width() const;       // pixels, of the first frame; later ones are scaled to it
    [[nodiscard]] std::int32_t Height() const;      // pixels
    [[nodiscard]] double FramesPerSecond() const;   // above 0; the mean where frames come unevenly
    [[nodiscard]] std::int64_t FrameCount() const;  // at least 1; counted, not guessed
    [[nodiscard]] bool HasAlpha() const;            // false: every frame is opaque

    // The frame shown at a time, counted from the first frame; the first before it, the last after the end.
    [[nodiscard]] std::int64_t FrameAt(double seconds) const;

    // Alpha is straight, as videos have it; without alpha the picture is opaque. Numbers outside 0 .. FrameCount() - 1
    // give the first and the last frame. Cheap for the frame read last and for the following ones; any other is decoded
    // from the key frame before it. Throws Error when the frame is damaged; others can still be read.
    [[nodiscard]] picture_io::Picture ReadFrame(std::int64_t index);
    // The same with the bottom row first, into a picture whose memory is used again where it has the size.
    void ReadFrameUp(std::int64_t index, picture_io::Picture& picture);

    // Frames have this size from now on and are fitted into it, with black beside them, whatever their own is.
    void FitInto(std::int32_t width, std::int32_t height);
    // How frames are made from now on; Exact, as at the start.
    void SetConversion(VideoConversion conversion);
    // When each frame is shown, from 0 on, in mean lengths of a frame; empty: they come evenly, each in its turn.
    [[nodiscard]] std::vector<double> UnevenStarts() const;

private:
    std::unique_ptr<VideoDecoder> m_decoder;
};

}  // namespace kel
