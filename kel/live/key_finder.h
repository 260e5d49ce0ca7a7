#pragma once

#include <memory>

#include "kel/video/av_objects.h"

namespace kel {

// Marks the packets that decoding can start with, where a container does not say which they are. Each packet is a whole
// picture.
class KeyFinder {
public:
    explicit KeyFinder(AVCodecID codec);
    void Mark(AVPacket& packet);

private:
    struct CloseParser {
        void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
    };

    AvCodec m_codec;
    std::unique_ptr<AVCodecParserContext, CloseParser> m_parser;  // null: nobody knows this codec's pictures
};

}  // namespace kel
