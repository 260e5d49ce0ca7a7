#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "chalkpane/composite/settled_pixels.h"
#include "chalkpane/image/image.h"

namespace chalkpane {

// The parts of a canvas that dabs of one kind no longer change, so that a scribble which goes over the same pixels
// hundreds of times costs no more than the first few.
//
// Every channel of an opaque 8-bit colour composited over a canvas comes to rest at the colour or one below it: what is
// above falls to it, and from one below the weight of at most 65280 in 65536 does not lift it. Erased pixels rest at 0.
// A tile of pixels that all rest stays as it is under every mask and opacity.
// Holds for as long as nobody else writes to the canvas; serves canvases of up to 1024 pixels a side.
class SettledTiles {
public:
    SettledTiles() = default;
    // pixels: looks closer, where dabs meet tiles that do not rest; borrowed, null: nobody does.
    explicit SettledTiles(SettledPixels* pixels) : pixels_(pixels) {}

    // What the dabs are; what was found out about others is forgotten.
    //   pixel  as its four channels lie in memory, alpha 255; 0 for dabs that erase
    //   reach  no dab holds a pixel further from its middle, in rows or columns
    void Serve(const Image& canvas, std::uint32_t pixel, std::int32_t reach);

    // True: every pixel of the canvas under `dab` rests.
    [[nodiscard]] bool Hold(const Rect& dab) const;
    // The same of every dab whose middle lies in the same cell of places, where that was marked: many middles cost no
    // more than a look at one bit.
    //   column, row  of a middle on the canvas, from its first ones
    [[nodiscard]] bool HoldMiddle(std::int32_t column, std::int32_t row) const {
        return (settledCells_[static_cast<std::size_t>(row / cellSide)] >> (column / cellSide) & 1) != 0;
    }
    [[nodiscard]] bool HoldAnyMiddle() const { return holdAnyMiddle_; }
    // A dab with its middle there was held: now and then marks the cell if all of its dabs are.
    void MarkMiddle(double x, double y);
    [[nodiscard]] const Rect& Area() const { return area_; }
    // A dab was painted: now and then looks at the tiles in its middle, at a row of a wide one's, at all of a huge
    // one's, and rarely at all that may be erased.
    void Look(const Rect& dab);

    // True: the next dab is one to ask `RestlessRows` about. Never where nobody looks closer.
    [[nodiscard]] bool LooksCloser();
    // The rows of a part of a dab that may change under its mask, as `SettledPixels` knows them.
    [[nodiscard]] Rect RestlessRows(const Image& mask, const Rect& dab, const Rect& part) const;
    // Those rows were painted.
    void LookAtPixels(const Rect& rows);
    // Whether the last dab that was not passed over changed anything.
    void TellLast(bool wasHeld) { heldLast_ = wasHeld; }
    [[nodiscard]] bool HeldLast() const { return heldLast_; }
    // Null where nobody looks closer.
    [[nodiscard]] const SettledPixels* Pixels() const { return canvas_ != nullptr ? pixels_ : nullptr; }

    // Calls `paint` with parts of the dab on the canvas that hold every pixel that does not rest, none of them twice.
    // Of a dab that is not wide it is all of it.
    template <typename Paint>
    void VisitRestless(const Rect& dab, Paint&& paint) const {
        const Rect on = dab.Intersection(area_);
        if (canvas_ == nullptr || dab.Width() < wide || !on.IsValid()) return paint(dab);
        Rect part;  // rows of tiles that begin and end alike are one
        for (std::int32_t y = on.y0; y <= on.y1;) {
            const std::int32_t row = (y - area_.y0) / tileSide;
            const std::int32_t lastY = std::min(on.y1, area_.y0 + row * tileSide + tileSide - 1);
            const Rect restless = RestlessOfRow(row, {on.x0, y, on.x1, lastY});
            if (part.IsValid() && restless.IsValid() && restless.x0 == part.x0 && restless.x1 == part.x1) {
                part.y1 = restless.y1;
            } else {
                if (part.IsValid()) paint(part);
                part = restless;
            }
            y = lastY + 1;
        }
        if (part.IsValid()) paint(part);
    }

    // True: a channel of a canvas under a colour's channel rests there.
    [[nodiscard]] static constexpr bool Rests(std::uint8_t channel, std::uint8_t ofColour) {
        return channel == ofColour || channel + 1 == ofColour;
    }

private:
    static constexpr std::int32_t wide = 32;  // pixels
    static constexpr std::int32_t tileSide = 8;
    static constexpr std::int32_t mostTiles = 128;  // a side
    static constexpr std::int32_t wordBits = 64;
    static constexpr std::int32_t cellSide = 16;
    static_assert(mostTiles * tileSide == wordBits * cellSide);

    [[nodiscard]] bool IsSettled(std::int32_t column, std::int32_t row) const;
    [[nodiscard]] Rect TileAt(std::int32_t column, std::int32_t row) const;
    [[nodiscard]] bool Find(std::int32_t column, std::int32_t row) const;
    void LookAt(std::int32_t column, std::int32_t row);
    void LookAtAll(const Rect& part);
    // From the first to the last of a row's tiles that are not settled; not valid where there is none.
    [[nodiscard]] Rect RestlessOfRow(std::int32_t row, Rect pixels) const;

    const Image* canvas_ = nullptr;    // not owned; null: none that can be served
    SettledPixels* pixels_ = nullptr;  // not owned
    std::uint32_t closerLooks_ = 0;
    Rect area_;
    std::uint32_t pixel_ = 0;
    std::int32_t reach_ = 0;
    std::uint32_t looks_ = 0;
    std::uint32_t marks_ = 0;
    bool holdAnyMiddle_ = false;
    bool heldLast_ = false;
    std::array<std::uint64_t, wordBits> settledCells_{};                                // a word for each row of cells
    std::array<std::array<std::uint64_t, mostTiles / wordBits>, mostTiles> settled_{};  // by row, then column
};

}  // namespace chalkpane
