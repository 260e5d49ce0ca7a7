#pragma once

#include <memory>
#include <vector>

#include "kel/video/av_objects.h"

struct SwrContext;

namespace kel {

// Makes what is played of decoded sound: two channels of float samples, left and right in turn, 48000 a second.
class StereoResampler {
public:
    static constexpr int samplesPerSecond = 48000;
    static constexpr std::size_t channels = 2;

    StereoResampler();
    ~StereoResampler();
    StereoResampler(const StereoResampler&) = delete;
    StereoResampler& operator=(const StereoResampler&) = delete;
    StereoResampler(StereoResampler&&) = delete;
    StereoResampler& operator=(StereoResampler&&) = delete;

    // False: it is sound of a kind that cannot be played. Begins anew where the kind is another than before.
    [[nodiscard]] bool Append(const AVFrame& frame, std::vector<float>& samples);
    // What comes next does not go on from what came before.
    void Break() { m_resampler.reset(); }

private:
    struct Free {
        void operator()(SwrContext* resampler) const;
    };
    [[nodiscard]] bool Prepare(const AVFrame& frame);

    std::unique_ptr<SwrContext, Free> m_resampler;  // null: none is there yet
    int m_format = 0;                               // that it was made for, as are the next two
    int m_rate = 0;
    int m_channels = 0;
};

}  // namespace kel
