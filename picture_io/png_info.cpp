#include "picture_io/png_info.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

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
constexpr std::size_t largestText = 1U << 16U;      // what a format with comments holds of one
constexpr std::size_t mostText = 1U << 20U;         // a few bytes may unfold to many, and there may be many texts

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

// Calls `visit` with each whole chunk from `at` on.
template <typename Visit>
void VisitChunks(View png, std::size_t at, Visit visit) {
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

// Empty for what is damaged or unfolds to more than `largest` bytes.
Bytes Inflated(View packed, std::size_t largest) {
    for (std::size_t size = 1U << 16U; size <= largest; size *= 4) {
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

std::string TextOf(View bytes) { return {bytes.begin(), bytes.end()}; }

std::string FromLatin1(View bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (byte >= 0x80) text += static_cast<char>(0xC0U | byte >> 6U);
        text += static_cast<char>(byte >= 0x80 ? 0x80U | (byte & 0x3FU) : byte);
    }
    return text;
}

struct Named {
    std::string name;
    View rest;
};

// A name that ends in a zero, and what is behind it.
std::optional<Named> NameAtStart(View data) {
    const auto end = std::ranges::find(data, std::uint8_t{0});
    if (end == data.end()) return {};
    const auto length = static_cast<std::size_t>(end - data.begin());
    return Named{FromLatin1(data.first(length)), data.subspan(length + 1)};
}

struct InternationalText {
    std::string name;
    bool isPacked = false;
    View text;
};

// An iTXt chunk: name, 0, packed, method, language, 0, translated name, 0, text.
std::optional<InternationalText> InternationalTextIn(View data) {
    const auto named = NameAtStart(data);
    if (!named || named->rest.size() < 4) return {};
    const auto behindLanguage = NameAtStart(named->rest.subspan(2));
    const auto behindNames = behindLanguage ? NameAtStart(behindLanguage->rest) : std::nullopt;
    if (!behindNames) return {};
    return InternationalText{named->name, named->rest[0] != 0, behindNames->rest};
}

// The text of an iTXt chunk with XMP that is not packed.
std::optional<View> XmpIn(View data) {
    const auto text = InternationalTextIn(data);
    if (!text || text->name != xmpName || text->isPacked) return {};
    return text->text;
}

// Keyword and text in UTF-8; an empty text where there is none, or it cannot be unpacked.
std::pair<std::string, std::string> TextIn(const Chunk& chunk) {
    if (chunk.type == "iTXt") {
        const auto text = InternationalTextIn(chunk.data);
        if (!text) return {};
        return {text->name, text->isPacked ? TextOf(Inflated(text->text, largestText)) : TextOf(text->text)};
    }
    const auto named = NameAtStart(chunk.data);
    if (!named) return {};
    if (chunk.type == "tEXt") return {named->name, FromLatin1(named->rest)};
    return {named->name, named->rest.empty() ? "" : FromLatin1(Inflated(named->rest.subspan(1), largestText))};
}

void TakeChunk(const Chunk& chunk, PictureInfo& info) {
    const auto taken = [&](Bytes& to, View from) { to.assign(from.begin(), from.end()); };
    if (chunk.type == "iCCP") {
        if (const auto packed = BehindName(chunk.data)) info.profile = Inflated(*packed, largestProfile);
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

std::vector<std::string> CommentsOf(View texts) {
    std::vector<std::string> comments;
    std::size_t total = 0;
    VisitChunks(texts, 0, [&](const Chunk& chunk) {
        if (total >= mostText) return;
        const auto [name, text] = TextIn(chunk);
        total += text.size();
        if (!text.empty()) comments.push_back(name == "Comment" ? text : name + ": " + text);
    });
    return comments;
}

PictureInfo ReadPngInfo(View png) {
    PictureInfo info;
    const auto header =
        ReadPngHeader({png.begin(), png.begin() + static_cast<std::ptrdiff_t>(std::min(png.size(), headerEnd))});
    if (!header) return info;
    const bool isPalette = png[25] == 3;
    info.isGrey = header->channels <= 2 && !isPalette;
    info.hasAlpha = header->channels == 2 || header->channels == 4;
    VisitChunks(png, signatureSize, [&](const Chunk& chunk) { TakeChunk(chunk, info); });
    return info;
}

}  // namespace picture_io
