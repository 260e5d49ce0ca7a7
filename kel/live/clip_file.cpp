#include "kel/live/clip_file.h"

extern "C" {
#include <libavcodec/bsf.h>
}

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "cli/error.h"
#include "cli/staged_file.h"

namespace kel {
namespace {

struct CloseClip {
    void operator()(AVFormatContext* output) const {
        if (output->pb != nullptr) avio_closep(&output->pb);
        avformat_free_context(output);
    }
};
using ClipOutput = std::unique_ptr<AVFormatContext, CloseClip>;

struct FreeFilter {
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
};

// Which packets a part takes, in the order in which they came, and the time of its first frame.
struct PacketRange {
    std::size_t begin = 0;
    std::size_t end = 0;  // behind the last
    std::int64_t firstShown = 0;
    std::int64_t lastShown = 0;
};

PacketRange RangeOf(const PacketRing::Held& held, const ClipPart& part) {
    const std::vector<std::int64_t> times = FrameTimes(held);
    const auto timeOf = [&](std::int64_t frame) {
        return times[static_cast<std::size_t>(std::clamp<std::int64_t>(frame, 0, std::ssize(times) - 1))];
    };
    PacketRange range;
    range.firstShown = timeOf(part.first);
    range.lastShown = timeOf(part.last);
    for (std::size_t i = 0; i < held.packets.size(); ++i) {
        const AVPacket& packet = *held.packets[i];
        if ((packet.flags & AV_PKT_FLAG_KEY) != 0 && packet.pts <= range.firstShown) range.begin = i;
        if (packet.pts <= range.lastShown) range.end = i + 1;
    }
    range.end = std::max(range.end, range.begin + 1);
    return range;
}

// Streams repeat at each key what a file says once at its beginning.
void TakeExtraData(const AVPacket& key, AVCodecParameters& codec) {
    const AVBitStreamFilter* kind = av_bsf_get_by_name("extract_extradata");
    AVBSFContext* made = nullptr;
    if (codec.extradata_size > 0 || kind == nullptr || av_bsf_alloc(kind, &made) < 0) return;
    const std::unique_ptr<AVBSFContext, FreeFilter> filter(made);
    const AvPacket packet(av_packet_clone(&key));
    if (!packet) throw std::bad_alloc();
    if (avcodec_parameters_copy(filter->par_in, &codec) < 0 || av_bsf_init(filter.get()) < 0) return;  // none is needed
    if (av_bsf_send_packet(filter.get(), packet.get()) < 0 || av_bsf_receive_packet(filter.get(), packet.get()) < 0)
        return;
    std::size_t size = 0;
    const std::uint8_t* const data = av_packet_get_side_data(packet.get(), AV_PKT_DATA_NEW_EXTRADATA, &size);
    if (data == nullptr) return;
    codec.extradata = static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (codec.extradata == nullptr) throw std::bad_alloc();
    std::copy_n(data, size, codec.extradata);
    codec.extradata_size = static_cast<int>(size);
}

// What does not say its rate is nothing that a file can have.
bool CanHaveSound(const PacketRing::Held& held) {
    if (!held.soundCodec || held.sound.empty()) return false;
    const AVCodecParameters& codec = *held.soundCodec;
    const AVOutputFormat* const format = av_guess_format("matroska", nullptr, nullptr);
    return codec.sample_rate > 0 && codec.ch_layout.nb_channels > 0 &&
           avformat_query_codec(format, codec.codec_id, FF_COMPLIANCE_NORMAL) == 1;
}

class ClipWriter {
public:
    ClipWriter(const std::filesystem::path& file, const PacketRing::Held& held, const ClipPart& part,
               const AVPacket& key)
        : m_file(file), m_output(NewOutput()) {
        AVCodecParameters& pictures = AddStream(*held.codec);
        pictures.width = part.width;
        pictures.height = part.height;
        TakeExtraData(key, pictures);
        if (CanHaveSound(held)) (void)AddStream(*held.soundCodec);
        Check(avio_open(&m_output->pb, ("file:" + m_file.Temporary().string()).c_str(), AVIO_FLAG_WRITE));
        Check(avformat_write_header(m_output.get(), nullptr));
    }

    // stream: 0 for pictures, 1 for sound
    void Write(int stream, const AVPacket& packet, std::int64_t begin) {
        const AvPacket written(av_packet_clone(&packet));
        if (!written) throw std::bad_alloc();
        written->stream_index = stream;
        written->pts -= begin;
        written->dts -= begin;
        av_packet_rescale_ts(written.get(), liveUnit, m_output->streams[stream]->time_base);
        Check(av_interleaved_write_frame(m_output.get(), written.get()));
    }

    void Finish() {
        Check(av_write_trailer(m_output.get()));
        avio_flush(m_output->pb);
        Check(m_output->pb->error);
        m_output.reset();
        m_file.Commit();
    }

private:
    static ClipOutput NewOutput() {
        AVFormatContext* output = nullptr;
        if (avformat_alloc_output_context2(&output, nullptr, "matroska", nullptr) < 0) throw std::bad_alloc();
        return ClipOutput(output);
    }
    AVCodecParameters& AddStream(const AVCodecParameters& codec) {
        AVStream* const stream = avformat_new_stream(m_output.get(), nullptr);
        if (stream == nullptr || avcodec_parameters_copy(stream->codecpar, &codec) < 0) throw std::bad_alloc();
        stream->codecpar->codec_tag = 0;  // another container's word for it
        stream->time_base = liveUnit;
        return *stream->codecpar;
    }
    void Check(int result) const {
        if (result < 0) throw cli::Error(m_file.File().string(), {}, "cannot be written: " + AvReason(result));
    }

    cli::StagedFile m_file;
    ClipOutput m_output;  // closed before the file goes
};

// That is heard between two times of the pictures; each packet later than the one before, whatever the stream said.
void WriteSound(ClipWriter& writer, const PacketRing::Held& held, std::int64_t begin, std::int64_t end) {
    if (!CanHaveSound(held)) return;
    constexpr std::int64_t rounding = 1000;  // microseconds, of two streams' units
    std::int64_t last = begin - rounding;
    for (const LivePacket& packet : held.sound) {
        if (packet->pts <= last || packet->pts > end) continue;
        writer.Write(1, *packet, std::min(begin, packet->pts));
        last = packet->pts;
    }
}

}  // namespace

std::vector<std::int64_t> FrameTimes(const PacketRing::Held& held) {
    std::vector<std::int64_t> times;
    for (const LivePacket& packet : held.packets) times.push_back(packet->pts);
    std::ranges::sort(times);
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

std::int64_t WriteClip(const PacketRing::Held& held, const ClipPart& part, const std::filesystem::path& file) {
    const PacketRange range = RangeOf(held, part);
    const AVPacket& key = *held.packets[range.begin];
    ClipWriter writer(file, held, part, key);
    std::vector<std::int64_t> before;
    std::int64_t end = key.pts;
    for (std::size_t i = range.begin; i < range.end; ++i) {
        const AVPacket& packet = *held.packets[i];
        writer.Write(0, packet, key.dts);
        if (packet.pts <= range.lastShown) end = std::max(end, packet.pts);
        if (packet.pts < range.firstShown) before.push_back(packet.pts);
    }
    WriteSound(writer, held, key.dts, end);
    writer.Finish();
    std::ranges::sort(before);
    return std::unique(before.begin(), before.end()) - before.begin();
}

}  // namespace kel
