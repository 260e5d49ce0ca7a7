#include "kel/live/live_source.h"

#include <algorithm>
#include <utility>

#include "cli/error.h"
#include "kel/live/held_packets.h"
#include "kel/live/live_tracks.h"

namespace kel {
namespace {

constexpr double usualFramesPerSecond = 25;
constexpr double slowest = 1;
constexpr double fastest = 240;  // beyond it a container says its own unit and no rate

bool IsRate(double framesPerSecond) { return framesPerSecond >= slowest && framesPerSecond <= fastest; }

}  // namespace

LiveSource::LiveSource(const LiveName& name, const PacketRing::Limits& replay)
    : m_name(name),
      m_ring(std::make_shared<PacketRing>(replay)),
      m_track(std::make_shared<RingTrack>(m_ring)),
      m_decoder(*m_ring, *m_news),
      m_reader(name, m_ring, m_news) {}

LiveSource::~LiveSource() = default;

bool LiveSource::WaitForPicture(std::chrono::milliseconds atMost) {
    const auto piece = std::min(atMost, std::chrono::milliseconds(20));
    const auto end = std::chrono::steady_clock::now() + atMost;
    while (!m_decoder.WaitForPicture(piece)) {
        const LiveReader::State state = m_reader.Now();
        if (state.isHopeless) throw cli::Error(m_name.shown, {}, "cannot be opened: " + state.reason);
        if (std::chrono::steady_clock::now() >= end) return false;
    }
    return true;
}

SoundMoment LiveSource::Heard() const {
    const std::optional<double> shown = m_decoder.ShownSeconds();
    return shown ? SoundMoment{m_track, *shown, true} : SoundMoment();
}

LiveSource::Replay LiveSource::HoldReplay() const {
    PacketRing::Held held = m_ring->Hold();
    auto packets = std::make_unique<HeldPackets>(m_name.shown, held, FramesPerSecond());
    VideoReader video(std::move(packets));
    const std::int32_t width = video.Width();
    const std::int32_t height = video.Height();
    if (Width() > 0) video.FitInto(Width(), Height());
    auto sound = std::make_shared<HeldTrack>(m_name.shown, held);
    return {std::move(held), std::move(video), std::move(sound), width, height};
}

double LiveSource::FramesPerSecond() const {
    const double declared = m_reader.DeclaredFramesPerSecond();
    if (IsRate(declared)) return declared;
    const double coded = m_decoder.PictureSize().framesPerSecond;
    return IsRate(coded) ? coded : usualFramesPerSecond;
}

}  // namespace kel
