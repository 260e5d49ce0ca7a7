#include "picture_io/png_codec.h"

#include <png.h>

#include <algorithm>

#include "picture_io/png_header.h"

namespace picture_io {
namespace {

// libpng's simplified interface, freed on every way out.
struct PngImage : png_image {
    PngImage() : png_image{} {
        version = PNG_IMAGE_VERSION;
        format = PNG_FORMAT_RGBA;
    }
    ~PngImage() { png_image_free(this); }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
    PngImage(PngImage&&) = delete;
    PngImage& operator=(PngImage&&) = delete;

    [[noreturn]] void Refuse() const { RefusePng(message); }
};

}  // namespace

Picture DecodePng(const std::vector<std::uint8_t>& bytes) {
    RefuseTruncatedPng(bytes);
    PngImage image;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) image.Refuse();
    image.format = PNG_FORMAT_RGBA;
    constexpr png_uint_32 tooLarge = largestPictureSide + 1;
    Picture picture(static_cast<std::int32_t>(std::min(image.width, tooLarge)),
                    static_cast<std::int32_t>(std::min(image.height, tooLarge)));
    if (png_image_finish_read(&image, nullptr, picture.rgba.data(), 0, nullptr) == 0) image.Refuse();
    return picture;
}

}  // namespace picture_io
