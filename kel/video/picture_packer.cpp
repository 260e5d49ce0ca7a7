#include "kel/video/picture_packer.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <new>

#include "kel/video/colour_matrix.h"

namespace kel {
namespace {

// The picture with its last column and row repeated up to this size.
picture_io::Picture Padded(const picture_io::Picture& picture, std::int32_t width, std::int32_t height) {
    picture_io::Picture padded(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            padded.Set(x, y, picture.At(std::min(x, picture.width - 1), std::min(y, picture.height - 1)));
    return padded;
}

void Reorder(const picture_io::Picture& picture, AVFrame& frame, const AVPixFmtDescriptor& format) {
    const std::uint8_t* from = picture.rgba.data();
    for (std::int32_t y = 0; y < picture.height; ++y) {
        std::uint8_t* to = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
        for (std::int32_t x = 0; x < picture.width; ++x, from += 4, to += format.comp[0].step)
            for (int channel = 0; channel < format.nb_components; ++channel)
                to[format.comp[channel].offset] = from[channel];
    }
}

}  // namespace

void PicturePacker::Pack(const picture_io::Picture& picture, AVFrame& frame) {
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    if ((format.flags & AV_PIX_FMT_FLAG_RGB) != 0)
        Reorder(picture, frame, format);
    else if (picture.width == frame.width && picture.height == frame.height)
        PackYuv(picture, frame);
    else
        PackYuv(Padded(picture, frame.width, frame.height), frame);
}

void PicturePacker::PackYuv(const picture_io::Picture& picture, AVFrame& frame) {
    m_scaler.reset(sws_getCachedContext(m_scaler.release(), frame.width, frame.height, AV_PIX_FMT_RGBA, frame.width,
                                        frame.height, static_cast<AVPixelFormat>(frame.format), scalerFlags, nullptr,
                                        nullptr, nullptr));
    if (!m_scaler) throw std::bad_alloc();
    const int matrix = ScalerMatrix(frame.colorspace, frame.width, frame.height);
    sws_setColorspaceDetails(m_scaler.get(), sws_getCoefficients(SWS_CS_DEFAULT), 1, sws_getCoefficients(matrix), 0, 0,
                             scalerOne, scalerOne);
    const std::array<const std::uint8_t*, 1> rows{picture.rgba.data()};
    const std::array<int, 1> rowBytes{picture.width * 4};
    sws_scale(m_scaler.get(), rows.data(), rowBytes.data(), 0, picture.height, frame.data, frame.linesize);
}

}  // namespace kel
