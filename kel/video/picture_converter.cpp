#include "kel/video/picture_converter.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <new>

#include "cli/error.h"
#include "kel/video/colour_matrix.h"

namespace kel {
namespace {

// Old formats carry their full range in their name.
AVPixelFormat WithoutRange(AVPixelFormat format) {
    switch (format) {
        case AV_PIX_FMT_YUVJ420P:
            return AV_PIX_FMT_YUV420P;
        case AV_PIX_FMT_YUVJ422P:
            return AV_PIX_FMT_YUV422P;
        case AV_PIX_FMT_YUVJ444P:
            return AV_PIX_FMT_YUV444P;
        case AV_PIX_FMT_YUVJ440P:
            return AV_PIX_FMT_YUV440P;
        case AV_PIX_FMT_YUVJ411P:
            return AV_PIX_FMT_YUV411P;
        default:
            return format;
    }
}

bool HasFullRange(const AVFrame& frame) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    if (WithoutRange(format) != format) return true;
    if (frame.color_range != AVCOL_RANGE_UNSPECIFIED) return frame.color_range == AVCOL_RANGE_JPEG;
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
    return description != nullptr && description->nb_components < 3;  // grey, with or without alpha
}

}  // namespace

void PictureConverter::Prepare(const AVFrame& frame, std::int32_t width, std::int32_t height) {
    const AVPixelFormat format = WithoutRange(static_cast<AVPixelFormat>(frame.format));
    const int flags = m_conversion == VideoConversion::Exact ? scalerFlags : SWS_FAST_BILINEAR;
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), frame.width, frame.height, format, width, height,
                                        AV_PIX_FMT_RGBA, flags, nullptr, nullptr, nullptr));
    if (!m_scaler) throw cli::Error("has pixels of a kind that cannot be shown");
    const int matrix = ScalerMatrix(frame.colorspace, frame.width, frame.height);
    sws_setColorspaceDetails(m_scaler.get(), sws_getCoefficients(matrix), HasFullRange(frame) ? 1 : 0,
                             sws_getCoefficients(SWS_CS_DEFAULT), 1, 0, scalerOne, scalerOne);
    if (m_rgba && m_rgba->width == width && m_rgba->height == height) return;
    m_rgba = NewFrame();
    m_rgba->format = AV_PIX_FMT_RGBA;
    m_rgba->width = width;
    m_rgba->height = height;
    if (av_frame_get_buffer(m_rgba.get(), 0) < 0) throw std::bad_alloc();
}

picture_io::Picture PictureConverter::Convert(const AVFrame& frame, std::int32_t width, std::int32_t height) {
    picture_io::Picture picture(width, height);
    Prepare(frame, width, height);
    // The scaler may write a little beyond the end of a row, so it gets a frame with room for that.
    const int rows = sws_scale(m_scaler.get(), static_cast<const std::uint8_t* const*>(frame.data), frame.linesize, 0,
                               frame.height, m_rgba->data, m_rgba->linesize);
    if (rows != height) throw cli::Error("has pixels that cannot be converted");
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{width} * 4;
    for (std::ptrdiff_t row = 0; row < height; ++row)
        std::copy_n(m_rgba->data[0] + row * m_rgba->linesize[0], rowBytes, picture.rgba.begin() + row * rowBytes);
    return picture;
}

}  // namespace kel
