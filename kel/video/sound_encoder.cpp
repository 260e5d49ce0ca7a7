#include "kel/video/sound_encoder.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "cli/error.h"
#include "kel/video/sound_source.h"

namespace kel {
namespace {

constexpr std::int64_t bitsPerSecond = 192'000;  // of two channels, where they are coded with loss

std::int16_t Whole(float sample) {
    return static_cast<std::int16_t>(std::clamp(std::lround(sample * 32768.0F), -32768L, 32767L));
}

}  // namespace

SoundEncoder::SoundEncoder(std::string name, const char* encoder) : m_name(std::move(name)), m_packet(NewPacket()) {
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder);
    if (codec == nullptr) throw cli::Error(m_name, {}, "cannot be sent: there is no encoder " + std::string(encoder));
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!m_codec) throw std::bad_alloc();
    m_codec->sample_rate = SoundSource::samplesPerSecond;
    m_codec->ch_layout = AV_CHANNEL_LAYOUT_STEREO;
    m_codec->sample_fmt = codec->sample_fmts[0];
    m_codec->time_base = {1, SoundSource::samplesPerSecond};
    m_codec->bit_rate = bitsPerSecond;
    m_codec->flags |= AV_CODEC_FLAG_BITEXACT;
    Check(avcodec_open2(m_codec.get(), codec, nullptr));
}

void SoundEncoder::Check(int result) const {
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0) throw cli::Error(m_name, {}, "cannot be sent: " + AvReason(result));
}

AvFrame SoundEncoder::FrameOf(std::span<const float> samples) const {
    AvFrame frame = NewFrame();
    frame->nb_samples = static_cast<int>(samples.size() / SoundSource::channels);
    frame->format = m_codec->sample_fmt;
    frame->sample_rate = m_codec->sample_rate;
    Check(av_channel_layout_copy(&frame->ch_layout, &m_codec->ch_layout));
    Check(av_frame_get_buffer(frame.get(), 0));
    frame->pts = m_first;
    if (m_codec->sample_fmt == AV_SAMPLE_FMT_S16) {
        std::ranges::transform(samples, reinterpret_cast<std::int16_t*>(frame->data[0]), Whole);
        return frame;
    }
    for (std::size_t channel = 0; channel < SoundSource::channels; ++channel) {
        auto* const plane = reinterpret_cast<float*>(frame->data[channel]);
        for (std::size_t i = 0; SoundSource::channels * i < samples.size(); ++i)
            plane[i] = samples[SoundSource::channels * i + channel];
    }
    return frame;
}

bool SoundEncoder::Encode(std::span<const float> samples, const Taker& taker) {
    const AvFrame frame = FrameOf(samples);
    m_first += frame->nb_samples;
    Check(avcodec_send_frame(m_codec.get(), frame.get()));
    for (;;) {
        const int result = avcodec_receive_packet(m_codec.get(), m_packet.get());
        if (result == AVERROR(EAGAIN)) return true;
        Check(result);
        // What an encoder needs to begin with is before the beginning of a stream, whose times have none below zero.
        const bool isWanted = m_packet->pts < 0 || taker(*m_packet);
        av_packet_unref(m_packet.get());
        if (!isWanted) return false;
    }
}

bool SoundEncoder::EncodeWhole(const Taker& taker) {
    const std::size_t whole = SoundSource::channels * static_cast<std::size_t>(m_codec->frame_size);
    std::size_t done = 0;
    // A codec that has no size of its own takes what there is.
    const auto next = [&] { return whole > 0 ? whole : m_waiting.size() - done; };
    while (m_waiting.size() > done && m_waiting.size() - done >= next()) {
        const std::size_t count = next();
        if (!Encode(std::span(m_waiting).subspan(done, count), taker)) return false;
        done += count;
    }
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(done));
    return true;
}

bool SoundEncoder::Take(std::int64_t first, std::span<const float> samples, const Taker& taker) {
    const std::int64_t end = m_first + std::ssize(m_waiting) / static_cast<std::int64_t>(SoundSource::channels);
    if (first > end) {  // what waits ends in silence
        if (!m_waiting.empty())
            m_waiting.resize(SoundSource::channels * static_cast<std::size_t>(m_codec->frame_size), 0.0F);
        if (!EncodeWhole(taker)) return false;
        m_first = std::max(first, m_first);
    }
    m_waiting.insert(m_waiting.end(), samples.begin(), samples.end());
    return EncodeWhole(taker);
}

}  // namespace kel
