#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <vector>

#include "picture_io/picture.h"
#include "picture_io/picture_format.h"
#include "picture_io/picture_info.h"

namespace picture_io {

// A picture with all that its file says besides.
struct PictureFile {
    AnyPicture picture;  // upright
    PictureInfo info;    // which says so too
};

// Reads a picture, whatever the file is called. Words stay words. Throws Error naming the file and the reason.
[[nodiscard]] PictureFile ReadPictureFile(const std::filesystem::path& file);

// The bytes of a picture file. What the format cannot hold of the information is left out, alpha too. Throws Error with
// the reason alone, also for a depth that the format has not.
[[nodiscard]] std::vector<std::uint8_t> EncodePictureFile(const AnyPicture& picture, const FormatRow& format,
                                                          const WriteOptions& options);

// Throws Error with the reason alone where the format has not the depth.
void RequireFitting(const FormatRow& format, bool hasWords);
// A profile is made for grey or for colours, and read wrongly for the other.
[[nodiscard]] bool FitsProfile(const std::vector<std::uint8_t>& profile, bool isGrey);

// True: some pixel is not opaque.
[[nodiscard]] bool ShowsThrough(const AnyPicture& picture);
// True: some pixel is neither opaque nor clear.
[[nodiscard]] bool ShowsInPart(const AnyPicture& picture);

// The picture over one colour, red, green and blue as bytes: opaque, but that clear pixels may stay so. Rounds to the
// nearest.
enum class ClearPixels : std::uint8_t { Covered, Kept };
[[nodiscard]] AnyPicture OverColour(AnyPicture picture, const std::array<std::uint8_t, 3>& colour,
                                    ClearPixels clear = ClearPixels::Covered);

}  // namespace picture_io
