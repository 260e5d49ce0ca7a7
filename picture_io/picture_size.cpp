#include "picture_io/picture_size.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "cli/open_file.h"
#include "picture_io/exif.h"
#include "picture_io/picture_format.h"
#include "picture_io/placed_bytes.h"
#include "picture_io/png_header.h"

namespace picture_io {
namespace {

using Size = std::optional<PictureSize>;

std::vector<std::uint8_t> StartOf(PlacedBytes& file) {
    constexpr std::uint64_t enough = 32;  // for the beginning of every format
    std::vector<std::uint8_t> start;
    for (std::uint64_t i = 0; i < enough; ++i)
        if (const auto byte = file.At(i)) start.push_back(*byte);
    return start;
}

// Some writers put EXIF behind the pixels, so all chunks are passed over. A file of very many counts as one on its
// side.
bool IsUprightPng(PlacedBytes& file) {
    constexpr int mostChunks = 100'000;
    constexpr std::uint32_t longestExif = 1U << 16U;
    constexpr std::uint64_t extra = 12;  // length, type, checksum
    std::uint64_t at = 8;
    for (int chunk = 0; chunk < mostChunks; ++chunk) {
        if (!file.At(at + extra - 1)) return true;
        const std::uint32_t length = file.Big(at, 4);
        if (file.Has(at + 4, "eXIf")) {
            std::vector<std::uint8_t> exif;
            for (std::uint32_t i = 0; i < std::min(length, longestExif); ++i)
                exif.push_back(file.At(at + 8 + i).value_or(0));
            if (OrientationIn(exif) != Orientation::Upright) return false;
        }
        at += length + extra;
    }
    return false;
}

Size PngSize(PlacedBytes& file) {
    constexpr int bitsOfWord = 16;
    const auto png = ReadPngHeader(StartOf(file));
    if (!png) return std::nullopt;
    return PictureSize{.width = png->width,
                       .height = png->height,
                       .hasWords = png->bits == bitsOfWord,
                       .decodingCopies = IsUprightPng(file) ? 1.0 : 2.0};
}

// A frame header is any of C0 to CF but for three that are tables and extensions.
bool IsFrameHeader(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// The block of EXIF that a segment holds; empty for others.
std::vector<std::uint8_t> ExifIn(PlacedBytes& file, std::uint64_t at, std::uint32_t length) {
    using namespace std::string_view_literals;
    constexpr std::string_view start = "Exif\0\0"sv;
    std::vector<std::uint8_t> exif;
    if (!file.Has(at + 2, start)) return exif;
    for (std::uint64_t i = 2 + start.size(); i < length; ++i) exif.push_back(file.At(at + i).value_or(0));
    return exif;
}

// Coefficients are kept until the last scan where there are several: two bytes each, in up to as many as the channels.
double CoefficientsOf(std::uint32_t components) { return 2.0 * components; }

// From behind the mark of its beginning: segment after segment up to the first scan, or to what is none.
Size JpegSize(PlacedBytes& file) {
    constexpr int scan = 0xDA;
    constexpr int progressive = 0xC2;
    constexpr int application1 = 0xE1;
    Size size;
    std::uint32_t components = 0;
    bool isUpright = true;
    std::uint64_t at = 2;
    while (file.At(at) == 0xFF) {
        ++at;
        while (file.At(at) == 0xFF) ++at;  // padding
        const int marker = file.At(at++).value_or(0);
        const std::uint32_t length = file.Big(at, 2);
        if (marker == 0 || length < 2) break;
        if (marker == application1) {
            const auto exif = ExifIn(file, at, length);
            if (!exif.empty()) isUpright = OrientationIn(exif) == Orientation::Upright;
        }
        if (IsFrameHeader(marker) && !size) {
            if (!file.At(at + 6)) return std::nullopt;
            size = PictureSize{.width = file.Big(at + 5, 2),
                               .height = file.Big(at + 3, 2)};  // behind the length and the bits
            components = file.Big(at + 7, 1);
            if (marker >= progressive) size->keptByDecoder = CoefficientsOf(components);
        }
        if (marker == scan && size) {
            if (file.Big(at + 2, 1) < components) size->keptByDecoder = CoefficientsOf(components);
            break;
        }
        at += length;
    }
    if (size) size->comesByRows = isUpright;
    if (size) size->decodingCopies = 2;
    return size;
}

// The canvas, or the picture where one does not fit into it.
Size WebPSize(PlacedBytes& file) {
    constexpr int mostChunks = 1000;
    PictureSize size;
    const auto grow = [&size](std::uint32_t width, std::uint32_t height) {
        size.width = std::max(size.width, width);
        size.height = std::max(size.height, height);
    };
    std::uint64_t at = 12;
    for (int chunk = 0; chunk < mostChunks && file.At(at + 8); ++chunk) {
        const std::uint64_t data = at + 8;
        if (file.Has(at, "VP8X")) {
            grow(file.Little(data + 4, 3) + 1, file.Little(data + 7, 3) + 1);
        } else if (file.Has(at, "VP8L")) {
            const std::uint32_t sides = file.Little(data + 1, 4);  // 14 bits each
            grow((sides & 0x3FFFU) + 1, (sides >> 14U & 0x3FFFU) + 1);
        } else if (file.Has(at, "VP8 ")) {
            grow(file.Little(data + 6, 2) & 0x3FFFU, file.Little(data + 8, 2) & 0x3FFFU);
        }
        const std::uint64_t length = file.Little(at + 4, 4);
        at = data + length + length % 2;
    }
    return size.width > 0 ? Size(size) : std::nullopt;
}

Size GifSize(PlacedBytes& file) { return PictureSize{.width = file.Little(6, 2), .height = file.Little(8, 2)}; }

Size BmpSize(PlacedBytes& file) {
    constexpr std::uint32_t oldHeader = 12;
    if (file.Little(14, 4) == oldHeader) return PictureSize{.width = file.Little(18, 2), .height = file.Little(20, 2)};
    const std::uint32_t height = file.Little(22, 4);  // below 0: the first row is the highest
    return PictureSize{.width = file.Little(18, 4), .height = (height & 0x80000000U) != 0 ? 0U - height : height};
}

// The tags of a TIFF's first picture, of which every one counts that says how large it is.
Size TiffSize(PlacedBytes& file) {
    constexpr std::uint32_t shortType = 3;
    const bool isLittle = file.Has(0, "II");
    const auto number = [&](std::uint64_t at, unsigned count) {
        return isLittle ? file.Little(at, count) : file.Big(at, count);
    };
    const std::uint64_t start = number(4, 4);
    const std::uint32_t count = number(start, 2);
    PictureSize size;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint64_t at = start + 2 + std::uint64_t{12} * i;
        const std::uint32_t tag = number(at, 2);
        const std::uint32_t value = number(at + 8, number(at + 2, 2) == shortType ? 2 : 4);
        if (tag == 256) size.width = std::max(size.width, value);
        if (tag == 257) size.height = std::max(size.height, value);
        if (tag == 258) size.hasWords |= (number(at + 4, 4) > 2 ? number(number(at + 8, 4), 2) : value) > 8;
    }
    return size.width > 0 ? Size(size) : std::nullopt;
}

// The largest of the sizes among the properties of what the file holds: pictures, their tiles, and small forms of them.
// Boxes lie in boxes; each begins with its length and its name.
void GrowByHeif(PlacedBytes& file, std::uint64_t at, std::uint64_t end, int& boxesLeft, PictureSize& size) {
    while (at + 8 <= end && --boxesLeft > 0) {
        std::uint64_t length = file.Big(at, 4);
        std::uint64_t inside = at + 8;
        if (length == 1) {
            length = std::uint64_t{file.Big(at + 8, 4)} << 32U | file.Big(at + 12, 4);
            inside += 8;
        }
        if (length == 0 || length > end - at) length = end - at;  // up to the end
        if (at + length < inside) return;
        if (file.Has(at + 4, "ispe")) {
            size.width = std::max(size.width, file.Big(inside + 4, 4));
            size.height = std::max(size.height, file.Big(inside + 8, 4));
        }
        if (file.Has(at + 4, "pixi"))  // bits of each channel
            for (unsigned i = 0; i < file.Big(inside + 4, 1); ++i) size.hasWords |= file.Big(inside + 5 + i, 1) > 8;
        const bool isMeta = file.Has(at + 4, "meta");
        if (isMeta || file.Has(at + 4, "iprp") || file.Has(at + 4, "ipco"))
            GrowByHeif(file, inside + (isMeta ? 4 : 0), at + length, boxesLeft, size);
        at += length;
        if (!file.At(at)) return;
    }
}

Size HeifSize(PlacedBytes& file) {
    int boxesLeft = 10'000;
    PictureSize size;
    GrowByHeif(file, 0, std::uint64_t{1} << 62U, boxesLeft, size);
    return size.width > 0 ? Size(size) : std::nullopt;
}

// The words of a header of text, which blanks and comments part.
class HeaderWords {
public:
    HeaderWords(PlacedBytes& file, std::uint64_t at) : m_file(file), m_at(at) {}

