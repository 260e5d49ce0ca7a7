#pragma once

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <vector>

#include "kel/video/sound_reader.h"
#include "kel/video/video_reader.h"
#include "tests/kel/video/beating_track.h"

namespace kel::testing {

inline std::vector<float> LeftOf(SoundSource& sound) {
    std::vector<float> both(std::size_t{10} * SoundSource::samplesPerSecond * SoundSource::channels);
    sound.Seek(0);
    const std::size_t count = sound.Read(both);
    std::vector<float> left;
    for (std::size_t i = 0; i < count; ++i) left.push_back(both[SoundSource::channels * i]);
    return left;
}

inline double BeatSeconds(std::size_t sample) { return static_cast<double>(sample) / SoundSource::samplesPerSecond; }

// When tones begin: what is loud after a tenth of a second of what is not.
inline std::vector<double> TonesIn(const std::vector<float>& samples) {
    constexpr float loud = 0.1F;
    std::vector<double> begins;
    std::size_t last = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (std::abs(samples[i]) < loud) continue;
        if (BeatSeconds(i - last) > 0.1) begins.push_back(BeatSeconds(i));
        last = i;
    }
    return begins;
}

// Of the fifth of a second from then on: how often it rises through zero.
inline double FrequencyAt(const std::vector<float>& samples, double seconds) {
    const auto begin = static_cast<std::size_t>(seconds * SoundSource::samplesPerSecond);
    const std::size_t count = SoundSource::samplesPerSecond / 5;
    REQUIRE_LE(begin + count, samples.size());
    int rises = 0;
    for (std::size_t i = begin + 1; i < begin + count; ++i) rises += samples[i - 1] < 0 && samples[i] >= 0 ? 1 : 0;
    return rises * 5;
}

// When the pictures become white.
inline std::vector<double> WhitesIn(const std::filesystem::path& file) {
    VideoReader video(file);
    const std::vector<double> starts = video.UnevenStarts();
    std::vector<double> begins;
    bool wasWhite = true;
    for (std::int64_t frame = 0; frame < video.FrameCount(); ++frame) {
        const bool isWhite = video.ReadFrame(frame).At(video.Width() / 2, video.Height() / 2)[0] > 128;
        const double start = starts.empty() ? static_cast<double>(frame) : starts[static_cast<std::size_t>(frame)];
        if (isWhite && !wasWhite) begins.push_back(start / video.FramesPerSecond());
        wasWhite = isWhite;
    }
    return begins;
}

// The way of the one that is nearest.
inline double DistanceFrom(double time, const std::vector<double>& others) {
    double nearest = 1000;
    for (const double other : others) nearest = std::min(nearest, std::abs(time - other));
    return nearest;
}

// The pictures of a video are white where it has the tone of BeatingSound, and black where it is silent.
//   apart  seconds that the two may be
inline void CheckBeats(const std::filesystem::path& file, double apart) {
    const auto sound = SoundReader::Open(file);
    REQUIRE(sound);
    const std::vector<float> samples = LeftOf(*sound);
    const std::vector<double> tones = TonesIn(samples);
    const std::vector<double> whites = WhitesIn(file);
    REQUIRE_FALSE(tones.empty());
    REQUIRE_FALSE(whites.empty());
    // At either end one of the two may be cut.
    for (const double shown : whites)
        if (shown > 0.2 && shown + 0.2 < BeatSeconds(samples.size())) CHECK_LE(DistanceFrom(shown, tones), apart);
    // One in a hundred: the fifth of a second has two hundred turns, and the ends may cut one each.
    CHECK_EQ(FrequencyAt(samples, tones.front() + 0.1), doctest::Approx(toneOfBeat).epsilon(0.01));
}

}  // namespace kel::testing
