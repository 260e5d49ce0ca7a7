#include "chalkpane/composite/settled_tiles.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace chalkpane {

void SettledTiles::Serve(const Image& canvas, std::uint32_t pixel, std::int32_t reach) {
    if (canvas_ == &canvas && pixel_ == pixel && reach_ == reach && area_ == canvas.Bounds()) return;
    const bool isServed = canvas.IsValid() && !canvas.IsMask() && canvas.GetDepth() == Depth::Eight &&
                          canvas.Width() <= mostTiles * tileSide && canvas.Height() <= mostTiles * tileSide;
    canvas_ = isServed ? &canvas : nullptr;
    area_ = canvas.Bounds();
    pixel_ = pixel;
    reach_ = reach;
    settled_ = {};
    settledCells_ = {};
    holdAnyMiddle_ = heldLast_ = false;
    if (canvas_ != nullptr && pixels_ != nullptr) pixels_->Serve(canvas, pixel);
}

// Where dabs change something, most of the next ones do as well. Not one in so many of those that come in turn: they
// may do so on a line to and fro.
bool SettledTiles::LooksCloser() {
    constexpr std::uint32_t oneInSoMany = 4;
    constexpr std::uint32_t scatters = 2654435769U;
    return Pixels() != nullptr && (heldLast_ || (++closerLooks_ * scatters >> 16) % oneInSoMany == 0);
}

Rect SettledTiles::RestlessRows(const Image& mask, const Rect& dab, const Rect& part) const {
    const Rect on = part.Intersection(area_);
    return on.IsValid() ? pixels_->RestlessRows(mask, dab, on) : part;
}

void SettledTiles::LookAtPixels(const Rect& rows) {
    const Rect on = rows.Intersection(area_);
    if (on.IsValid()) pixels_->Look(on);
}

void SettledTiles::MarkMiddle(double x, double y) {
    constexpr std::uint32_t everySoManyDabs = 4;
    if (canvas_ == nullptr || ++marks_ % everySoManyDabs != 0) return;
    if (!(x >= area_.x0 && x < area_.x1 && y >= area_.y0 && y < area_.y1)) return;
    const std::int32_t column = static_cast<std::int32_t>(x - area_.x0) / cellSide;
    const std::int32_t row = static_cast<std::int32_t>(y - area_.y0) / cellSide;
    const std::int32_t left = area_.x0 + column * cellSide;
    const std::int32_t bottom = area_.y0 + row * cellSide;
    if (!Hold({left - reach_, bottom - reach_, left + cellSide + reach_, bottom + cellSide + reach_})) return;
    settledCells_[static_cast<std::size_t>(row)] |= std::uint64_t{1} << column;
    holdAnyMiddle_ = true;
}

bool SettledTiles::Hold(const Rect& dab) const {
    if (canvas_ == nullptr) return false;
    const Rect on = dab.Intersection(area_);
    if (!on.IsValid()) return false;
    const std::int32_t firstColumn = (on.x0 - area_.x0) / tileSide;
    const std::int32_t lastColumn = (on.x1 - area_.x0) / tileSide;
    for (std::int32_t row = (on.y0 - area_.y0) / tileSide; row <= (on.y1 - area_.y0) / tileSide; ++row) {
        const auto& words = settled_[static_cast<std::size_t>(row)];
        for (std::int32_t word = firstColumn / wordBits; word <= lastColumn / wordBits; ++word) {
            const std::int32_t first = std::max(firstColumn - word * wordBits, 0);
            const std::int32_t last = std::min(lastColumn - word * wordBits, wordBits - 1);
            const std::uint64_t wanted = (~std::uint64_t{0} >> (wordBits - 1 - last + first)) << first;
            if ((~words[static_cast<std::size_t>(word)] & wanted) != 0) return false;
        }
    }
    return true;
}

