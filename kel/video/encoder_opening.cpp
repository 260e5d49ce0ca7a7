#include "kel/video/encoder_opening.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <string>

#include "cli/error.h"
#include "kel/video/colour_matrix.h"
#include "kel/video/video_file.h"

namespace kel {
namespace {

// 29.97 and its like stand for a thousandth less than a whole number.
AVRational RateOf(double framesPerSecond) {
    constexpr double nearness = 0.001;
    constexpr int finest = 100000;
    const double whole = std::round(framesPerSecond * 1.001);
    if (std::abs(framesPerSecond - whole) > nearness && std::abs(framesPerSecond * 1.001 - whole) < nearness)
        return {static_cast<int>(whole) * 1000, 1001};
    return av_d2q(framesPerSecond, finest);
}

// Two by two pixels share one colour in YUV420P.
std::int32_t SideFor(AVPixelFormat format, std::int32_t side) {
    return format == AV_PIX_FMT_YUV420P ? side + side % 2 : side;
}

// FFV1 cuts pictures into parts that are coded side by side; a part of no pixels would come back as nonsense.
int SlicesFor(std::int32_t width, std::int32_t height) {
    constexpr std::int32_t large = 16;
    return std::min(width, height) < large ? 1 : 4;
}

// Those of the source as far as it says them; pictures are then made with its matrix.
void TagColours(AVCodecContext& codec, const std::filesystem::path& sourceFile) {
    const bool isHigh = UsualMatrix(codec.width, codec.height) == AVCOL_SPC_BT709;
    codec.colorspace = isHigh ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    codec.color_primaries = isHigh ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    codec.color_trc = isHigh ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    codec.color_range = AVCOL_RANGE_MPEG;
    if (sourceFile.empty()) return;
    const VideoFile source(sourceFile);
    const AVCodecParameters& tags = source.Codec();
    if (IsYuvMatrix(tags.color_space)) codec.colorspace = tags.color_space;
    if (tags.color_primaries != AVCOL_PRI_UNSPECIFIED) codec.color_primaries = tags.color_primaries;
    if (tags.color_trc != AVCOL_TRC_UNSPECIFIED) codec.color_trc = tags.color_trc;
}

void RequireOpened(int result, const std::filesystem::path& name) {
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result < 0) throw cli::Error(name.string(), {}, "cannot be written: " + AvReason(result));
}

AvFrame FrameFor(const AVCodecContext& codec) {
    AvFrame frame = NewFrame();
    frame->format = codec.pix_fmt;
    frame->width = codec.width;
    frame->height = codec.height;
    frame->colorspace = codec.colorspace;
    frame->color_range = codec.color_range;
    if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
    return frame;
}

}  // namespace

OpenedEncoder OpenEncoder(const std::filesystem::path& name, const VideoCodec& wanted, const VideoSettings& settings,
                          HeaderPlace header) {
    const AVCodec* encoder = avcodec_find_encoder_by_name(wanted.encoder);
    if (encoder == nullptr)
        throw cli::Error(name.string(), {}, "cannot be written: there is no encoder " + std::string(wanted.encoder));
    AvCodec codec(avcodec_alloc_context3(encoder));
    if (!codec) throw std::bad_alloc();
    codec->pix_fmt = settings.alpha ? wanted.withAlpha : wanted.opaque;
    codec->width = SideFor(codec->pix_fmt, settings.width);
    codec->height = SideFor(codec->pix_fmt, settings.height);
    codec->framerate = RateOf(settings.framesPerSecond);
    codec->time_base = av_inv_q(codec->framerate);
    codec->gop_size = wanted.keyEvery;
    if (encoder->id == AV_CODEC_ID_FFV1) codec->slices = SlicesFor(codec->width, codec->height);
    codec->flags |= AV_CODEC_FLAG_BITEXACT;
    if (codec->pix_fmt == AV_PIX_FMT_YUV420P) TagColours(*codec, settings.source);
    if (header == HeaderPlace::Container) codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    for (const CodecOption& option : wanted.options)
        if (option.name != nullptr)
            RequireOpened(av_opt_set(codec.get(), option.name, option.value, AV_OPT_SEARCH_CHILDREN), name);
    RequireOpened(avcodec_open2(codec.get(), encoder, nullptr), name);
    AvFrame frame = FrameFor(*codec);
    return {std::move(codec), std::move(frame)};
}

}  // namespace kel
