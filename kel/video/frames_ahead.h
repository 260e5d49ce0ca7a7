#pragma once

#include <condition_variable>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "kel/video/video_reader.h"

namespace kel {

// A video whose frames are decoded on a thread of its own, before they are asked for. All functions are called on one
// other thread.
class FramesAhead {
public:
    explicit FramesAhead(VideoReader reader);
    // Throws Error as VideoReader does.
    explicit FramesAhead(const std::filesystem::path& file) : FramesAhead(VideoReader(file)) {}
    ~FramesAhead();  // waits for the frame that is being decoded
    FramesAhead(const FramesAhead&) = delete;
    FramesAhead& operator=(const FramesAhead&) = delete;
    FramesAhead(FramesAhead&&) = delete;
    FramesAhead& operator=(FramesAhead&&) = delete;

    // For what never changes: size, rate, times. Frames are taken here.
    [[nodiscard]] const VideoReader& Reader() const { return m_reader; }

    // The frame, decoded by now or waited for, its bottom row first.
    //   coming  what will be asked for next, in that order; it is decoded meanwhile. All else that was, is forgotten
    // Throws Error when the frame is damaged.
    [[nodiscard]] picture_io::Picture Take(std::int64_t frame, const std::vector<std::int64_t>& coming);

    // Memory for frames to come: a picture that is of no use any more, and may be anything.
    void GiveBack(picture_io::Picture picture);

    // How frames are made from now on.
    void SetConversion(VideoConversion conversion);

private:
    struct Decoded {
        picture_io::Picture picture;
        std::exception_ptr damage;  // null: the picture is there
    };

    void DecodeFrames();
    void ForgetUnwanted();
    void Spare(picture_io::Picture picture);
    [[nodiscard]] const std::int64_t* NextWanted() const;
    Decoded Decode(std::int64_t frame, picture_io::Picture memory);

    VideoReader m_reader;  // its frames belong to the thread
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::int64_t> m_wanted;         // guarded by m_mutex, as is all below
    std::map<std::int64_t, Decoded> m_decoded;  // of those wanted
    std::vector<picture_io::Picture> m_spare;   // memory of frames that are over
    VideoConversion m_conversion = VideoConversion::Exact;
    std::int64_t m_setting = 0;  // changes with the conversion
    bool m_ends = false;
    std::thread m_thread;  // last: it uses all of the above
};

}  // namespace kel