    std::string Next() {
        std::string word;
        for (; m_at < mostHeader; ++m_at) {
            const auto byte = m_file.At(m_at);
            if (!byte) break;
            if (*byte == '#' && word.empty()) {
                while (m_at < mostHeader && m_file.At(m_at) && m_file.At(m_at) != '\n') ++m_at;
            } else if (*byte > ' ') {
                word += static_cast<char>(*byte);
            } else if (!word.empty()) {
                break;
            }
        }
        return word;
    }
    std::uint32_t Number() {
        std::uint64_t number = 0;
        for (const char digit : Next())
            if (digit >= '0' && digit <= '9' && number < mostNumber)
                number = number * 10 + static_cast<std::uint64_t>(digit - '0');
        return static_cast<std::uint32_t>(std::min(number, mostNumber));
    }

private:
    static constexpr std::uint64_t mostHeader = 1U << 16U;  // bytes
    static constexpr std::uint64_t mostNumber = 0xFFFFFFFFU;

    PlacedBytes& m_file;
    std::uint64_t m_at;
};

constexpr std::uint32_t mostOfByte = 255;

Size PnmSize(PlacedBytes& file) {
    HeaderWords words(file, 2);
    PictureSize size;
    size.width = words.Number();
    size.height = words.Number();
    size.hasWords = words.Number() > mostOfByte;
    return size;
}

Size PamSize(PlacedBytes& file) {
    HeaderWords words(file, 2);
    PictureSize size;
    for (std::string word = words.Next(); !word.empty() && word != "ENDHDR"; word = words.Next()) {
        if (word == "WIDTH") size.width = words.Number();
        if (word == "HEIGHT") size.height = words.Number();
        if (word == "MAXVAL") size.hasWords = words.Number() > mostOfByte;
    }
    return size;
}

Size SizeIn(PlacedBytes& file) {
    const FormatRow* const format = FormatOfBytes(StartOf(file));
    if (format == nullptr) return std::nullopt;
    switch (format->format) {
        case PictureFormat::Png:
            return PngSize(file);
        case PictureFormat::Jpeg:
            return JpegSize(file);
        case PictureFormat::WebP:
            return WebPSize(file);
        case PictureFormat::Tiff:
            return TiffSize(file);
        case PictureFormat::Gif:
            return GifSize(file);
        case PictureFormat::Bmp:
            return BmpSize(file);
        case PictureFormat::Avif:
        case PictureFormat::Heic:
            return HeifSize(file);
        case PictureFormat::Pam:
            return PamSize(file);
        case PictureFormat::Pgm:
        case PictureFormat::Pnm:
            return PnmSize(file);
    }
    return std::nullopt;
}

double MemoryOf(const Size& size, double fileBytes, double copies, bool asWords) {
    constexpr double channels = 4;
    const double once = size ? size->Pixels() * channels * (asWords || size->hasWords ? 2 : 1) : 0;
    return std::max(fileBytes + once, copies * once);
}

}  // namespace

std::optional<PictureSize> ReadPictureSize(const std::filesystem::path& file) {
    const cli::OpenFile opened(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!opened || fstat(opened.Descriptor(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    PlacedBytes bytes(opened.Descriptor());
    return SizeIn(bytes);
}

std::optional<PictureSize> PictureSizeIn(std::span<const std::uint8_t> bytes) {
    PlacedBytes placed(bytes);
    return SizeIn(placed);
}

double MemoryOfPicture(const std::filesystem::path& file, double copies, bool asWords) {
    std::error_code failure;
    const auto fileBytes = std::filesystem::file_size(file, failure);
    return MemoryOf(ReadPictureSize(file), failure ? 0.0 : static_cast<double>(fileBytes), copies, asWords);
}

double MemoryOfPicture(std::span<const std::uint8_t> bytes, double copies, bool asWords) {
    return MemoryOf(PictureSizeIn(bytes), static_cast<double>(bytes.size()), copies, asWords);
}

}  // namespace picture_io
