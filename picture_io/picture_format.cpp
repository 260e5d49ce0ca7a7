#include "picture_io/picture_format.h"

#include <algorithm>
#include <array>

#include "cli/file_ending.h"
#include "cli/word_list.h"

namespace picture_io {
namespace {

struct Start {
    PictureFormat format;
    std::string_view bytes;  // a question mark is any byte
};

using namespace std::string_view_literals;

constexpr std::array starts{
    Start{PictureFormat::Png, "\x89PNG\r\n\x1A\n"sv},
    Start{PictureFormat::Jpeg, "\xFF\xD8\xFF"sv},
    Start{PictureFormat::WebP, "RIFF????WEBP"sv},
    Start{PictureFormat::Tiff, "II*\0"sv},
    Start{PictureFormat::Tiff, "MM\0*"sv},
    Start{PictureFormat::Gif, "GIF8"sv},
    Start{PictureFormat::Bmp, "BM????\0\0\0\0"sv},
    Start{PictureFormat::Avif, "????ftypavi"sv},
    Start{PictureFormat::Heic, "????ftyphe"sv},
    Start{PictureFormat::Heic, "????ftypmif1"sv},
    Start{PictureFormat::Heic, "????ftypmsf1"sv},
    Start{PictureFormat::Pgm, "P5"sv},
    Start{PictureFormat::Pnm, "P6"sv},
    Start{PictureFormat::Pam, "P7\n"sv},
};

bool BeginsWith(std::span<const std::uint8_t> bytes, std::string_view start) {
    return bytes.size() > start.size() &&
           std::equal(start.begin(), start.end(), bytes.begin(), [](char wanted, std::uint8_t byte) {
               return wanted == '?' || static_cast<std::uint8_t>(wanted) == byte;
           });
}

// ".png, .jpg or .jpeg": those of the formats that `which` takes.
std::string EndingsOf(bool (*which)(const FormatRow&)) {
    std::vector<std::string> endings;
    for (const FormatRow& row : PictureFormats())
        if (which(row)) endings.insert(endings.end(), row.endings.begin(), row.endings.end());
    return cli::WordList(endings, "or");
}

}  // namespace

std::span<const FormatRow> PictureFormats() {
    static const std::vector<FormatRow> rows{
        // format, name, endings, words, alpha, colour, clear, exact
        {PictureFormat::Png, "PNG", {".png"}, true, true},
        {PictureFormat::Jpeg, "JPEG", {".jpg", ".jpeg"}, false, false, true, false, false},
        {PictureFormat::WebP, "WebP", {".webp"}, false, true},
        {PictureFormat::Tiff, "TIFF", {".tif", ".tiff"}, true, true},
        {PictureFormat::Bmp, "BMP", {".bmp"}, false, false},
        {PictureFormat::Pnm, "PPM", {".ppm", ".pnm"}, true, false},
        {PictureFormat::Pgm, "PGM", {".pgm"}, true, false, false},
        {PictureFormat::Pam, "PAM", {".pam"}, true, true},
        {PictureFormat::Gif, "GIF", {".gif"}, false, false, true, true, false},
        {PictureFormat::Avif, "AVIF", {".avif"}, false, true},
        {PictureFormat::Heic, "HEIC", {".heic", ".heif"}, false, true},
    };
    return rows;
}

const FormatRow& RowOf(PictureFormat format) {
    return *std::ranges::find(PictureFormats(), format, &FormatRow::format);
}

std::string WithArticle(const FormatRow& format) {
    return (format.name.starts_with('A') ? "an " : "a ") + std::string(format.name);
}

const FormatRow* FormatOfName(const std::filesystem::path& file) {
    const std::string ending = cli::EndingOf(file);
    for (const FormatRow& row : PictureFormats())
        if (std::ranges::find(row.endings, ending) != row.endings.end()) return &row;
    return nullptr;
}

const FormatRow* FormatOfBytes(std::span<const std::uint8_t> bytes) {
    const auto start =
        std::ranges::find_if(starts, [bytes](const Start& each) { return BeginsWith(bytes, each.bytes); });
    return start == starts.end() ? nullptr : &RowOf(start->format);
}

const std::string& EndingsRule() {
    static const std::string rule = "pictures end in " + EndingsOf([](const FormatRow&) { return true; });
    return rule;
}

std::string WordsRefusal(const FormatRow& format) {
    return WithArticle(format) + " has 8 bits a channel; 16 bits need a name in " +
           EndingsOf([](const FormatRow& row) { return row.hasWords && row.hasColour; });
}

}  // namespace picture_io
