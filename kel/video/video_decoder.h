#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "kel/video/picture_converter.h"
#include "kel/video/video_index.h"
#include "kel/video/video_packets.h"

namespace kel {

// What VideoReader is made of.
class VideoDecoder {
public:
    // Decodes the first frame. Throws Error.
    explicit VideoDecoder(std::unique_ptr<VideoPackets> packets);

    [[nodiscard]] const VideoPackets& Packets() const { return *m_packets; }
    [[nodiscard]] const VideoIndex& Index() const { return m_index; }
    [[nodiscard]] std::int32_t Width() const { return m_orientation.exchangesAxes ? m_height : m_width; }
    [[nodiscard]] std::int32_t Height() const { return m_orientation.exchangesAxes ? m_width : m_height; }
    [[nodiscard]] bool HasAlpha() const { return m_hasAlpha; }

    // index: of a frame that is there. Throws Error when it is damaged.
    [[nodiscard]] picture_io::Picture Read(std::int64_t index);
    // The same with the bottom row first, into memory that is used again.
    void ReadUp(std::int64_t index, picture_io::Picture& picture);

    // Of an upright video: what VideoReader's does.
    void FitInto(std::int32_t width, std::int32_t height);
    void SetConversion(VideoConversion conversion) { m_converter.SetConversion(conversion); }

private:
    enum class From { Here, Key, Start };

    void ConvertInto(RowOrder order, picture_io::Picture& picture);
    void DecodeFrame(std::int64_t index);
    void OpenCodec();
    [[nodiscard]] From BestWay(std::int64_t time) const;
    bool DecodeFrom(From from, std::int64_t time);
    void Go(From from, std::int64_t time);
    bool DecodeUntil(std::int64_t time);
    bool NextFrame();
    void Feed();

    std::unique_ptr<VideoPackets> m_packets;  // not null
    VideoIndex m_index;
    AvCodec m_codec;
    AvPacket m_packet;
    AvFrame m_frame;                     // the last one decoded
    std::optional<std::int64_t> m_time;  // of m_frame; none: nothing is decoded, or it is of no use
    PictureOrientation m_orientation;
    std::int32_t m_width = 0;  // pixels, as stored
    std::int32_t m_height = 0;
    bool m_hasAlpha = false;
    bool m_isFitted = false;
    PictureConverter m_converter;
};

}  // namespace kel
