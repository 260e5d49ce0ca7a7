#include "kel/scene/inked_area.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace kel {
namespace {

constexpr std::ptrdiff_t pixelBytes = 4;

using Row = std::span<const std::uint8_t>;

// Most rows are, so they are compared with themselves one byte on, which the processor does many bytes at a time.
bool IsClear(Row row) { return row[0] == 0 && std::memcmp(row.data(), row.data() + 1, row.size() - 1) == 0; }

bool IsInked(std::uint8_t byte) { return byte != 0; }

}  // namespace

FrameArea BoxAroundInk(const ImageObject& image) {
    if (image.shown.empty()) return {0, 0, image.width, image.height};
    const auto rowBytes = static_cast<std::size_t>(image.width) * pixelBytes;
    std::ptrdiff_t left = image.width;
    std::ptrdiff_t right = -1;
    std::int32_t bottom = image.height;
    std::int32_t top = -1;
    for (std::int32_t y = 0; y < image.height; ++y) {
        const Row row = Row(image.shown).subspan(static_cast<std::size_t>(y) * rowBytes, rowBytes);
        if (IsClear(row)) continue;
        bottom = std::min(bottom, y);
        top = y;
        const auto first = std::ranges::find_if(row, IsInked) - row.begin();
        const auto last = std::find_if(row.rbegin(), row.rend(), IsInked).base() - row.begin() - 1;
        left = std::min(left, first / pixelBytes);
        right = std::max(right, last / pixelBytes);
    }
    if (top < 0) return {};
    return {static_cast<std::int32_t>(left), bottom, static_cast<std::int32_t>(right - left + 1), top - bottom + 1};
}

}  // namespace kel
