#include "kel/video/sound_reader.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>
#include <vector>

#include "cli/error.h"
#include "kel/video/av_objects.h"
#include "kel/video/stereo_resampler.h"
#include "kel/video/video_file.h"

namespace kel {

// What SoundReader is made of.
class SoundDecoder {
public:
    // Throws Error for what has no sound that can be played.
    //   unit   of the packets' times
    //   begin  of the pictures, in seconds
    SoundDecoder(std::unique_ptr<VideoPackets> packets, AVRational unit, double begin);

    void Seek(double seconds);
    std::size_t Read(std::span<float> samples);

private:
    void OpenCodec(AVRational unit);
    bool DecodeMore();
    void Place(double seconds);

    std::unique_ptr<VideoPackets> m_packets;  // not null
    double m_secondsPerUnit;
    double m_begin;
    AvCodec m_codec;
    AvPacket m_packet;
    AvFrame m_frame;
    StereoResampler m_resampler;
    std::vector<float> m_waiting;  // decoded, from m_taken on not read yet
    std::size_t m_taken = 0;
    double m_sought = 0;      // seconds; what is decoded before it is passed over
    bool m_isPlaced = false;  // the first samples after a seek stand at their time
};

SoundDecoder::SoundDecoder(std::unique_ptr<VideoPackets> packets, AVRational unit, double begin)
    : m_packets(std::move(packets)),
      m_secondsPerUnit(av_q2d(unit)),
      m_begin(begin),
      m_packet(NewPacket()),
      m_frame(NewFrame()) {
    OpenCodec(unit);
}

void SoundDecoder::OpenCodec(AVRational unit) {
    const AVCodecParameters& parameters = m_packets->Codec();
    const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
    if (codec == nullptr) m_packets->Refuse("has sound that cannot be read");
    m_codec.reset(avcodec_alloc_context3(codec));
    if (!m_codec) throw std::bad_alloc();
    m_codec->pkt_timebase = unit;
    int result = avcodec_parameters_to_context(m_codec.get(), &parameters);
    if (result >= 0) result = avcodec_open2(m_codec.get(), codec, nullptr);
    if (result < 0) m_packets->Refuse("has sound that cannot be decoded: " + AvReason(result));
}

void SoundDecoder::Seek(double seconds) {
    m_waiting.clear();
    m_taken = 0;
    m_sought = std::max(seconds, 0.0);
    m_isPlaced = false;
    m_resampler.Break();
    avcodec_flush_buffers(m_codec.get());
    if (!m_packets->Seek(static_cast<std::int64_t>(std::floor((m_sought + m_begin) / m_secondsPerUnit))))
        m_packets->Rewind();
}

// The first samples after a seek lie before the time sought, which cuts them, or after it, which puts silence there.
void SoundDecoder::Place(double seconds) {
    constexpr double longestSilence = 3600;  // seconds
    const double ahead = std::clamp(seconds - m_sought, 0.0, longestSilence);
    m_waiting.assign(SoundReader::channels * static_cast<std::size_t>(ahead * SoundReader::samplesPerSecond), 0.0F);
    m_isPlaced = true;
}

// False: the sound is over.
bool SoundDecoder::DecodeMore() {
    for (;;) {
        const int result = avcodec_receive_frame(m_codec.get(), m_frame.get());
        if (result == AVERROR_EOF) return false;
        if (result < 0) {
            const bool isThere = m_packets->Read(*m_packet);
            avcodec_send_packet(m_codec.get(), isThere ? m_packet.get() : nullptr);
            continue;
        }
        const double start = m_frame->best_effort_timestamp == AV_NOPTS_VALUE
                                 ? m_sought
                                 : static_cast<double>(m_frame->best_effort_timestamp) * m_secondsPerUnit - m_begin;
        const double end = start + static_cast<double>(m_frame->nb_samples) / std::max(m_frame->sample_rate, 1);
        if (!m_isPlaced && end <= m_sought) continue;
        const bool isFirst = !m_isPlaced;
        if (isFirst) Place(start);
        if (!m_resampler.Append(*m_frame, m_waiting)) m_packets->Refuse("has sound that cannot be played");
        if (isFirst && start < m_sought) {
            const auto cut = static_cast<std::size_t>((m_sought - start) * SoundReader::samplesPerSecond);
            m_taken = std::min(SoundReader::channels * cut, m_waiting.size());
        }
        return true;
    }
}

std::size_t SoundDecoder::Read(std::span<float> samples) {
    std::size_t done = 0;
    while (done < samples.size()) {
        if (m_taken == m_waiting.size()) {
            m_waiting.clear();
            m_taken = 0;
            if (!DecodeMore()) break;
            continue;
        }
        const std::size_t count = std::min(samples.size() - done, m_waiting.size() - m_taken);
        std::copy_n(m_waiting.begin() + static_cast<std::ptrdiff_t>(m_taken), count,
                    samples.begin() + static_cast<std::ptrdiff_t>(done));
        m_taken += count;
        done += count;
    }
    return done / SoundReader::channels;
}

std::unique_ptr<SoundReader> SoundReader::Open(const std::filesystem::path& file) {
    try {
        auto video = std::make_unique<VideoFile>(file, VideoFile::Stream::Sound);
        const AVRational unit = video->TimeBase();
        const double begin = video->PicturesBegin();
        return Open(std::move(video), unit, begin);
    } catch (const cli::Error&) {
        return nullptr;
    }
}

std::unique_ptr<SoundReader> SoundReader::Open(std::unique_ptr<VideoPackets> packets, AVRational unit, double begin) {
    try {
        return std::make_unique<SoundReader>(std::make_unique<SoundDecoder>(std::move(packets), unit, begin));
    } catch (const cli::Error&) {
        return nullptr;
    }
}

SoundReader::SoundReader(std::unique_ptr<SoundDecoder> decoder) : m_decoder(std::move(decoder)) {}
SoundReader::~SoundReader() = default;

// A file that breaks off has no more sound from there on.
void SoundReader::Seek(double seconds) {
    try {
        m_decoder->Seek(seconds);
    } catch (const cli::Error&) {
        return;
    }
}

std::size_t SoundReader::Read(std::span<float> samples) {
    try {
        return m_decoder->Read(samples);
    } catch (const cli::Error&) {
        return 0;
    }
}

}  // namespace kel
