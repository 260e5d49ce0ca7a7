#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kel/scene/host.h"
#include "kel/video/frames_ahead.h"
#include "kel/video/sound_source.h"
#include "kel/video/video_clock.h"

namespace kel {

// A video on a container: shows the frame of each field, and decodes the next ones meanwhile on a thread of its own.
class VideoShow {
public:
    //   track  the video's sound; null: there is none
    VideoShow(VideoReader video, ObjectId container, double fieldsPerSecond, std::shared_ptr<const SoundTrack> track);
    ~VideoShow() = default;
    VideoShow(const VideoShow&) = delete;
    VideoShow& operator=(const VideoShow&) = delete;
    VideoShow(VideoShow&&) = delete;
    VideoShow& operator=(VideoShow&&) = delete;

    [[nodiscard]] ObjectId Container() const { return m_container; }
    [[nodiscard]] const VideoClock& Clock() const { return m_clock; }
    [[nodiscard]] double FramesPerSecond() const { return m_framesPerSecond; }
    void Change(const VideoChange& change, std::int64_t field) { m_clock.Change(change, field); }

    // What is heard with the field's frame.
    [[nodiscard]] SoundMoment Heard(std::int64_t field) const;
    [[nodiscard]] const std::shared_ptr<const SoundTrack>& Track() const { return m_track; }

    // Puts the field's frame on the container. Throws Error when the frame is damaged; the one before it stays then,
    // and the damaged one is not tried again until another has been shown.
    void Show(Host& host, std::int64_t field);
    // The same for a frame, whatever the field. False: it is there already.
    bool ShowFrame(Host& host, std::int64_t frame);
    // How frames are made from now on, but for ShowExactly.
    void SetConversion(VideoConversion conversion);
    // Makes the field's frame anew, as it is written. True: it is another picture than the one shown.
    bool ShowExactly(Host& host, std::int64_t field);
    // The frame at a time, counted from the first one. To be asked before any has been shown.
    [[nodiscard]] std::int64_t FrameAtTime(double seconds) const { return m_frames.Reader().FrameAt(seconds); }
    // What the container shows; -1: nothing yet.
    [[nodiscard]] std::int64_t Shown() const { return m_shown; }

private:
    [[nodiscard]] std::vector<std::int64_t> ComingFrames(std::int64_t field) const;
    void Put(Host& host, picture_io::Picture picture);
    bool Show(Host& host, std::int64_t frame, const std::vector<std::int64_t>& coming);

    ObjectId m_container;
    FramesAhead m_frames;
    double m_framesPerSecond;
    VideoClock m_clock;
    std::shared_ptr<const SoundTrack> m_track;
    VideoConversion m_conversion = VideoConversion::Exact;
    std::int64_t m_shown = -1;
};

}  // namespace kel
