#include "picture_io/media_codec.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>
#include <string>

#include "cli/error.h"
#include "picture_io/av_objects.h"
#include "picture_io/library_object.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A library's answer: an error's number below 0.
void Check(int result, const FormatRow& format) {
    if (result >= 0) return;
    if (result == AVERROR(ENOMEM)) throw std::bad_alloc();
    if (result == AVERROR_EOF || result == AVERROR(EAGAIN) || result == AVERROR_INVALIDDATA)
        throw cli::Error(std::string(format.name) + ": ends too early, or is damaged");
    std::array<char, AV_ERROR_MAX_STRING_SIZE> reason{};
    av_strerror(result, reason.data(), reason.size());
    throw cli::Error(std::string(format.name) + ": " + reason.data());
}

AVCodecID DecoderOf(PictureFormat format) {
    switch (format) {
        case PictureFormat::WebP:
            return AV_CODEC_ID_WEBP;
        case PictureFormat::Tiff:
            return AV_CODEC_ID_TIFF;
        case PictureFormat::Bmp:
            return AV_CODEC_ID_BMP;
        case PictureFormat::Pgm:
            return AV_CODEC_ID_PGM;
        case PictureFormat::Pam:
            return AV_CODEC_ID_PAM;
        default:
            return AV_CODEC_ID_PPM;
    }
}

AvFrame DecodedFrame(const Bytes& bytes, const FormatRow& format) {
    const AVCodec* const codec = avcodec_find_decoder(DecoderOf(format.format));
    if (codec == nullptr) throw cli::Error(WithArticle(format) + " cannot be read on this machine");
    const auto context = Taken<FreeAvObject>(avcodec_alloc_context3(codec));
    context->max_pixels = std::int64_t{largestPictureSide} * largestPictureSide;
    // What is damaged is refused; but of a TIFF the decoder would refuse every tag that it has no use for, too.
    context->err_recognition = format.format == PictureFormat::Tiff ? 0 : AV_EF_EXPLODE;
    context->thread_count = 1;
    Check(avcodec_open2(context.get(), codec, nullptr), format);
    const auto packet = Taken<FreeAvObject>(av_packet_alloc());
    if (bytes.size() > INT_MAX - AV_INPUT_BUFFER_PADDING_SIZE) throw cli::Error("is larger than 2 GiB");
    Check(av_new_packet(packet.get(), static_cast<int>(bytes.size())), format);
    std::memcpy(packet->data, bytes.data(), bytes.size());
    auto frame = Taken<FreeAvObject>(av_frame_alloc());
    Check(avcodec_send_packet(context.get(), packet.get()), format);
    Check(avcodec_send_packet(context.get(), nullptr), format);
    Check(avcodec_receive_frame(context.get(), frame.get()), format);
    return frame;
}

// The channels of a frame's pixels, in the file's own steps.
struct Layout {
    const AVPixFmtDescriptor& description;
    bool isGrey;
    bool hasAlpha;
    bool hasWords;
    bool isInverted;  // 0 is white
};

Layout LayoutOf(const AVFrame& frame) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const AVPixFmtDescriptor& description = *av_pix_fmt_desc_get(format);
    const bool isPalette = (description.flags & AV_PIX_FMT_FLAG_PAL) != 0;
    return {description, description.nb_components < 3 && !isPalette,
            isPalette || (description.flags & AV_PIX_FMT_FLAG_ALPHA) != 0, description.comp[0].depth > 8,
            format == AV_PIX_FMT_MONOWHITE};
}

// Full scale becomes full scale: a bit 65535, 10 bits with their highest behind them.
template <typename Word>
Word Scaled(std::uint32_t value, int depth) {
    constexpr std::uint64_t full = static_cast<Word>(~Word{0});
    const std::uint64_t most = (std::uint64_t{1} << depth) - 1;
    return static_cast<Word>((value * full + most / 2) / most);
}

