#include "telestrator/journal/ink_checkpoints.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace chalkpane {
namespace {

std::int32_t TilesAcross(std::int32_t pixels, std::int32_t side) { return (pixels + side - 1) / side; }

Rect TileArea(const Rect& canvas, std::size_t index, std::int32_t side) {
    const std::int32_t columns = TilesAcross(canvas.Width(), side);
    const auto number = static_cast<std::int32_t>(index);
    const std::int32_t x = canvas.x0 + number % columns * side;
    const std::int32_t y = canvas.y0 + number / columns * side;
    return Rect(x, y, x + side - 1, y + side - 1);
}

// Where the row of `area` lies in the tile that begins at `tile`.
std::size_t OffsetInTile(const Rect& tile, std::int32_t x, std::int32_t y) {
    const auto row = static_cast<std::size_t>(y - tile.y0);
    return (row * static_cast<std::size_t>(tile.Width()) + static_cast<std::size_t>(x - tile.x0)) * 4;
}

std::size_t BytesAcross(const Rect& area) { return static_cast<std::size_t>(area.Width()) * 4; }

}  // namespace

const InkCheckpoints::Checkpoint* InkCheckpoints::Find(std::size_t entries) const {
    const auto found =
        std::lower_bound(checkpoints_.begin(), checkpoints_.end(), entries,
                         [](const Checkpoint& checkpoint, std::size_t count) { return checkpoint.entries < count; });
    return found != checkpoints_.end() && found->entries == entries ? &*found : nullptr;
}

bool InkCheckpoints::Has(std::size_t entries) const { return Find(entries) != nullptr; }

std::size_t InkCheckpoints::LatestUpTo(std::size_t entries) const {
    std::size_t latest = 0;
    for (const Checkpoint& checkpoint : checkpoints_) {
        if (checkpoint.entries <= entries) latest = checkpoint.entries;
    }
    return latest;
}

void InkCheckpoints::Restore(std::size_t entries, Image& canvas, const Rect& region) const {
    const Checkpoint* const checkpoint = Find(entries);
    const Rect wanted = region.Intersection(canvas);
    if (!wanted.IsValid()) return;
    const std::size_t count = static_cast<std::size_t>(TilesAcross(canvas.Width(), tileSide)) *
                              static_cast<std::size_t>(TilesAcross(canvas.Height(), tileSide));
    for (std::size_t i = 0; i < count; ++i) {
        const Rect tile = TileArea(canvas, i, tileSide);
        const Rect area = tile.Intersection(wanted);
        if (!area.IsValid()) continue;
        const Tile* const pixels = checkpoint != nullptr ? checkpoint->tiles[i].get() : nullptr;
        for (std::int32_t y = area.y0; y <= area.y1; ++y) {
            std::byte* const row = canvas.Address(area.x0, y);
            if (pixels == nullptr) {
                std::memset(row, 0, BytesAcross(area));
            } else {
                std::memcpy(row, pixels->data() + OffsetInTile(tile, area.x0, y), BytesAcross(area));
            }
        }
    }
}

void InkCheckpoints::Store(std::size_t entries, const Image& canvas, const Rect& region, const IsPainted& isPainted) {
    const std::size_t count = static_cast<std::size_t>(TilesAcross(canvas.Width(), tileSide)) *
                              static_cast<std::size_t>(TilesAcross(canvas.Height(), tileSide));
    const std::size_t before = entries == 0 ? 0 : LatestUpTo(entries - 1);
    const Checkpoint* const former = Find(before);
    Checkpoint renewed;
    const Checkpoint* const present = Find(entries);
    if (present != nullptr) renewed = *present;
    renewed.entries = entries;
    renewed.tiles.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Rect tile = TileArea(canvas, i, tileSide);
        const Rect area = tile.Intersection(region).Intersection(canvas);
        if (!area.IsValid()) continue;
        SharedTile& kept = renewed.tiles[i];
        if (!isPainted(before, entries, tile)) {
            kept = former != nullptr ? former->tiles[i] : nullptr;
            continue;
        }
        auto made = kept ? std::make_shared<Tile>(*kept) : std::make_shared<Tile>();
        for (std::int32_t y = area.y0; y <= area.y1; ++y) {
            std::memcpy(made->data() + OffsetInTile(tile, area.x0, y), canvas.Address(area.x0, y), BytesAcross(area));
        }
        kept = std::move(made);
    }
    if (present != nullptr) {
        checkpoints_[static_cast<std::size_t>(present - checkpoints_.data())] = std::move(renewed);
    } else {
        checkpoints_.push_back(std::move(renewed));
        ThinOut();
    }
}

void InkCheckpoints::DropBeyond(std::size_t entries) {
    while (Latest() > entries) checkpoints_.pop_back();
}

void InkCheckpoints::ThinOut() {
    if (checkpoints_.size() <= most) return;
    std::vector<Checkpoint> kept;
    for (std::size_t i = 0; i < checkpoints_.size(); ++i) {
        if (i >= most / 2 || i % 2 == 1) kept.push_back(std::move(checkpoints_[i]));
    }
    checkpoints_ = std::move(kept);
}

std::size_t InkCheckpoints::Tiles() const {
    std::set<const Tile*> tiles;
    for (const Checkpoint& checkpoint : checkpoints_) {
        for (const SharedTile& tile : checkpoint.tiles) {
            if (tile) tiles.insert(tile.get());
        }
    }
    return tiles.size();
}

}  // namespace chalkpane
