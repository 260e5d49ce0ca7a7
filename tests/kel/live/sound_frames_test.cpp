#include "kel/live/sound_frames.h"

#include <doctest/doctest.h>

#include <random>
#include <vector>

namespace kel {
namespace {

constexpr AVRational tsUnit{1, 90000};

AVCodecParameters StreamOf(AVCodecID codec) {
    AVCodecParameters parameters{};
    parameters.codec_type = AVMEDIA_TYPE_AUDIO;
    parameters.codec_id = codec;
    parameters.format = -1;
    return parameters;
}

AvPacket PieceOf(const std::vector<std::uint8_t>& bytes, std::int64_t time) {
    AvPacket packet = NewPacket();
    av_new_packet(packet.get(), static_cast<int>(bytes.size()));
    std::copy(bytes.begin(), bytes.end(), packet->data);
    packet->pts = packet->dts = time;
    return packet;
}

// A frame of AAC of low complexity with so many bytes behind its header, in which nothing is: 7 bytes of header, of
// which 12 bits are ones, 4 say that no checksum follows, 2 the kind (1), 4 the rate, 1 nothing, 3 the channels, 4
// nothing, 13 the length with the header, 11 ones, 2 one block.
std::vector<std::uint8_t> AacFrame(unsigned rate, unsigned channels, unsigned bytes) {
    const unsigned length = bytes + 7;
    std::vector<std::uint8_t> frame{0xFF,
                                    0xF1,
                                    static_cast<std::uint8_t>(0x40U | rate << 2U | channels >> 2U),
                                    static_cast<std::uint8_t>((channels & 3U) << 6U | length >> 11U),
                                    static_cast<std::uint8_t>(length >> 3U & 0xFFU),
                                    static_cast<std::uint8_t>((length & 7U) << 5U | 0x1FU),
                                    0xFC};
    frame.resize(length, 0x21);
    return frame;
}

struct FrameSeen {
    std::int64_t time;
    int bytes;
    int rate;
    int channels;
    int said;  // bytes that the codec has of it
};

std::vector<FrameSeen> CutAll(SoundFrames& frames, const std::vector<AvPacket>& pieces) {
    std::vector<FrameSeen> seen;
    for (const AvPacket& piece : pieces)
        frames.Cut(*piece, tsUnit, [&](const AVCodecParameters& codec, const AVPacket& frame) {
            seen.push_back(
                {frame.pts, frame.size, codec.sample_rate, codec.ch_layout.nb_channels, codec.extradata_size});
        });
    return seen;
}

}  // namespace

TEST_CASE("Pieces of AAC are cut into frames without headers, each at its time") {
    std::vector<std::uint8_t> bytes;
    for (const unsigned size : {40U, 50U, 60U, 70U}) {
        const std::vector<std::uint8_t> frame = AacFrame(3, 2, size);
        bytes.insert(bytes.end(), frame.begin(), frame.end());
    }
    // Cut in the middle of the second: 47 of the first, and 20 of it.
    const std::vector<std::uint8_t> begin(bytes.begin(), bytes.begin() + 67);
    const std::vector<std::uint8_t> rest(bytes.begin() + 67, bytes.end());
    SoundFrames frames(StreamOf(AV_CODEC_ID_AAC));
    std::vector<AvPacket> pieces;
    pieces.push_back(PieceOf(begin, 9000));
    pieces.push_back(PieceOf(rest, 9000 + 2 * 1920));  // of the first that begins in it
    const std::vector<FrameSeen> seen = CutAll(frames, pieces);
    REQUIRE_EQ(seen.size(), 4);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        CAPTURE(i);
        CHECK_EQ(seen[i].time, 9000 + 1920 * static_cast<std::int64_t>(i));  // 1024 / 48000 s of 90000
        CHECK_EQ(seen[i].bytes, 40 + 10 * static_cast<int>(i));
        CHECK_EQ(seen[i].rate, 48000);
        CHECK_EQ(seen[i].channels, 2);
        CHECK_GT(seen[i].said, 0);
    }
}

TEST_CASE("Sound that becomes another kind in the middle is described anew") {
    SoundFrames frames(StreamOf(AV_CODEC_ID_AAC));
    std::vector<AvPacket> pieces;
    pieces.push_back(PieceOf(AacFrame(3, 2, 30), 0));
    pieces.push_back(PieceOf(AacFrame(4, 1, 30), 9000));
    const std::vector<FrameSeen> seen = CutAll(frames, pieces);
    REQUIRE_EQ(seen.size(), 2);
    CHECK_EQ(seen[1].rate, 44100);
    CHECK_EQ(seen[1].channels, 1);
    CHECK_GT(seen[1].said, 0);
}

TEST_CASE("Whatever comes as sound is cut or passed over") {
    std::mt19937 random(20);
    const auto below = [&](unsigned end) { return static_cast<unsigned>(random() % end); };
    for (const AVCodecID codec : {AV_CODEC_ID_AAC, AV_CODEC_ID_AAC_LATM, AV_CODEC_ID_MP2, AV_CODEC_ID_AC3,
                                  AV_CODEC_ID_DTS, AV_CODEC_ID_OPUS, AV_CODEC_ID_S302M, AV_CODEC_ID_NONE}) {
        SoundFrames frames(StreamOf(codec));
        for (int round = 0; round < 200; ++round) {
            std::vector<std::uint8_t> bytes = AacFrame(below(16), below(8), below(300));
            bytes.resize(1 + below(2000), static_cast<std::uint8_t>(random()));
            for (unsigned hits = below(8); hits > 0; --hits)
                bytes[below(static_cast<unsigned>(bytes.size()))] = static_cast<std::uint8_t>(random());
            const AvPacket piece = PieceOf(bytes, below(5) == 0 ? AV_NOPTS_VALUE : round * 1000);
            const bool isCut = codec == AV_CODEC_ID_AAC || codec == AV_CODEC_ID_MP2 || codec == AV_CODEC_ID_AC3;
            frames.Cut(*piece, tsUnit, [&](const AVCodecParameters& said, const AVPacket& frame) {
                CHECK((said.sample_rate > 0 && said.ch_layout.nb_channels > 0) == isCut);
                CHECK((isCut ? frame.pts != AV_NOPTS_VALUE : frame.size == piece->size));
            });
        }
    }
}

}  // namespace kel
