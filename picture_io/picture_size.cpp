#include "picture_io/picture_size.h"

#include <array>
#include <fstream>
#include <system_error>
#include <vector>

#include "picture_io/png_header.h"

namespace picture_io {
namespace {

// One byte, or -1 behind the end.
int Byte(std::istream& stream) { return stream.get(); }

std::uint32_t Word(std::istream& stream) {
    const auto high = static_cast<std::uint32_t>(Byte(stream) & 0xFF);
    return high << 8U | static_cast<std::uint32_t>(Byte(stream) & 0xFF);
}

// A frame header is any of C0 to CF but for three that are tables and extensions.
bool IsFrameHeader(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// From behind the mark of its beginning: segment after segment up to the first frame header.
std::optional<PictureSize> JpegSize(std::istream& stream) {
    while (stream) {
        if (Byte(stream) != 0xFF) return std::nullopt;
        int marker = Byte(stream);
        while (marker == 0xFF) marker = Byte(stream);  // padding
        if (marker <= 0) return std::nullopt;
        const std::uint32_t length = Word(stream);
        if (!stream || length < 2) return std::nullopt;
        if (IsFrameHeader(marker)) {
            (void)Byte(stream);  // bits
            const std::uint32_t height = Word(stream);
            const std::uint32_t width = Word(stream);
            return stream ? std::optional(PictureSize{width, height}) : std::nullopt;
        }
        stream.seekg(length - 2, std::ios::cur);
    }
    return std::nullopt;
}

}  // namespace

std::optional<PictureSize> ReadPictureSize(const std::filesystem::path& file) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(file, failure)) return std::nullopt;
    std::ifstream stream(file, std::ios::binary);
    std::vector<std::uint8_t> start(32);
    stream.read(reinterpret_cast<char*>(start.data()), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(stream.gcount()));
    if (const auto png = ReadPngHeader(start)) return PictureSize{png->width, png->height};
    if (start.size() < 2 || start[0] != 0xFF || start[1] != 0xD8) return std::nullopt;
    stream.clear();
    stream.seekg(2);
    return JpegSize(stream);
}

}  // namespace picture_io
