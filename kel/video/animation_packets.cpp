#include "kel/video/animation_packets.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace kel {
namespace {

// A row's codes are signed bytes: so many pixels to come as they are, the negative number of times that the next one
// comes, a zero before a skip, and the row's end.
constexpr std::int32_t mostInCode = 127;
constexpr std::int32_t mostSkipped = 254;  // a skip's byte is one more than the pixels that it passes over
constexpr std::uint32_t skipCode = 0;
constexpr std::uint32_t endOfRow = 0xFF;
constexpr std::uint32_t endOfPicture = 0;
constexpr std::uint32_t rowsAreNamed = 8;  // in the header
constexpr std::size_t pixelBytes = 4;

// How often the first pixel comes, up to the longest run that a code holds.
std::int32_t RunAt(std::span<const std::uint8_t> rgba) {
    const std::size_t most = std::min(rgba.size(), pixelBytes * mostInCode);
    std::size_t at = pixelBytes;
    while (at < most && std::memcmp(rgba.data(), rgba.data() + at, pixelBytes) == 0) at += pixelBytes;
    return static_cast<std::int32_t>(at / pixelBytes);
}

}  // namespace

void AnimationPackets::Put(int bytes, std::uint32_t value) {
    for (int byte = bytes - 1; byte >= 0; --byte)
        m_bytes.push_back(static_cast<std::uint8_t>(value >> (8U * static_cast<unsigned>(byte))));
}

// Alpha comes first in the packet.
void AnimationPackets::PutPixel(const std::uint8_t* rgba) {
    m_bytes.insert(m_bytes.end(), {rgba[3], rgba[0], rgba[1], rgba[2]});
}

void AnimationPackets::PutSkip(std::int32_t pixels) {
    for (bool isFirst = true; isFirst || pixels > 0; isFirst = false) {
        if (!isFirst) Put(1, skipCode);
        const std::int32_t skipped = std::min(pixels, mostSkipped);
        Put(1, static_cast<std::uint32_t>(skipped + 1));
        pixels -= skipped;
    }
}

void AnimationPackets::PutRow(std::span<const std::uint8_t> rgba) {
    std::span<const std::uint8_t> literal = rgba.first(0);
    const auto flush = [&] {
        if (literal.empty()) return;
        Put(1, static_cast<std::uint32_t>(literal.size() / pixelBytes));
        for (std::size_t at = 0; at < literal.size(); at += pixelBytes) PutPixel(literal.data() + at);
    };
    while (!rgba.empty()) {
        const std::int32_t run = RunAt(rgba);
        const std::size_t runBytes = static_cast<std::size_t>(run) * pixelBytes;
        // One pixel alone cannot be a run: its code is the row's end.
        if (run > 1) {
            flush();
            Put(1, static_cast<std::uint32_t>(-run) & 0xFFU);
            PutPixel(rgba.data());
            literal = rgba.subspan(runBytes, 0);
        } else {
            literal = {literal.data(), literal.size() + pixelBytes};
            if (literal.size() == pixelBytes * mostInCode) {
                flush();
                literal = rgba.subspan(runBytes, 0);
            }
        }
        rgba = rgba.subspan(runBytes);
    }
    flush();
    Put(1, endOfRow);
}

std::span<const std::uint8_t> AnimationPackets::Make(const picture_io::Picture& picture, const PicturePart& changed) {
    m_isKey = m_untilKey == 0;
    m_untilKey = (m_isKey ? m_keyEvery : m_untilKey) - 1;
    PicturePart part = changed.Within(picture.width, picture.height);
    if (m_isKey) part = {0, 0, picture.width, picture.height};
    if (part.IsEmpty()) part = {};
    m_bytes.clear();
    Put(4, 0);  // the packet's length, known in the end
    const bool isWhole = part.height == picture.height || part.IsEmpty();
    Put(2, isWhole ? 0 : rowsAreNamed);
    if (!isWhole) {
        Put(4, static_cast<std::uint32_t>(part.y) << 16U);
        Put(4, static_cast<std::uint32_t>(part.height) << 16U);
    }
    for (std::int32_t y = part.y; y < part.y + part.height; ++y) {
        PutSkip(part.x);
        const auto first =
            (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(part.x)) *
            pixelBytes;
        PutRow(std::span(picture.rgba).subspan(first, static_cast<std::size_t>(part.width) * pixelBytes));
    }
    Put(1, endOfPicture);
    const auto length = static_cast<std::uint32_t>(m_bytes.size());
    for (unsigned byte = 0; byte < 4; ++byte) m_bytes[byte] = static_cast<std::uint8_t>(length >> (24U - 8U * byte));
    return m_bytes;
}

}  // namespace kel
