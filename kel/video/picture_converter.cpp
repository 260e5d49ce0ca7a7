#include "kel/video/picture_converter.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
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
}

void PictureConverter::RequireRoom(std::int32_t width, std::int32_t height) {
    if (m_rgba && m_rgba->width == width && m_rgba->height == height) return;
    m_rgba = NewFrame();
    m_rgba->format = AV_PIX_FMT_RGBA;
    m_rgba->width = width;
    m_rgba->height = height;
    if (av_frame_get_buffer(m_rgba.get(), 0) < 0) throw std::bad_alloc();
}

void PictureConverter::Scale(const AVFrame& frame, std::uint8_t* rows, int stride, std::int32_t height) {
    const std::array<std::uint8_t*, 4> planes{rows};
    const std::array<int, 4> strides{stride};
    const int made = sws_scale(m_scaler.get(), static_cast<const std::uint8_t* const*>(frame.data), frame.linesize, 0,
                               frame.height, planes.data(), strides.data());
    if (made != height) throw cli::Error("has pixels that cannot be converted");
}

void PictureConverter::ConvertInto(const AVFrame& frame, RowOrder order, picture_io::Picture& picture) {
    constexpr std::int32_t writtenAtOnce = 32;  // pixels, at most, and a power of 2
    const std::int32_t width = picture.width;
    const std::int32_t height = picture.height;
    Prepare(frame, width, height);
    const std::ptrdiff_t rowBytes = std::ptrdiff_t{width} * 4;
    std::uint8_t* const first = picture.rgba.data() + (order == RowOrder::Down ? 0 : (height - 1) * rowBytes);
    const std::ptrdiff_t stride = order == RowOrder::Down ? rowBytes : -rowBytes;
    // The scaler may write a little beyond the end of a row: then it gets a frame with room for that.
    if (width % writtenAtOnce == 0 && frame.width == width && frame.height == height)
        return Scale(frame, first, static_cast<int>(stride), height);
    RequireRoom(width, height);
    Scale(frame, m_rgba->data[0], m_rgba->linesize[0], height);
    for (std::ptrdiff_t row = 0; row < height; ++row)
        std::copy_n(m_rgba->data[0] + row * m_rgba->linesize[0], rowBytes, first + row * stride);
}

void PictureConverter::FitInto(const AVFrame& frame, RowOrder order, picture_io::Picture& picture) {
    if (frame.width == picture.width && frame.height == picture.height) return ConvertInto(frame, order, picture);
    const double scale =
        std::min(static_cast<double>(picture.width) / frame.width, static_cast<double>(picture.height) / frame.height);
    const auto side = [scale](int length, std::int32_t most) {
        return std::clamp(static_cast<std::int32_t>(length * scale + 0.5), 1, most);
    };
    picture_io::Picture fitted(side(frame.width, picture.width), side(frame.height, picture.height));
    ConvertInto(frame, order, fitted);
    for (std::size_t i = 0; i < picture.rgba.size(); ++i) picture.rgba[i] = i % 4 == 3 ? 255 : 0;
    const std::ptrdiff_t left = (picture.width - fitted.width) / 2;
    const std::ptrdiff_t before = (picture.height - fitted.height) / 2;
    for (std::ptrdiff_t row = 0; row < fitted.height; ++row)
        std::copy_n(fitted.rgba.begin() + row * fitted.width * 4, fitted.width * 4,
                    picture.rgba.begin() + ((before + row) * picture.width + left) * 4);
}

picture_io::Picture PictureConverter::Convert(const AVFrame& frame, std::int32_t width, std::int32_t height) {
    picture_io::Picture picture(width, height);
    ConvertInto(frame, RowOrder::Down, picture);
    return picture;
}

}  // namespace kel
