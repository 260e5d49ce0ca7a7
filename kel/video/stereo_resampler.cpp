#include "kel/video/stereo_resampler.h"

extern "C" {
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cstdint>

namespace kel {

StereoResampler::StereoResampler() = default;
StereoResampler::~StereoResampler() = default;

void StereoResampler::Free::operator()(SwrContext* resampler) const { swr_free(&resampler); }

bool StereoResampler::Prepare(const AVFrame& frame) {
    const bool isSame = m_resampler && m_format == frame.format && m_rate == frame.sample_rate &&
                        m_channels == frame.ch_layout.nb_channels;
    if (isSame) return true;
    m_format = frame.format;
    m_rate = frame.sample_rate;
    m_channels = frame.ch_layout.nb_channels;
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    AVChannelLayout own = frame.ch_layout;  // only looked at
    SwrContext* made = nullptr;
    const int result = swr_alloc_set_opts2(&made, &stereo, AV_SAMPLE_FMT_FLT, samplesPerSecond, &own,
                                           static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr);
    m_resampler.reset(made);
    if (result >= 0 && swr_init(made) >= 0) return true;
    m_resampler.reset();
    return false;
}

bool StereoResampler::Append(const AVFrame& frame, std::vector<float>& samples) {
    if (!Prepare(frame)) return false;
    const int most = swr_get_out_samples(m_resampler.get(), frame.nb_samples);
    if (most <= 0) return true;
    const std::size_t before = samples.size();
    samples.resize(before + channels * static_cast<std::size_t>(most));
    auto* out = reinterpret_cast<std::uint8_t*>(samples.data() + before);
    const int count = swr_convert(m_resampler.get(), &out, most, const_cast<const std::uint8_t**>(frame.extended_data),
                                  frame.nb_samples);
    samples.resize(before + channels * static_cast<std::size_t>(std::max(count, 0)));
    return true;
}

}  // namespace kel