template <typename Word>
BasicPicture<Word> ReadPlanes(const AVFrame& frame, const Layout& layout) {
    BasicPicture<Word> picture(frame.width, frame.height);
    const auto width = static_cast<std::size_t>(frame.width);
    std::vector<std::uint16_t> line(width);
    const std::array<const std::uint8_t*, 4> planes{frame.data[0], frame.data[1], frame.data[2], frame.data[3]};
    const int alpha = layout.description.nb_components - 1;
    for (std::int32_t y = 0; y < frame.height; ++y) {
        Word* const row = picture.rgba.data() + static_cast<std::size_t>(y) * width * 4;
        for (int channel = 0; channel < 4; ++channel) {
            if (channel == 3 && !layout.hasAlpha) {
                for (std::size_t x = 0; x < width; ++x) row[4 * x + 3] = static_cast<Word>(~Word{0});
                continue;
            }
            const int component = channel == 3 ? alpha : layout.isGrey ? 0 : channel;
            const int depth = layout.description.comp[component].depth;
            av_read_image_line2(line.data(), const_cast<const std::uint8_t**>(planes.data()), frame.linesize,
                                &layout.description, 0, y, component, frame.width, 0, 2);
            for (std::size_t x = 0; x < width; ++x) {
                const std::uint32_t most = (std::uint32_t{1} << depth) - 1;
                const std::uint32_t value = layout.isInverted ? most - line[x] : line[x];
                row[4 * x + static_cast<std::size_t>(channel)] = Scaled<Word>(value, depth);
            }
        }
    }
    return picture;
}

// The palette's colours are 32 bits of this machine, alpha highest.
Picture ReadPalette(const AVFrame& frame) {
    Picture picture(frame.width, frame.height);
    for (std::int32_t y = 0; y < frame.height; ++y)
        for (std::int32_t x = 0; x < frame.width; ++x) {
            const std::size_t index = frame.data[0][std::ptrdiff_t{y} * frame.linesize[0] + x];
            std::uint32_t colour = 0;
            std::memcpy(&colour, frame.data[1] + 4 * index, 4);
            picture.Set(x, y,
                        {static_cast<std::uint8_t>(colour >> 16U), static_cast<std::uint8_t>(colour >> 8U),
                         static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 24U)});
        }
    return picture;
}

// Light and colour apart, as a lossy WebP has them.
Picture ReadConverted(const AVFrame& frame) {
    Picture picture(frame.width, frame.height);
    const auto context = Taken<FreeAvObject>(sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width, frame.height, AV_PIX_FMT_RGBA,
        SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP, nullptr, nullptr, nullptr));
    const std::array<std::uint8_t*, 4> planes{picture.rgba.data(), nullptr, nullptr, nullptr};
    const std::array<int, 4> strides{frame.width * 4, 0, 0, 0};
    sws_scale(context.get(), frame.data, frame.linesize, 0, frame.height, planes.data(), strides.data());
    return picture;
}

AVPixelFormat PixelFormatOf(Channels channels, bool hasWords, PictureFormat format) {
    const bool isTiff = format == PictureFormat::Tiff;
    if (format == PictureFormat::WebP) return AV_PIX_FMT_RGB32;
    if (format == PictureFormat::Bmp) return AV_PIX_FMT_BGR24;
    switch (channels) {
        case Channels::Grey:
            return hasWords ? (isTiff ? AV_PIX_FMT_GRAY16LE : AV_PIX_FMT_GRAY16BE) : AV_PIX_FMT_GRAY8;
        case Channels::GreyAlpha:
        case Channels::RGBA:
            return hasWords ? (isTiff ? AV_PIX_FMT_RGBA64LE : AV_PIX_FMT_RGBA64BE) : AV_PIX_FMT_RGBA;
        case Channels::RGB:
            return hasWords ? (isTiff ? AV_PIX_FMT_RGB48LE : AV_PIX_FMT_RGB48BE) : AV_PIX_FMT_RGB24;
    }
    return AV_PIX_FMT_RGBA;
}

