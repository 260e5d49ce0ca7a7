#pragma once

#include "kel/video/av_objects.h"
#include "picture_io/picture.h"

namespace kel {

// Puts pictures into the frames that an encoder takes.
//
// Formats of red, green and blue get the same bytes in another order. YUV420P is made with the matrix of ColourSpaceOf
// and the narrow range of video; a picture of odd sides has its last column or row repeated.
class PicturePacker {
public:
    // The frame is at least as large as the picture, by one pixel each way at most.
    void Pack(const picture_io::Picture& picture, AVFrame& frame);

private:
    void PackYuv(const picture_io::Picture& picture, AVFrame& frame);

    AvScaler m_scaler;
};

}  // namespace kel
