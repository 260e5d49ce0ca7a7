#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace picture_io {

enum class PictureFormat : std::uint8_t { Png, Jpeg, WebP, Tiff, Bmp, Pnm, Pgm, Pam, Gif };

// What the programs know of a kind of picture files. The table below is all there is to it: names, messages and
// docs/pictures.md follow it.
struct FormatRow {
    PictureFormat format;
    std::string_view name;  // in messages, behind "a"
    std::vector<std::string_view> endings;
    bool isWritten;
    bool hasWords;  // 16 bits a channel are written
    bool hasAlpha;  // is written
    bool hasColour = true;
};
[[nodiscard]] std::span<const FormatRow> PictureFormats();
[[nodiscard]] const FormatRow& RowOf(PictureFormat format);

// By the ending of a name, in upper or lower case; null for others.
[[nodiscard]] const FormatRow* FormatOfName(const std::filesystem::path& file);
// By how a file begins; null where that is no picture.
[[nodiscard]] const FormatRow* FormatOfBytes(std::span<const std::uint8_t> bytes);

// "pictures end in .png, .jpg or .jpeg": those that are written.
[[nodiscard]] const std::string& EndingsRule();

}  // namespace picture_io
