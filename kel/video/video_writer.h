#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "kel/video/picture_part.h"
#include "picture_io/picture.h"

namespace kel {

class VideoEncoder;

struct VideoSettings {
    std::int32_t width = 0;        // pixels, of every picture
    std::int32_t height = 0;       // pixels
    double framesPerSecond = 0.0;  // above 0
    bool alpha = false;            // the video has it; otherwise alpha is dropped and colours stay
    // A video whose sound, as far as the format can hold it, and whose colour tags are taken over; empty: none.
    std::filesystem::path source = {};
};

// A video being written, picture by picture, in the format that the name's ending chooses (kel/video/video_format.h).
// docs/output.md says what each of them keeps. One thread at a time.
//
// The file is written under another name in the same folder and appears at its place with Commit, whole or not at all.
// Without Commit nothing is left behind. Everything throws Error, one line with the file and the reason; after that
// only the destructor may be called.
class VideoWriter {
public:
    VideoWriter(const std::filesystem::path& file, const VideoSettings& settings);
    ~VideoWriter();
    VideoWriter(VideoWriter&&) noexcept;
    VideoWriter& operator=(VideoWriter&&) noexcept;
    VideoWriter(const VideoWriter&) = delete;
    VideoWriter& operator=(const VideoWriter&) = delete;

    // The next picture, of the video's size. Four bytes a pixel are taken as they are, whatever their alpha means.
    void Write(const picture_io::Picture& picture);
    // The next picture where it is known what of it may differ from the one before. A video is written by this alone or
    // by the other two.
    void WriteChanged(const picture_io::Picture& picture, const PicturePart& changed);
    // The picture before once more, of which there is one: the same file as by Write, sooner.
    void Repeat();
    // Writes the end of the file. A full disk shows here at the latest.
    void Close();
    // Gives the closed file its name.
    void Commit();

private:
    std::unique_ptr<VideoEncoder> m_encoder;
};

}  // namespace kel
