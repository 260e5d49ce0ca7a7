#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace picture_io {

enum class PictureFormat : std::uint8_t { Png, Jpeg, WebP, Tiff, Bmp, Pnm, Pgm, Pam, Gif, Avif, Heic };

// What the programs know of a kind of picture files. The table below is all there is to it: names, messages and
// docs/pictures.md follow it.
struct FormatRow {
    PictureFormat format;
    std::string_view name;
    std::vector<std::string_view> endings;
    bool hasWords;  // 16 bits a channel are written
    bool hasAlpha;  // is written, in all its steps
    bool hasColour = true;
    bool hasClear = false;  // a pixel may be clear, but not in part
    bool isExact = true;    // at the highest quality at least, the pixels come back
};
[[nodiscard]] std::span<const FormatRow> PictureFormats();
[[nodiscard]] const FormatRow& RowOf(PictureFormat format);
[[nodiscard]] std::string WithArticle(const FormatRow& format);  // "a PNG", "an AVIF"

// By the ending of a name, in upper or lower case; null for others.
[[nodiscard]] const FormatRow* FormatOfName(const std::filesystem::path& file);
// By how a file begins; null where that is no picture.
[[nodiscard]] const FormatRow* FormatOfBytes(std::span<const std::uint8_t> bytes);

// "pictures end in .png, .jpg or .jpeg".
[[nodiscard]] const std::string& EndingsRule();
// "a BMP has 8 bits a channel; 16 bits need a name in .png or .tif", of a format without words.
[[nodiscard]] std::string WordsRefusal(const FormatRow& format);

}  // namespace picture_io
