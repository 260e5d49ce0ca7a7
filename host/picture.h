#pragma once

#include "shared/picture.h"

namespace kel {

using shared::DividedByAlpha;
using shared::Flipped;
using shared::IsPictureName;
using shared::largestPictureSide;
using shared::Picture;
using shared::ReadPicture;
using shared::WritePicture;

}  // namespace kel
