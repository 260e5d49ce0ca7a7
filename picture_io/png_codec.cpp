#include "picture_io/png_codec.h"

#include <png.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "cli/error.h"
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

    [[noreturn]] void Refuse() const {
        const std::string_view reason = message;
        if (reason.find("ut of memory") != reason.npos || reason.find("nsufficient memory") != reason.npos)
            throw std::bad_alloc();
        throw cli::Error("PNG: " + std::string(reason));
    }
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

std::vector<std::uint8_t> EncodePng(const Picture& picture, Channels channels) {
    constexpr std::array<png_uint_32, 4> formats{PNG_FORMAT_GRAY, PNG_FORMAT_GA, PNG_FORMAT_RGB, PNG_FORMAT_RGBA};
    PngImage image;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = formats[static_cast<std::size_t>(channels)];
    std::vector<std::uint8_t> packed;
    if (channels != Channels::RGBA) packed = PackedWords(picture, channels);
    const std::uint8_t* const pixels = packed.empty() ? picture.rgba.data() : packed.data();
    // The library does not say how long the file will be before it has packed it: it gets room for the worst, which is
    // not touched where it is not needed.
    std::size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> room(static_cast<std::uint8_t*>(std::malloc(size)),
                                                                   std::free);
    if (!room) throw std::bad_alloc();
    if (png_image_write_to_memory(&image, room.get(), &size, 0, pixels, 0, nullptr) == 0) image.Refuse();
    return {room.get(), room.get() + size};
}

}  // namespace picture_io
