#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace picture_io {

// What a PNG says of itself at its beginning.
struct PngHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint8_t bits = 0;      // a channel: 1, 2, 4, 8 or 16
    std::uint8_t channels = 0;  // 1 to 4
};

// Nothing when the bytes do not begin as a PNG does, or say of themselves what no PNG can be.
[[nodiscard]] std::optional<PngHeader> ReadPngHeader(const std::vector<std::uint8_t>& bytes);

// Throws Error with the reason alone when the picture that the header tells of cannot be in so few bytes, however well
// they are packed: before memory is taken for it. Bytes without a header pass.
void RefuseTruncatedPng(const std::vector<std::uint8_t>& bytes);

// Throws for a reason that the library gives: std::bad_alloc where it is lack of memory, else Error with the reason
// alone.
[[noreturn]] void RefusePng(std::string_view reason);

}  // namespace picture_io
