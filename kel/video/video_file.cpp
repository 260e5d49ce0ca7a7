#include "kel/video/video_file.h"

#include <cmath>
#include <vector>

#include "cli/error.h"
#include "cli/file_bytes.h"
#include "kel/video/matroska_length.h"
#include "kel/video/video_reader.h"

namespace kel {
namespace {

// Some frames are decoded for what the container does not say; none of them is larger than what is read.
int FindStreams(AVFormatContext& input) {
    std::vector<AVDictionary*> options(input.nb_streams);
    for (AVDictionary*& each : options) av_dict_set_int(&each, "max_pixels", VideoReader::largestVideoPixels, 0);
    const int result = avformat_find_stream_info(&input, options.data());
    for (AVDictionary*& each : options) av_dict_free(&each);
    return result;
}

}  // namespace

AvInput OpenVideoInput(const std::filesystem::path& file, int& result) {
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", "mov,mp4,matroska,webm", 0);
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "enable_drefs", "0", 0);  // a track's frames lie in the video itself
    AVFormatContext* input = nullptr;
    result = avformat_open_input(&input, ("file:" + file.string()).c_str(), nullptr, &options);
    av_dict_free(&options);
    return AvInput(input);
}

double PicturesBeginIn(const AVFormatContext& input) {
    for (unsigned index = 0; index < input.nb_streams; ++index) {
        const AVStream& stream = *input.streams[index];
        const bool isPictures = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
                                (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
        if (isPictures && stream.start_time != AV_NOPTS_VALUE)
            return static_cast<double>(stream.start_time) * av_q2d(stream.time_base);
    }
    return 0;
}

VideoFile::VideoFile(const std::filesystem::path& file, Stream which) : m_file(file), m_which(which) {
    SilenceAv();
    Open();
}

void VideoFile::Open() {
    cli::RequireRegularFile(m_file);
    int result = 0;
    m_input = OpenVideoInput(m_file, result);
    if (result == AVERROR_INVALIDDATA || result == AVERROR(EINVAL))
        Refuse("is no MP4, MOV, MKV or WebM film, or a damaged one");
    if (result < 0) Refuse("cannot be read: " + AvReason(result));
    result = FindStreams(*m_input);
    if (result < 0) Refuse("cannot be read: " + AvReason(result));
    const bool isSound = m_which == Stream::Sound;
    m_stream =
        av_find_best_stream(m_input.get(), isSound ? AVMEDIA_TYPE_AUDIO : AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (m_stream < 0 && isSound) Refuse("has no sound");
    if (m_stream < 0 || (Looked().disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) Refuse("has no moving pictures");
    for (unsigned index = 0; index < m_input->nb_streams; ++index)
        if (index != static_cast<unsigned>(m_stream)) m_input->streams[index]->discard = AVDISCARD_ALL;
}

bool VideoFile::Read(AVPacket& packet) {
    for (;;) {
        av_packet_unref(&packet);
        const int result = av_read_frame(m_input.get(), &packet);
        // The end of the bytes counts as the end of the video only where the container is content with it.
        if (result == AVERROR_EOF && (m_input->pb == nullptr || m_input->pb->error >= 0)) return false;
        if (result < 0) Refuse("breaks off: " + AvReason(result));
        if (packet.stream_index == m_stream) return true;
    }
}

bool VideoFile::Seek(std::int64_t time) {
    return av_seek_frame(m_input.get(), m_stream, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

void VideoFile::Rewind() { Open(); }

const AVStream& VideoFile::Looked() const { return *m_input->streams[m_stream]; }

const AVCodecParameters& VideoFile::Codec() const { return *Looked().codecpar; }

double VideoFile::SecondsPerUnit() const { return av_q2d(Looked().time_base); }

AVRational VideoFile::TimeBase() const { return Looked().time_base; }

double VideoFile::PicturesBegin() const { return PicturesBeginIn(*m_input); }

double VideoFile::DeclaredFramesPerSecond() const {
    const AVRational rate = Looked().avg_frame_rate.num > 0 ? Looked().avg_frame_rate : Looked().r_frame_rate;
    return rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0.0;
}

bool VideoFile::IsCutOff() const { return IsCutOffMatroska(m_file); }

std::int64_t TimeOf(const AVPacket& packet) { return packet.pts == AV_NOPTS_VALUE ? packet.dts : packet.pts; }

}  // namespace kel
