#pragma once

#include "kel/video/av_objects.h"
#include "kel/video/video_conversion.h"
#include "picture_io/picture.h"

namespace kel {

// Makes pictures of decoded frames.
//
// Colours are taken as the video declares them: matrix and range. Where it declares none, the matrix is the usual one
// of the size (colour_matrix.h), and the range is the narrow one of video, except that grey alone is full. Alpha stays
// as it is; frames without it are opaque.
class PictureConverter {
public:
    // width, height: of the pictures; frames of another size are scaled. Throws Error with the reason alone.
    [[nodiscard]] picture_io::Picture Convert(const AVFrame& frame, std::int32_t width, std::int32_t height);

    // The same into a picture of that size.
    void ConvertInto(const AVFrame& frame, RowOrder order, picture_io::Picture& picture);

    // The same as large as it fits with the frame's own proportions, in the middle, and black around it.
    void FitInto(const AVFrame& frame, RowOrder order, picture_io::Picture& picture);

    void SetConversion(VideoConversion conversion) { m_conversion = conversion; }

private:
    void Prepare(const AVFrame& frame, std::int32_t width, std::int32_t height);
    void Scale(const AVFrame& frame, std::uint8_t* rows, int stride, std::int32_t height);
    void RequireRoom(std::int32_t width, std::int32_t height);

    VideoConversion m_conversion = VideoConversion::Exact;
    AvScaler m_scaler;
    AvFrame m_rgba;  // null: none was needed yet
};

}  // namespace kel
