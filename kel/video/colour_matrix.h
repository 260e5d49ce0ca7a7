#pragma once

#include "kel/video/av_objects.h"

namespace kel {

// The matrix of videos that declare none: BT.601 for standard definition, which is up to 576 rows and 1024 columns, and
// BT.709 for anything larger.
[[nodiscard]] constexpr AVColorSpace UsualMatrix(int width, int height) {
    return height > 576 || width > 1024 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
}

// How the scaler names a matrix; that of the usual one for this size where it knows none.
[[nodiscard]] constexpr int ScalerMatrix(AVColorSpace matrix, int width, int height) {
    switch (matrix) {
        case AVCOL_SPC_BT709:
            return SWS_CS_ITU709;
        case AVCOL_SPC_FCC:
            return SWS_CS_FCC;
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
            return SWS_CS_ITU601;
        case AVCOL_SPC_SMPTE240M:
            return SWS_CS_SMPTE240M;
        case AVCOL_SPC_BT2020_NCL:
        case AVCOL_SPC_BT2020_CL:
            return SWS_CS_BT2020;
        default:
            return UsualMatrix(width, height) == AVCOL_SPC_BT709 ? SWS_CS_ITU709 : SWS_CS_ITU601;
    }
}

// True: a matrix that pictures can be made with and that a file may then say.
[[nodiscard]] constexpr bool IsYuvMatrix(AVColorSpace matrix) {
    switch (matrix) {
        case AVCOL_SPC_BT709:
        case AVCOL_SPC_FCC:
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
        case AVCOL_SPC_SMPTE240M:
        case AVCOL_SPC_BT2020_NCL:
            return true;
        default:
            return false;
    }
}

// Exact rounding, the same on every processor, and colour for every pixel of its own rather than for pairs.
constexpr int scalerFlags = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_BITEXACT;
constexpr int scalerOne = 1 << 16;  // of contrast and saturation

}  // namespace kel
