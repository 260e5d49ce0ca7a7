#include "kel/video/picture_packer.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
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

// Where byte `index` of four in memory stands in a word, in bits.
constexpr unsigned ShiftOf(int index) {
    return 8U * static_cast<unsigned>(std::endian::native == std::endian::little ? index : 3 - index);
}

// Four bytes a pixel become four others, those of the channels that the format has; a byte that stands for none is 0.
void ReorderWords(const picture_io::Picture& picture, AVFrame& frame, const AVPixFmtDescriptor& format) {
    std::array<unsigned, 4> shifts{};
    std::array<std::uint32_t, 4> masks{};
    for (int channel = 0; channel < format.nb_components; ++channel) {
        shifts[static_cast<std::size_t>(channel)] = ShiftOf(format.comp[channel].offset);
        masks[static_cast<std::size_t>(channel)] = 0xFF;
    }
    const auto rowBytes = static_cast<std::size_t>(picture.width) * 4;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        const std::uint8_t* from = picture.rgba.data() + static_cast<std::size_t>(y) * rowBytes;
        std::uint8_t* to = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
        for (std::size_t byte = 0; byte < rowBytes; byte += 4) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, from + byte, 4);
            const std::uint32_t word =
                ((pixel >> ShiftOf(0)) & masks[0]) << shifts[0] | ((pixel >> ShiftOf(1)) & masks[1]) << shifts[1] |
                ((pixel >> ShiftOf(2)) & masks[2]) << shifts[2] | ((pixel >> ShiftOf(3)) & masks[3]) << shifts[3];
            std::memcpy(to + byte, &word, 4);
        }
    }
}

void ReorderBytes(const picture_io::Picture& picture, AVFrame& frame, const AVPixFmtDescriptor& format) {
    const std::array<int, 3> offsets{format.comp[0].offset, format.comp[1].offset, format.comp[2].offset};
    const int step = format.comp[0].step;
    const std::uint8_t* from = picture.rgba.data();
    for (std::int32_t y = 0; y < picture.height; ++y) {
        std::uint8_t* to = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
        for (std::int32_t x = 0; x < picture.width; ++x, from += 4, to += step)
            for (std::size_t channel = 0; channel < 3; ++channel) to[offsets[channel]] = from[channel];
    }
}

}  // namespace

void PicturePacker::Pack(const picture_io::Picture& picture, AVFrame& frame) {
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const bool isRgb = (format.flags & AV_PIX_FMT_FLAG_RGB) != 0;
    if (isRgb && format.comp[0].step == 4)
        ReorderWords(picture, frame, format);
    else if (isRgb)
        ReorderBytes(picture, frame, format);
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
