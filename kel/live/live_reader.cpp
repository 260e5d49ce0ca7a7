#include "kel/live/live_reader.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <optional>
#include <span>
#include <utility>

#include "kel/live/live_input.h"
#include "kel/live/sound_frames.h"
#include "kel/live/stream_times.h"

namespace kel {
namespace {

constexpr auto untilNextTry = std::chrono::milliseconds(500);
constexpr auto longestEnd = std::chrono::milliseconds(1000);  // of a thread; an operator waits no longer for a window

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
           left.height == right.height && left.sample_rate == right.sample_rate &&
           left.ch_layout.nb_channels == right.ch_layout.nb_channels && std::ranges::equal(extra(left), extra(right));
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

// What the thread does and knows. It outlives its reader where it cannot be ended.
class LiveReader::Work {
public:
    Work(LiveName name, std::shared_ptr<PacketRing> ring, std::shared_ptr<LiveNews> news)
        : m_name(std::move(name)), m_ring(std::move(ring)), m_news(std::move(news)) {}

    void Run();  // the thread
    // False: it is still at something that cannot be ended.
    [[nodiscard]] bool End();
    [[nodiscard]] State Now() const;
    [[nodiscard]] double DeclaredFramesPerSecond() const { return m_framesPerSecond; }

private:
    void OpenAndRead();
    int ReadAll(LiveInput& input);
    void TakeSound(const LiveInput& input, const AVStream& stream, const AVPacket& packet);
    void TakeFrame(const AVCodecParameters& codec, const AVPacket& frame, AVRational unit);
    void TakePacket(const LiveInput& input, const AVPacket& packet);
    void NoteThere(const LiveInput& input);
    void NoteLost(int result);
    [[nodiscard]] bool Rest();

    const LiveName m_name;
    const std::shared_ptr<PacketRing> m_ring;
    const std::shared_ptr<LiveNews> m_news;
    StreamTimes m_times;  // of the thread, as all up to m_wasThere
    LiveCodec m_codec;
    LiveCodec m_soundCodec;
    std::unique_ptr<SoundFrames> m_soundFrames;  // null: nothing has had to be cut
    AVCodecID m_cutCodec = AV_CODEC_ID_NONE;     // by it
    bool m_wasThere = false;
    std::atomic<double> m_framesPerSecond = 0;
    std::atomic<bool> m_ends = false;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    State m_state;  // guarded by m_mutex, as the next one is
    bool m_isOver = false;
};

bool LiveReader::Work::End() {
    std::unique_lock lock(m_mutex);
    m_ends = true;
    m_changed.notify_all();
    return m_changed.wait_for(lock, longestEnd, [this] { return m_isOver; });
}

LiveReader::State LiveReader::Work::Now() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

// Where memory lacks even to say so, it is tried again all the same.
void LiveReader::Work::Run() {
    do {
        try {
            OpenAndRead();
        } catch (const std::bad_alloc&) {
            const std::lock_guard lock(m_mutex);
            m_state.isThere = false;
        }
    } while (Rest());
    const std::lock_guard lock(m_mutex);
    m_isOver = true;
    m_changed.notify_all();
}

// Until the next try; false: there is none.
bool LiveReader::Work::Rest() {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, untilNextTry, [this] { return m_ends || m_state.isHopeless; });
    return !m_ends && !m_state.isHopeless;
}

void LiveReader::Work::OpenAndRead() {
    int result = 0;
    try {
        LiveInput input(m_name, m_ends);
        result = input.Open();
        if (result >= 0) result = ReadAll(input);
    } catch (const std::bad_alloc&) {
        result = AVERROR(ENOMEM);  // lost, and tried again
    }
    if (!m_ends) NoteLost(result);
}

int LiveReader::Work::ReadAll(LiveInput& input) {
    const AvPacket packet = NewPacket();
    m_times.Break();
    m_soundFrames.reset();
    for (bool isFirst = true;; isFirst = false) {
        const int result = input.Read(*packet);
        if (result < 0) return result;
        if (isFirst) NoteThere(input);
        if (const AVStream* const sound = input.SoundOf(*packet))
            TakeSound(input, *sound, *packet);
        else
            TakePacket(input, *packet);
    }
}

void LiveReader::Work::TakeSound(const LiveInput& input, const AVStream& stream, const AVPacket& packet) {
    const AVRational unit = stream.time_base;
    if (!input.IsUncut()) return TakeFrame(*stream.codecpar, packet, unit);
    if (!m_soundFrames || m_cutCodec != stream.codecpar->codec_id) {
        m_soundFrames = std::make_unique<SoundFrames>(*stream.codecpar);
        m_cutCodec = stream.codecpar->codec_id;
    }
    m_soundFrames->Cut(packet, unit,
                       [&](const AVCodecParameters& codec, const AVPacket& frame) { TakeFrame(codec, frame, unit); });
}

// Sound whose time is not that of the pictures is none of theirs.
void LiveReader::Work::TakeFrame(const AVCodecParameters& codec, const AVPacket& frame, AVRational unit) {
    const auto said = LiveTime(frame.pts == AV_NOPTS_VALUE ? frame.dts : frame.pts, unit);
    const auto time = said ? m_times.At(*said) : std::nullopt;
    if (!time) return;
    if (!m_soundCodec || !IsSameCodec(*m_soundCodec, codec)) {
        m_soundCodec = CopyCodec(codec);
        m_ring->BeginSound(m_soundCodec);
    }
    m_ring->AddSound(CopyPacket(frame, *time, *time));
}

void LiveReader::Work::TakePacket(const LiveInput& input, const AVPacket& packet) {
    const AVStream& stream = input.Pictures();
    if (!m_codec || !IsSameCodec(*m_codec, *stream.codecpar)) {
        m_codec = CopyCodec(*stream.codecpar);
        m_ring->Begin(m_codec);
    }
    const auto [decoded, shown] =
        m_times.Next(LiveTime(packet.dts, stream.time_base), LiveTime(packet.pts, stream.time_base), kel::Now());
    m_ring->Add(CopyPacket(packet, decoded, shown));
}

void LiveReader::Work::NoteThere(const LiveInput& input) {
    const AVStream& stream = input.Pictures();
    const AVRational rate = stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    m_framesPerSecond = rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0.0;
    if (m_wasThere) m_news->Tell(m_name.shown + " is back.");
    m_wasThere = true;
    const std::lock_guard lock(m_mutex);
    m_state = {true, false, {}};
}

void LiveReader::Work::NoteLost(int result) {
    const std::string reason = ReasonOf(m_name.kind, result);
    const std::lock_guard lock(m_mutex);
    if (m_state.isThere)
        m_news->Tell(m_name.shown + " is lost: " + reason + ". The last picture stays until it is back.");
    m_state = {false, !m_wasThere && IsHopeless(m_name.kind, result), reason};
}

LiveReader::LiveReader(const LiveName& name, std::shared_ptr<PacketRing> ring, std::shared_ptr<LiveNews> news)
    : m_work(std::make_shared<Work>(name, std::move(ring), std::move(news))),
      m_thread([work = m_work] { work->Run(); }) {}

LiveReader::~LiveReader() {
    if (m_work->End())
        m_thread.join();
    else
        m_thread.detach();
}

LiveReader::State LiveReader::Now() const { return m_work->Now(); }

double LiveReader::DeclaredFramesPerSecond() const { return m_work->DeclaredFramesPerSecond(); }

}  // namespace kel
