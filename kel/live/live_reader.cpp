#include "kel/live/live_reader.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <optional>
#include <span>

namespace kel {
namespace {

constexpr auto untilNextTry = std::chrono::milliseconds(500);

std::optional<std::int64_t> LiveTime(std::int64_t time, AVRational unit) {
    if (time == AV_NOPTS_VALUE || unit.num <= 0 || unit.den <= 0) return std::nullopt;
    return av_rescale_q(time, unit, liveUnit);
}

std::int64_t Now() {
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Packets of the one can be decoded by whoever decodes the other's.
bool IsSameCodec(const AVCodecParameters& left, const AVCodecParameters& right) {
    const auto extra = [](const AVCodecParameters& each) {
        return std::span<const std::uint8_t>(each.extradata, static_cast<std::size_t>(each.extradata_size));
    };
    return left.codec_id == right.codec_id && left.format == right.format && left.width == right.width &&
           left.height == right.height && std::ranges::equal(extra(left), extra(right));
}

// No second try makes it better.
bool IsHopeless(LiveName::Kind kind, int result) {
    return kind != LiveName::Kind::Address || result == AVERROR(EINVAL) || result == AVERROR_PROTOCOL_NOT_FOUND ||
           result == AVERROR_DEMUXER_NOT_FOUND || result == AVERROR_OPTION_NOT_FOUND;
}

std::string ReasonOf(LiveName::Kind kind, int result) {
    if (result == AVERROR(EIO) && kind == LiveName::Kind::Screen)
        return "there is no such screen, or none that may be looked at";
    if (result == AVERROR_EOF || (result == AVERROR(EIO) && kind == LiveName::Kind::Address)) return "it has ended";
    if (result == AVERROR(EINVAL) && kind == LiveName::Kind::Address)
        return "what comes is none of what live pictures may come as";
    if (result == AVERROR(ETIMEDOUT)) return "nothing comes";
    if (result == AVERROR_INVALIDDATA) return "what comes are no pictures that can be read";
    if (result == AVERROR_DEMUXER_NOT_FOUND) return "the libraries here have no such input";
    return AvReason(result);
}

}  // namespace

LiveReader::LiveReader(const LiveName& name, PacketRing& ring, LiveNews& news)
    : m_name(name), m_ring(ring), m_news(news), m_thread([this] { Run(); }) {}

LiveReader::~LiveReader() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

LiveReader::State LiveReader::Now() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

void LiveReader::Run() {
    while (!m_ends) {
        int result = 0;
        try {
            LiveInput input(m_name, m_ends);
            result = input.Open();
            if (result >= 0) result = ReadAll(input);
        } catch (const std::bad_alloc&) {
            result = AVERROR(ENOMEM);  // lost, and tried again
        }
        if (m_ends) return;
        NoteLost(result);
        std::unique_lock lock(m_mutex);
        if (m_state.isHopeless) return;
        m_changed.wait_for(lock, untilNextTry, [this] { return m_ends.load(); });
    }
}

int LiveReader::ReadAll(LiveInput& input) {
    const AvPacket packet = NewPacket();
    m_times.Break();
    for (bool isFirst = true;; isFirst = false) {
        const int result = input.Read(*packet);
        if (result < 0) return result;
        if (isFirst) NoteThere(input);
        TakePacket(input, *packet);
    }
}

void LiveReader::TakePacket(const LiveInput& input, const AVPacket& packet) {
    const AVStream& stream = input.Pictures();
    if (!m_codec || !IsSameCodec(*m_codec, *stream.codecpar)) {
        m_codec = CopyCodec(*stream.codecpar);
        m_ring.Begin(m_codec);
    }
    const auto [decoded, shown] =
        m_times.Next(LiveTime(packet.dts, stream.time_base), LiveTime(packet.pts, stream.time_base), kel::Now());
    m_ring.Add(CopyPacket(packet, decoded, shown));
}

void LiveReader::NoteThere(const LiveInput& input) {
    const AVStream& stream = input.Pictures();
    const AVRational rate = stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    m_framesPerSecond = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0.0;
    if (m_wasThere) m_news.Tell(m_name.shown + " is back.");
    m_wasThere = true;
    const std::lock_guard lock(m_mutex);
    m_state = {true, false, {}};
}

void LiveReader::NoteLost(int result) {
    const std::string reason = ReasonOf(m_name.kind, result);
    const std::lock_guard lock(m_mutex);
    if (m_state.isThere)
        m_news.Tell(m_name.shown + " is lost: " + reason + ". The last picture stays until it is back.");
    m_state = {false, !m_wasThere && IsHopeless(m_name.kind, result), reason};
}

}  // namespace kel