void SettledTiles::Look(const Rect& dab) {
    constexpr std::uint32_t everySoManyDabs = 4;
    constexpr std::uint32_t everySoManyHeld = 16;
    constexpr std::uint32_t everySoManyHugeHeld = 128;
    constexpr std::int32_t huge = 256;        // pixels
    constexpr std::uint32_t manyDabs = 2048;  // of an eraser's, which cost more than all tiles
    if (canvas_ == nullptr || ++looks_ % (heldLast_ ? everySoManyHeld : everySoManyDabs) != 0) return;
    if (looks_ % manyDabs == 0 && pixel_ == 0 && !heldLast_) LookAtAll(area_);
    const Rect on = dab.Intersection(area_);
    if (!on.IsValid()) return;
    if (on.Width() >= huge && on.Height() >= huge) {
        if (!heldLast_ || looks_ % everySoManyHugeHeld == 0) LookAtAll(on);
        return;
    }
    const std::int32_t around = dab.Width() < wide ? 0 : 1;
    const std::int32_t column = (on.x0 + on.Width() / 2 - area_.x0) / tileSide;
    const std::int32_t row = (on.y0 + on.Height() / 2 - area_.y0) / tileSide;
    const std::int32_t lastColumn = std::min(column + around, (area_.Width() - 1) / tileSide);
    const std::int32_t lastRow = std::min(row + around, (area_.Height() - 1) / tileSide);
    for (std::int32_t y = std::max(row - around, 0); y <= lastRow; ++y)
        for (std::int32_t x = std::max(column - around, 0); x <= lastColumn; ++x) LookAt(x, y);
    if (around == 0) return;
    const std::int32_t firstRow = (on.y0 - area_.y0) / tileSide;
    const auto rows = static_cast<std::uint32_t>((on.y1 - area_.y0) / tileSide - firstRow + 1);
    const auto inTurn = firstRow + static_cast<std::int32_t>(looks_ / everySoManyDabs % rows);
    for (std::int32_t x = (on.x0 - area_.x0) / tileSide; x <= (on.x1 - area_.x0) / tileSide; ++x) LookAt(x, inTurn);
}

void SettledTiles::LookAtAll(const Rect& part) {
    for (std::int32_t row = (part.y0 - area_.y0) / tileSide; row <= (part.y1 - area_.y0) / tileSide; ++row)
        for (std::int32_t column = (part.x0 - area_.x0) / tileSide; column <= (part.x1 - area_.x0) / tileSide; ++column)
            LookAt(column, row);
}

void SettledTiles::LookAt(std::int32_t column, std::int32_t row) {
    if (IsSettled(column, row) || !Find(column, row)) return;
    settled_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column / wordBits)] |= std::uint64_t{1}
                                                                                            << (column % wordBits);
    // From here on nobody asks for its pixels but with all others of a dab.
    if (pixels_ != nullptr) pixels_->Look(TileAt(column, row));
}

// The last ones may be narrower.
Rect SettledTiles::TileAt(std::int32_t column, std::int32_t row) const {
    const std::int32_t left = area_.x0 + column * tileSide;
    const std::int32_t bottom = area_.y0 + row * tileSide;
    return Rect(left, bottom, left + tileSide - 1, bottom + tileSide - 1).Intersection(area_);
}

Rect SettledTiles::RestlessOfRow(std::int32_t row, Rect pixels) const {
    std::int32_t first = (pixels.x0 - area_.x0) / tileSide;
    std::int32_t last = (pixels.x1 - area_.x0) / tileSide;
    while (first <= last && IsSettled(first, row)) ++first;
    if (first > last) return {};
    while (IsSettled(last, row)) --last;
    pixels.x0 = std::max(pixels.x0, area_.x0 + first * tileSide);
    pixels.x1 = std::min(pixels.x1, area_.x0 + last * tileSide + tileSide - 1);
    return pixels;
}

bool SettledTiles::IsSettled(std::int32_t column, std::int32_t row) const {
    const std::uint64_t word = settled_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column / wordBits)];
    return (word >> (column % wordBits) & 1) != 0;
}

// Looks at all pixels of the tile.
bool SettledTiles::Find(std::int32_t column, std::int32_t row) const {
    const auto colour = std::bit_cast<std::array<std::uint8_t, 4>>(pixel_);
    const Rect tile = TileAt(column, row);
    for (std::int32_t y = tile.y0; y <= tile.y1; ++y) {
        const auto* const channels = reinterpret_cast<const std::uint8_t*>(canvas_->Address(tile.x0, y));
        unsigned restless = 0;
        for (std::size_t i = 0; i < 4 * static_cast<std::size_t>(tile.Width()); ++i)
            restless |= Rests(channels[i], colour[i % 4]) ? 0U : 1U;
        if (restless != 0) return false;
    }
    return true;
}

}  // namespace chalkpane
