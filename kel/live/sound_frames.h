#pragma once

extern "C" {
#include <libavcodec/bsf.h>
}

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "kel/video/av_objects.h"

namespace kel {

// Cuts the sound of MPEG-TS, which comes in pieces of any size and says what it is at each of its frames, into frames
// as a file has them: each with its time, and a codec that says its rate. AAC loses the header of its frames, and its
// codec gets what was said there. What is no frame is passed over. Codecs that few send are left as they come.
class SoundFrames {
public:
    // codec: of the frame, the same object as long as nothing in it changes; borrowed for the call
    using Taker = std::function<void(const AVCodecParameters& codec, const AVPacket& frame)>;

    // Throws std::bad_alloc.
    explicit SoundFrames(const AVCodecParameters& stream);

    //   unit  of the packet's times and of the frames'
    // Throws std::bad_alloc.
    void Cut(const AVPacket& packet, AVRational unit, const Taker& taker);

private:
    struct CloseParser {
        void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
    };
    struct FreeFilter {
        void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    };
    struct FreeParameters {
        void operator()(AVCodecParameters* parameters) const { avcodec_parameters_free(&parameters); }
    };
    // What a frame says of itself.
    struct Said {
        int samplesPerSecond = 0;
        int channels = 0;
        int samples = 0;
        bool operator==(const Said&) const = default;
    };

    [[nodiscard]] Said SaidBy(const AVPacket& frame) const;
    void Take(AVPacket& frame, AVRational unit, const Taker& taker);
    [[nodiscard]] bool Describe(const Said& said);
    [[nodiscard]] bool TakeHeaderOff(AVPacket& frame);

    AvCodec m_codec;
    std::unique_ptr<AVCodecParserContext, CloseParser> m_parser;  // null: packets are left as they come
    std::unique_ptr<AVBSFContext, FreeFilter> m_filter;           // null: frames have no header, or none is known yet
    std::unique_ptr<AVCodecParameters, FreeParameters> m_described;
    Said m_said;
    std::int64_t m_next = AV_NOPTS_VALUE;  // when the frame after the last one begins
    std::vector<std::uint8_t> m_padded;    // memory for the piece that is cut
};

}  // namespace kel
