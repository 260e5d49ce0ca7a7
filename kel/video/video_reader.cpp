#include "kel/video/video_reader.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kel/video/video_decoder.h"
#include "kel/video/video_file.h"

namespace kel {
namespace {

// What the frames' times say; 0: there is only one.
double CountedFramesPerSecond(const VideoDecoder& video) {
    const auto& times = video.Index().times;
    const double seconds = static_cast<double>(times.back() - times.front()) * video.Packets().SecondsPerUnit();
    return seconds > 0 ? static_cast<double>(times.size() - 1) / seconds : 0.0;
}

}  // namespace

VideoReader::VideoReader(const std::filesystem::path& file)
    : m_decoder(std::make_unique<VideoDecoder>(std::make_unique<VideoFile>(file))) {}
VideoReader::VideoReader(std::unique_ptr<VideoPackets> packets)
    : m_decoder(std::make_unique<VideoDecoder>(std::move(packets))) {}
VideoReader::~VideoReader() = default;
VideoReader::VideoReader(VideoReader&&) noexcept = default;
VideoReader& VideoReader::operator=(VideoReader&&) noexcept = default;

std::int32_t VideoReader::Width() const { return m_decoder->Width(); }

std::int32_t VideoReader::Height() const { return m_decoder->Height(); }

bool VideoReader::HasAlpha() const { return m_decoder->HasAlpha(); }

// Times are rounded to the container's unit, so what it declares is exacter, unless it is far off.
double VideoReader::FramesPerSecond() const {
    constexpr double usual = 25.0;
    constexpr double nearness = 0.01;
    const double declared = m_decoder->Packets().DeclaredFramesPerSecond();
    const double counted = CountedFramesPerSecond(*m_decoder);
    if (counted <= 0) return declared > 0 ? declared : usual;
    return std::abs(declared - counted) <= nearness * counted ? declared : counted;
}

std::int64_t VideoReader::FrameCount() const { return static_cast<std::int64_t>(m_decoder->Index().times.size()); }

std::int64_t VideoReader::FrameAt(double seconds) const {
    constexpr double rounding = 0.6;         // units: half of one, and a little more for the arithmetic here
    constexpr double mostRounding = 0.0006;  // seconds, since the coarsest rounding is to milliseconds
    const auto& times = m_decoder->Index().times;
    const double unit = m_decoder->Packets().SecondsPerUnit();
    const double sought =
        (seconds + std::min(unit * rounding, mostRounding)) / unit + static_cast<double>(times.front());
    const auto after =
        std::ranges::upper_bound(times, sought, {}, [](std::int64_t time) { return static_cast<double>(time); });
    return std::max<std::int64_t>(0, after - times.begin() - 1);
}

void VideoReader::FitInto(std::int32_t width, std::int32_t height) { m_decoder->FitInto(width, height); }

void VideoReader::SetConversion(VideoConversion conversion) { m_decoder->SetConversion(conversion); }

std::vector<double> VideoReader::UnevenStarts() const {
    const auto& times = m_decoder->Index().times;
    const double rate = FramesPerSecond();
    std::int64_t number = 0;
    std::vector<double> starts;
    bool isEven = true;
    for (const std::int64_t time : times) {
        isEven = isEven && FrameAt(static_cast<double>(number) / rate) == number;
        ++number;
        starts.push_back(static_cast<double>(time - times.front()) * m_decoder->Packets().SecondsPerUnit() * rate);
    }
    if (isEven) starts.clear();
    return starts;
}

void VideoReader::ReadFrameUp(std::int64_t index, picture_io::Picture& picture) {
    m_decoder->ReadUp(std::clamp<std::int64_t>(index, 0, FrameCount() - 1), picture);
}

picture_io::Picture VideoReader::ReadFrame(std::int64_t index) {
    return m_decoder->Read(std::clamp<std::int64_t>(index, 0, FrameCount() - 1));
}

}  // namespace kel
