#include "picture_io/gif_codec.h"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>

#include "cli/error.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int mostColours = 256;

[[noreturn]] void Refuse(int code) {
    if (code == E_GIF_ERR_NOT_ENOUGH_MEM || code == D_GIF_ERR_NOT_ENOUGH_MEM) throw std::bad_alloc();
    const char* const reason = GifErrorString(code);
    throw cli::Error("GIF: " + std::string(reason != nullptr ? reason : "is damaged"));
}

struct Source {
    const Bytes& bytes;
    std::size_t at = 0;
};

int TakeBytes(GifFileType* file, GifByteType* target, int count) {
    auto& source = *static_cast<Source*>(file->UserData);
    const std::size_t taken = std::min(static_cast<std::size_t>(std::max(count, 0)), source.bytes.size() - source.at);
    std::copy_n(source.bytes.begin() + static_cast<std::ptrdiff_t>(source.at), taken, target);
    source.at += taken;
    return static_cast<int>(taken);
}

struct CloseRead {
    void operator()(GifFileType* file) const { DGifCloseFile(file, nullptr); }
};

void Require(int result, const GifFileType& file) {
    if (result == GIF_ERROR) Refuse(file.Error);
}

// The number that is no colour, of the last block that says so.
int ReadExtension(GifFileType& file) {
    int clear = NO_TRANSPARENT_COLOR;
    int code = 0;
    GifByteType* data = nullptr;
    for (Require(DGifGetExtension(&file, &code, &data), file); data != nullptr;
         Require(DGifGetExtensionNext(&file, &data), file)) {
        GraphicsControlBlock block{};
        if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(data[0], data + 1, &block) == GIF_OK)
            clear = block.TransparentColor;
    }
    return clear;
}

// Up to the description of the first picture. Answers the number that is no colour.
int ReadUpToPicture(GifFileType& file) {
    int clear = NO_TRANSPARENT_COLOR;
    for (GifRecordType record = UNDEFINED_RECORD_TYPE; record != IMAGE_DESC_RECORD_TYPE;) {
        Require(DGifGetRecordType(&file, &record), file);
        if (record == EXTENSION_RECORD_TYPE) clear = ReadExtension(file);
        if (record == TERMINATE_RECORD_TYPE) throw cli::Error("GIF: has no picture");
    }
    Require(DGifGetImageDesc(&file), file);
    return clear;
}

// Before there is any memory for them: so many pixels can be in the bytes that are left. A code has three bits at
// least, and stands for as many pixels as there are codes at most.
void RequirePacked(const GifImageDesc& description, std::size_t bytes) {
    constexpr double mostCodes = 4096;
    constexpr double leastBits = 3;
    const double pixels = static_cast<double>(description.Width) * static_cast<double>(description.Height);
    if (pixels > static_cast<double>(bytes) * 8 / leastBits * mostCodes)
        throw cli::Error("GIF: ends too early, or is damaged");
}

// The order in which the rows of an interlaced picture come: every eighth, those between, and so on.
std::vector<int> RowOrder(const GifImageDesc& description) {
    std::vector<int> rows;
    const auto add = [&](int first, int step) {
        for (int y = first; y < description.Height; y += step) rows.push_back(y);
    };
    if (!description.Interlace) add(0, 1);
    for (const auto& [first, step] : {std::array{0, 8}, std::array{4, 8}, std::array{2, 4}, std::array{1, 2}})
        if (description.Interlace) add(first, step);
    return rows;
}

void ReadRows(GifFileType& file, int clear, Picture& picture) {
    const GifImageDesc& description = file.Image;
    const ColorMapObject* const colours = description.ColorMap != nullptr ? description.ColorMap : file.SColorMap;
    if (colours == nullptr) throw cli::Error("GIF: has no colors");
    Bytes line(static_cast<std::size_t>(description.Width));
    for (const int row : RowOrder(description)) {
        Require(DGifGetLine(&file, line.data(), description.Width), file);
        const int y = description.Top + row;
        for (int x = description.Left;
             y < picture.height && x < std::min(description.Left + description.Width, picture.width); ++x) {
            const int index = line[static_cast<std::size_t>(x - description.Left)];
            if (index == clear || index >= colours->ColorCount) continue;
            const GifColorType& colour = colours->Colors[index];
            picture.Set(x, y, {colour.Red, colour.Green, colour.Blue, 255});
        }
    }
}

// A picture as one number of a colour for each pixel.
struct Indexed {
    Bytes indices;
    std::array<GifColorType, mostColours> colours{};
    int count = 0;
    int clear = NO_TRANSPARENT_COLOR;  // the number that is no colour
};

bool IsClear(const std::uint8_t* pixel) { return pixel[3] < 128; }

// False: there are too many colours.
bool IndexExactly(const Picture& picture, Indexed& indexed) {
    const int most = mostColours - (indexed.clear == NO_TRANSPARENT_COLOR ? 0 : 1);
    std::unordered_map<std::uint32_t, std::uint8_t> numbers;
    for (std::size_t i = 0; i < indexed.indices.size(); ++i) {
        const std::uint8_t* const pixel = picture.rgba.data() + 4 * i;
        if (IsClear(pixel)) continue;
        const std::uint32_t colour = std::uint32_t{pixel[0]} << 16U | std::uint32_t{pixel[1]} << 8U | pixel[2];
        const auto [place, isNew] = numbers.try_emplace(colour, static_cast<std::uint8_t>(indexed.count));
        if (isNew) {
            if (indexed.count == most) return false;
            indexed.colours[static_cast<std::size_t>(indexed.count++)] = {pixel[0], pixel[1], pixel[2]};
        }
        indexed.indices[i] = place->second;
    }
    return true;
}

