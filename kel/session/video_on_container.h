#pragma once

#include <cstdint>
#include <filesystem>
#include <future>
#include <optional>

#include "kel/scene/host.h"
#include "kel/video/video_clock.h"
#include "kel/video/video_reader.h"

namespace kel {

// A video on a container: shows the frame of each field, and decodes the next one meanwhile on a thread of its own.
class VideoShow {
public:
    // Throws Error for what is no video.
    VideoShow(const std::filesystem::path& file, ObjectId container, double fieldsPerSecond);
    ~VideoShow() = default;  // waits for the frame that is being decoded
    VideoShow(const VideoShow&) = delete;
    VideoShow& operator=(const VideoShow&) = delete;
    VideoShow(VideoShow&&) = delete;
    VideoShow& operator=(VideoShow&&) = delete;

    [[nodiscard]] ObjectId Container() const { return m_container; }
    [[nodiscard]] const VideoClock& Clock() const { return m_clock; }
    [[nodiscard]] double FramesPerSecond() const { return m_framesPerSecond; }
    void Change(const VideoChange& change, std::int64_t field) { m_clock.Change(change, field); }

    // Puts the field's frame on the container. Throws Error when the frame is damaged; the one before it stays then,
    // and the damaged one is not tried again until another has been shown.
    void Show(Host& host, std::int64_t field) { (void)ShowFrame(host, m_clock.FrameAt(field)); }
    // The same for a frame, whatever the field. False: it is there already.
    bool ShowFrame(Host& host, std::int64_t frame);
    // The frame at a time, counted from the first one.
    [[nodiscard]] std::int64_t FrameAtTime(double seconds) const { return m_reader.FrameAt(seconds); }
    // What the container shows; -1: nothing yet.
    [[nodiscard]] std::int64_t Shown() const { return m_shown; }

private:
    picture_io::Picture TakeFrame(std::int64_t frame);
    void Prefetch(std::int64_t frame);

    ObjectId m_container;
    VideoReader m_reader;  // belongs to the thread that decodes while there is one
    double m_framesPerSecond;
    VideoClock m_clock;
    std::int64_t m_shown = -1;
    std::int64_t m_comingFrame = -1;
    std::future<picture_io::Picture> m_coming;  // ends before the reader
};

}  // namespace kel
