#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "image/image.h"
#include "shared/output_files.h"
#include "shared/picture.h"

namespace chalkpane::tools {

// Picture files as the engine's images and back.
//
// An image made from a picture of w x h pixels has the bounds (0, 0, w - 1, h - 1); the picture's top row is the row
// y = h - 1, so that memory and file run alike. Depths are the engine's: 0 is 8 bits, 1 is 14.
//
// A word of 16 bits becomes 14 bits without its lowest two; 14 bits become 16 with their highest two behind them, so
// that every 14-bit channel comes back from a file, full scale is full scale, and the 14 bits of a byte are what the
// engine itself widens it to. A file of 16 bits read at 8 keeps the high byte.

enum class AlphaForm : std::uint8_t { Straight, Premultiplied };

[[nodiscard]] constexpr std::uint16_t WordOf14(std::uint16_t channel) {
    return static_cast<std::uint16_t>(channel << 2 | channel >> 12);
}
[[nodiscard]] constexpr std::uint16_t ChannelOf16(std::uint16_t word) { return static_cast<std::uint16_t>(word >> 2); }

// depth: none is the picture's own, 8 bits or, for words, 14
[[nodiscard]] std::unique_ptr<Image> ImageOf(const shared::AnyPicture& picture, std::optional<std::int32_t> depth,
                                             AlphaForm form);
// Reads a PNG or a JPEG. Throws shared::Error naming the file and the reason.
[[nodiscard]] std::unique_ptr<Image> ReadImage(const std::filesystem::path& file, std::optional<std::int32_t> depth,
                                               AlphaForm form);

// The picture of a four-channel image in either form, of bytes or, at 14 bits, of words. Alpha is straight. Throws
// shared::Error for an image without pixels or with a side above shared::largestPictureSide.
[[nodiscard]] shared::AnyPicture PictureOf(const Image& image);

// A mask (one channel) from a picture: how light a pixel is, by its luma, times its alpha.
[[nodiscard]] std::unique_ptr<Image> MaskOf(const shared::AnyPicture& picture, std::int32_t depth);

// Turns a four-channel image's pixels into the other form in place, rounding to the nearest. Dividing leaves black
// where alpha is 0, and no colour above full scale. Images that are in the form already stay as they are.
void SetAlphaForm(Image& image, AlphaForm form);

// Writes the picture of an image, whole or not at all, as the name's ending says: PNG at both depths, JPEG at 8 bits.
void WriteImage(const Image& image, const std::filesystem::path& file);
// The same among the outputs of a command.
void StageImage(const Image& image, const std::filesystem::path& file, shared::OutputFiles& outputs);

}  // namespace chalkpane::tools