template <typename Word>
void FillFrame(AVFrame& frame, const BasicPicture<Word>& picture) {
    const AVPixFmtDescriptor& description = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const auto width = static_cast<std::size_t>(picture.width);
    std::vector<std::uint16_t> line(width);
    // The library adds its bits to those that are there.
    std::memset(frame.data[0], 0, static_cast<std::size_t>(frame.linesize[0]) * static_cast<std::size_t>(frame.height));
    for (std::int32_t y = 0; y < picture.height; ++y) {
        const Word* const row = picture.rgba.data() + static_cast<std::size_t>(y) * width * 4;
        for (int component = 0; component < description.nb_components; ++component) {
            for (std::size_t x = 0; x < width; ++x) line[x] = row[4 * x + static_cast<std::size_t>(component)];
            av_write_image_line2(line.data(), frame.data, frame.linesize, &description, 0, y, component, picture.width,
                                 2);
        }
    }
}

const AVCodec* EncoderOf(PictureFormat format, Channels channels) {
    if (format == PictureFormat::WebP) return avcodec_find_encoder_by_name("libwebp");
    if (format == PictureFormat::Pnm && channels == Channels::Grey) return avcodec_find_encoder(AV_CODEC_ID_PGM);
    return avcodec_find_encoder(DecoderOf(format));
}

}  // namespace

AnyPicture DecodeMedia(const Bytes& bytes, const FormatRow& format, bool wantsWords, PictureInfo& info) {
    av_log_set_level(AV_LOG_QUIET);
    const auto frame = DecodedFrame(bytes, format);
    const Layout layout = LayoutOf(*frame);
    info.isGrey = layout.isGrey;
    info.hasAlpha = layout.hasAlpha;
    if ((layout.description.flags & AV_PIX_FMT_FLAG_PAL) != 0) return ReadPalette(*frame);
    if (!layout.isGrey && (layout.description.flags & AV_PIX_FMT_FLAG_RGB) == 0) return ReadConverted(*frame);
    if (layout.hasWords && wantsWords) return ReadPlanes<std::uint16_t>(*frame, layout);
    return ReadPlanes<std::uint8_t>(*frame, layout);
}

Bytes EncodeMedia(const AnyPicture& picture, const FormatRow& format, const WriteOptions& options, Channels channels) {
    av_log_set_level(AV_LOG_QUIET);
    const AVCodec* const codec = EncoderOf(format.format, channels);
    if (codec == nullptr) throw cli::Error(WithArticle(format) + " cannot be written on this machine");
    const auto context = Taken<FreeAvObject>(avcodec_alloc_context3(codec));
    const auto frame = Taken<FreeAvObject>(av_frame_alloc());
    std::visit([&](const auto& any) { frame->width = any.width, frame->height = any.height; }, picture);
    frame->format = PixelFormatOf(channels, std::holds_alternative<Picture16>(picture), format.format);
    Check(av_frame_get_buffer(frame.get(), 0), format);
    std::visit([&](const auto& any) { FillFrame(*frame, any); }, picture);
    context->width = frame->width;
    context->height = frame->height;
    context->pix_fmt = static_cast<AVPixelFormat>(frame->format);
    context->time_base = {1, 25};
    if (format.format == PictureFormat::Tiff)
        Check(av_opt_set(context->priv_data, "compression_algo", "deflate", 0), format);
    if (format.format == PictureFormat::WebP) {
        Check(av_opt_set_int(context->priv_data, "lossless", options.quality == 100 ? 1 : 0, 0), format);
        Check(av_opt_set_double(context->priv_data, "quality", options.quality, 0), format);
    }
    Check(avcodec_open2(context.get(), codec, nullptr), format);
    const auto packet = Taken<FreeAvObject>(av_packet_alloc());
    Check(avcodec_send_frame(context.get(), frame.get()), format);
    Check(avcodec_send_frame(context.get(), nullptr), format);
    Check(avcodec_receive_packet(context.get(), packet.get()), format);
    return {packet->data, packet->data + packet->size};
}

}  // namespace picture_io