void IndexNearest(const Picture& picture, Indexed& indexed) {
    const std::size_t pixels = indexed.indices.size();
    std::array<Bytes, 3> planes{Bytes(pixels), Bytes(pixels), Bytes(pixels)};
    std::array<std::uint8_t, 3> last{};  // clear pixels repeat the colour before them, and so ask for none of their own
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t* const pixel = picture.rgba.data() + 4 * i;
        if (!IsClear(pixel)) std::copy_n(pixel, 3, last.begin());
        for (std::size_t channel = 0; channel < 3; ++channel) planes[channel][i] = last[channel];
    }
    indexed.count = mostColours - (indexed.clear == NO_TRANSPARENT_COLOR ? 0 : 1);
    if (GifQuantizeBuffer(static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height), &indexed.count,
                          planes[0].data(), planes[1].data(), planes[2].data(), indexed.indices.data(),
                          indexed.colours.data()) == GIF_ERROR)
        throw std::bad_alloc();
}

Indexed IndexedOf(const Picture& picture) {
    Indexed indexed;
    indexed.indices.resize(picture.rgba.size() / 4);
    for (std::size_t i = 0; i < picture.rgba.size(); i += 4)
        if (IsClear(picture.rgba.data() + i)) indexed.clear = 0;
    if (!IndexExactly(picture, indexed)) IndexNearest(picture, indexed);
    if (indexed.clear == NO_TRANSPARENT_COLOR) return indexed;
    indexed.clear = indexed.count++;
    for (std::size_t i = 0; i < indexed.indices.size(); ++i)
        if (IsClear(picture.rgba.data() + 4 * i)) indexed.indices[i] = static_cast<std::uint8_t>(indexed.clear);
    return indexed;
}

int Append(GifFileType* file, const GifByteType* bytes, int count) {
    auto& target = *static_cast<Bytes*>(file->UserData);
    try {
        target.insert(target.end(), bytes, bytes + count);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return count;
}

struct Close {
    void operator()(GifFileType* file) const { EGifCloseFile(file, nullptr); }
};

void PutClear(GifFileType* file, int clear) {
    if (clear == NO_TRANSPARENT_COLOR) return;
    const GraphicsControlBlock block{DISPOSAL_UNSPECIFIED, false, 0, clear};
    std::array<GifByteType, 4> extension{};
    EGifGCBToExtension(&block, extension.data());
    if (EGifPutExtension(file, GRAPHICS_EXT_FUNC_CODE, extension.size(), extension.data()) == GIF_ERROR)
        Refuse(file->Error);
}

}  // namespace

Picture DecodeGif(const Bytes& bytes, PictureInfo& info) {
    Source source{bytes};
    int failure = 0;
    const std::unique_ptr<GifFileType, CloseRead> file(DGifOpen(&source, TakeBytes, &failure));
    if (!file) Refuse(failure);
    RequireSides(file->SWidth, file->SHeight);
    const int clear = ReadUpToPicture(*file);
    RequirePacked(file->Image, bytes.size() - source.at);
    Picture picture(file->SWidth, file->SHeight);
    ReadRows(*file, clear, picture);
    for (std::size_t i = 3; i < picture.rgba.size() && !info.hasAlpha; i += 4) info.hasAlpha = picture.rgba[i] == 0;
    return picture;
}

Bytes EncodeGif(const Picture& picture) {
    Indexed indexed = IndexedOf(picture);
    const int bits = std::max(1, static_cast<int>(std::bit_width(static_cast<unsigned>(indexed.count - 1))));
    const std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)> colours(
        GifMakeMapObject(1 << bits, indexed.colours.data()), GifFreeMapObject);
    if (!colours) throw std::bad_alloc();
    Bytes bytes;
    int failure = 0;
    std::unique_ptr<GifFileType, Close> file(EGifOpen(&bytes, Append, &failure));
    if (!file) Refuse(failure);
    EGifSetGifVersion(file.get(), true);
    if (EGifPutScreenDesc(file.get(), picture.width, picture.height, bits, 0, colours.get()) == GIF_ERROR)
        Refuse(file->Error);
    PutClear(file.get(), indexed.clear);
    if (EGifPutImageDesc(file.get(), 0, 0, picture.width, picture.height, false, nullptr) == GIF_ERROR)
        Refuse(file->Error);
    const auto width = static_cast<std::size_t>(picture.width);
    for (std::size_t at = 0; at < indexed.indices.size(); at += width)
        if (EGifPutLine(file.get(), indexed.indices.data() + at, picture.width) == GIF_ERROR) Refuse(file->Error);
    if (EGifCloseFile(file.release(), &failure) == GIF_ERROR) Refuse(failure);
    return bytes;
}

}  // namespace picture_io
