#pragma once

#include <cstdint>

namespace chalkpane {

// Four bytes a pixel, alpha last, from a host picture in one of the GL formats alpha, rgb and rgba.
//
//   data  width * height pixels without gaps, the host's; rgba comes back as it is
//
// Null for any other format, for null data, and for a size without pixels or beyond 2 GiB. Converted pixels stand in
// one buffer of the thread, which all its instances share and which only grows: they hold until the next conversion.
// Throws std::bad_alloc.
[[nodiscard]] const std::uint8_t* ConvertImageToRgba(std::int32_t format, std::int32_t width, std::int32_t height,
                                                     const std::uint8_t* data);

}  // namespace chalkpane
