#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "chalkpane/image/image.h"
#include "chalkpane/image/rect.h"

namespace chalkpane {

// The canvas as it was after so many entries of a drawing, at several places of it, so that what changes is painted
// from the nearest place on and not from the beginning.
//
// A checkpoint is made of tiles, and one that did not change since the checkpoint before is shared with it. What makes
// tiles may throw std::bad_alloc.
class InkCheckpoints {
public:
    // Strokes from one checkpoint to the next.
    static constexpr std::size_t interval = 16;
    // More than these are thinned out where they are oldest.
    static constexpr std::size_t most = 32;

    // Asks whether an entry from the first to before the last paints inside the rectangle.
    using IsPainted = std::function<bool(std::size_t first, std::size_t last, const Rect& area)>;

    // The number of entries of the latest checkpoint that has at most so many; 0 is always there: the blank canvas.
    [[nodiscard]] std::size_t LatestUpTo(std::size_t entries) const;
    [[nodiscard]] std::size_t Latest() const { return checkpoints_.empty() ? 0 : checkpoints_.back().entries; }
    [[nodiscard]] bool Has(std::size_t entries) const;

    // Puts the part of it back on the canvas. `entries`: as LatestUpTo answers.
    void Restore(std::size_t entries, Image& canvas, const Rect& region) const;
    // Makes the checkpoint, the latest so far, or renews the part of one that is there.
    void Store(std::size_t entries, const Image& canvas, const Rect& region, const IsPainted& isPainted);
    // Forgets those of more entries.
    void DropBeyond(std::size_t entries);

    // Tiles that exist, shared ones counted once, for tests of what it costs.
    [[nodiscard]] std::size_t Tiles() const;

private:
    static constexpr std::int32_t tileSide = 64;
    static constexpr std::size_t tileBytes = std::size_t{tileSide} * tileSide * 4;
    using Tile = std::array<std::byte, tileBytes>;
    using SharedTile = std::shared_ptr<const Tile>;  // null: blank

    struct Checkpoint {
        std::size_t entries = 0;
        std::vector<SharedTile> tiles;  // rows of them, from the canvas's least y on
    };

    [[nodiscard]] const Checkpoint* Find(std::size_t entries) const;
    void ThinOut();

    std::vector<Checkpoint> checkpoints_;  // by their number of entries
};

}  // namespace chalkpane
