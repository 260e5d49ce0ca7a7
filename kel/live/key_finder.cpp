#include "kel/live/key_finder.h"

#include <new>

namespace kel {

KeyFinder::KeyFinder(AVCodecID codec) : m_codec(avcodec_alloc_context3(nullptr)), m_parser(av_parser_init(codec)) {
    if (!m_codec) throw std::bad_alloc();
    m_codec->codec_id = codec;
    if (m_parser) m_parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
}

void KeyFinder::Mark(AVPacket& packet) {
    if (!m_parser) return;
    std::uint8_t* picture = nullptr;
    int size = 0;
    (void)av_parser_parse2(m_parser.get(), m_codec.get(), &picture, &size, packet.data, packet.size, packet.pts,
                           packet.dts, packet.pos);
    const bool isKey =
        m_parser->key_frame == 1 || (m_parser->key_frame < 0 && m_parser->pict_type == AV_PICTURE_TYPE_I);
    if (isKey) packet.flags |= AV_PKT_FLAG_KEY;
}

}  // namespace kel
