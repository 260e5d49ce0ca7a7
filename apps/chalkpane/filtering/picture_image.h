#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "chalkpane/image/image.h"
#include "picture_io/picture.h"

namespace chalkpane::app {

// Picture files as the engine's images and back.
//
// An image made from a picture of w x h pixels has the bounds (0, 0, w - 1, h - 1); the picture's top row is the row
// y = h - 1, so that memory and file run alike.
//
// A word of 16 bits becomes 14 bits without its lowest two; 14 bits become 16 with their highest two behind them, so
// that every 14-bit channel comes back from a file, full scale is full scale, and the 14 bits of a byte are what the
// engine itself widens it to. A file of 16 bits read at 8 keeps the high byte.

[[nodiscard]] constexpr std::uint16_t WordOf14(std::uint16_t channel) {
    return static_cast<std::uint16_t>(channel << 2 | channel >> 12);
}
[[nodiscard]] constexpr std::uint16_t ChannelOf16(std::uint16_t word) { return static_cast<std::uint16_t>(word >> 2); }

constexpr Depth DepthOfBits(std::int64_t bits) { return bits == 8 ? Depth::Eight : Depth::Fourteen; }

// depth: none is the picture's own, 8 bits or, for words, 14
[[nodiscard]] std::unique_ptr<Image> ImageOf(const picture_io::AnyPicture& picture, std::optional<Depth> depth,
                                             AlphaForm form);
// Puts rows of a picture as wide as the image into it, the first one into row topY, straight alpha and all.
void FillRows(Image& image, const picture_io::AnyPicture& rows, std::int32_t topY);

// Throws cli::Error beginning with `name` for a picture of 2 GiB, which the engine has no image for.
void RequireImageSize(std::int32_t width, std::int32_t height, Depth depth, const std::string& name);

// Reads a picture file; "-" is standard input. Throws cli::Error naming the file and the reason.
[[nodiscard]] std::unique_ptr<Image> ReadImage(const std::filesystem::path& file, std::optional<Depth> depth,
                                               AlphaForm form);

// The picture of a four-channel image in either form, of bytes or, at 14 bits, of words. Alpha is straight. Throws
// cli::Error for an image without pixels or with a side above picture_io::largestPictureSide.
[[nodiscard]] picture_io::AnyPicture PictureOf(const Image& image);

// A mask (one channel) from a picture: how light a pixel is, by its luma, times its alpha.
[[nodiscard]] std::unique_ptr<Image> MaskOf(const picture_io::AnyPicture& picture, Depth depth);

// Turns a four-channel image's pixels into the other form in place, rounding to the nearest. Dividing leaves black
// where alpha is 0, and no colour above full scale. Images that are in the form already stay as they are.
void SetAlphaForm(Image& image, AlphaForm form);

// Writes the picture of an image, whole or not at all, as the name's ending says.
void WriteImage(const Image& image, const std::filesystem::path& file);
// Throws std::bad_alloc when the engine has left anything out for lack of memory: a picture with gaps is no result.
void RequireNoLoss();

}  // namespace chalkpane::app
