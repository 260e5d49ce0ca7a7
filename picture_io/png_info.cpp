#include "picture_io/png_info.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>

#include "cli/error.h"
#include "picture_io/png_chunks.h"
#include "picture_io/png_header.h"

namespace picture_io {
namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

constexpr std::size_t signatureSize = 8;
constexpr std::size_t chunkExtra = 12;              // length, type, checksum
constexpr std::size_t headerEnd = 33;               // signature and the chunk IHDR
constexpr std::size_t largestProfile = 16U << 20U;  // bytes

std::uint32_t WordAt(View bytes, std::size_t place) {
    std::uint32_t word = 0;
    for (const std::uint8_t byte : bytes.subspan(place, 4)) word = word << 8U | byte;
    return word;
}

struct Chunk {
    std::string_view type;
    View data;
    View whole;
};

// Calls `visit` with each whole chunk behind the signature.
template <typename Visit>
void VisitChunks(View png, Visit visit) {
    std::size_t at = signatureSize;
    while (png.size() >= at + chunkExtra) {
        const std::size_t length = WordAt(png, at);
        if (length > png.size() - at - chunkExtra) return;
        const View whole = png.subspan(at, length + chunkExtra);
        visit(Chunk{{reinterpret_cast<const char*>(whole.data() + 4), 4}, whole.subspan(8, length), whole});
        at += whole.size();
    }
}

// The data behind the name, which ends in a zero, and the byte for the method.
std::optional<View> BehindName(View data) {
    const auto end = std::ranges::find(data, std::uint8_t{0});
    const auto name = static_cast<std::size_t>(end - data.begin());
    if (data.size() < name + 2) return std::nullopt;
    return data.subspan(name + 2);
}

Bytes Inflated(View packed) {
    for (std::size_t size = 1U << 16U; size <= largestProfile; size *= 4) {
        Bytes bytes(size);
        uLongf length = size;
        const int result = uncompress(bytes.data(), &length, packed.data(), packed.size());
        if (result == Z_MEM_ERROR) throw std::bad_alloc();
        if (result == Z_BUF_ERROR) continue;
        if (result != Z_OK) return {};
        bytes.resize(length);
        return bytes;
    }
    return {};
}

Bytes Deflated(View bytes) {
    uLongf length = compressBound(bytes.size());
    Bytes packed(length);
    if (compress(packed.data(), &length, bytes.data(), bytes.size()) != Z_OK) throw std::bad_alloc();
    packed.resize(length);
    return packed;
}

void AppendNamed(Bytes& data, std::string_view name, std::initializer_list<std::uint8_t> behind) {
    data.insert(data.end(), name.begin(), name.end());
    data.insert(data.end(), behind);
}

constexpr std::string_view xmpName = "XML:com.adobe.xmp";

// The text of an iTXt chunk with XMP that is not packed: name, 0, packed, method, language, 0, translated name, 0.
std::optional<View> XmpIn(View data) {
    if (data.size() < xmpName.size() + 5 || !std::equal(xmpName.begin(), xmpName.end(), data.begin())) return {};
    View rest = data.subspan(xmpName.size());
    if (rest[0] != 0 || rest[1] != 0) return {};
    rest = rest.subspan(3);
    for (int names = 0; names < 2; ++names) {
        const auto end = std::ranges::find(rest, std::uint8_t{0});
        if (end == rest.end()) return {};
        rest = rest.subspan(static_cast<std::size_t>(end - rest.begin()) + 1);
    }
    return rest;
}

void TakeChunk(const Chunk& chunk, PictureInfo& info) {
    const auto taken = [&](Bytes& to, View from) { to.assign(from.begin(), from.end()); };
    if (chunk.type == "iCCP") {
        if (const auto packed = BehindName(chunk.data)) info.profile = Inflated(*packed);
    } else if (chunk.type == "eXIf") {
        taken(info.exif, chunk.data);
    } else if (chunk.type == "pHYs" && chunk.data.size() == 9 && chunk.data[8] == 1) {
        info.resolution = Resolution{WordAt(chunk.data, 0), WordAt(chunk.data, 4)};
    } else if (chunk.type == "tRNS") {
        info.hasAlpha = true;
    } else if (const auto xmp = chunk.type == "iTXt" ? XmpIn(chunk.data) : std::nullopt) {
        taken(info.xmp, *xmp);
    } else if (chunk.type == "tEXt" || chunk.type == "zTXt" || chunk.type == "iTXt") {
        info.texts.insert(info.texts.end(), chunk.whole.begin(), chunk.whole.end());
    }
}

}  // namespace

Bytes PngChunksOf(const PictureInfo& info) {
    Bytes chunks;
    if (!info.profile.empty()) {
        Bytes data;
        AppendNamed(data, "ICC Profile", {0, 0});
        const Bytes packed = Deflated(info.profile);
        data.insert(data.end(), packed.begin(), packed.end());
        AppendChunk(chunks, "iCCP", data);
    }
    if (info.resolution) {
        Bytes data;
        AppendWord(data, info.resolution->x);
        AppendWord(data, info.resolution->y);
        data.push_back(1);  // to the metre
        AppendChunk(chunks, "pHYs", data);
    }
    if (!info.exif.empty()) AppendChunk(chunks, "eXIf", info.exif);
    if (!info.xmp.empty()) {
        Bytes data;
        AppendNamed(data, xmpName, {0, 0, 0, 0, 0});
        data.insert(data.end(), info.xmp.begin(), info.xmp.end());
        AppendChunk(chunks, "iTXt", data);
    }
    for (const std::string& comment : info.comments) {
        Bytes data;
        AppendNamed(data, "Comment", {0, 0, 0, 0, 0});
        data.insert(data.end(), comment.begin(), comment.end());
        AppendChunk(chunks, "iTXt", data);
    }
    chunks.insert(chunks.end(), info.texts.begin(), info.texts.end());
    return chunks;
}

PictureInfo ReadPngInfo(View png) {
    PictureInfo info;
    const auto header =
        ReadPngHeader({png.begin(), png.begin() + static_cast<std::ptrdiff_t>(std::min(png.size(), headerEnd))});
    if (!header) return info;
    const bool isPalette = png[25] == 3;
    info.isGrey = header->channels <= 2 && !isPalette;
    info.hasAlpha = header->channels == 2 || header->channels == 4;
    VisitChunks(png, [&](const Chunk& chunk) { TakeChunk(chunk, info); });
    return info;
}

}  // namespace picture_io
