#pragma once

#include "chalkpane/brush/dab_stretch.h"
#include "chalkpane/composite/settled_tiles.h"

namespace chalkpane {

// Dabs along one stretch of a stroke that change nothing, because all pixels under them are settled: only where they
// fall is of interest, as the next that changes something is placed by them.
class SettledStretch {
public:
    // Has none to pass over.
    SettledStretch() = default;
    // Both borrowed.
    SettledStretch(const SettledTiles& tiles, const CopyRects& rects)
        : tiles_(rects.keepsPlaces ? &tiles : nullptr), rects_(&rects) {}

    // Likely: after a dab that changed nothing, if only cells of middles or single pixels can tell.
    [[nodiscard]] bool HoldsAny() const {
        return tiles_ != nullptr && (tiles_->HoldAnyMiddle() || (PixelsToAsk() != nullptr && tiles_->HeldLast()));
    }

    // Passes over the dabs that follow until the curve ends, or until one that is not surely settled.
    void Pass(const SplineSearch& search, DabProgress& progress) const;
    void PassPlain(const SplineSearch& search, DabProgress& progress) const;
    // Needs AVX2, and is there where `builtWithAvx2`.
    void PassAvx2(const SplineSearch& search, DabProgress& progress) const;

private:
    struct Passed;

    // Null where there are none, or the masks are none to ask for.
    [[nodiscard]] const SettledPixels* PixelsToAsk() const {
        return rects_->masks.front().top != nullptr ? tiles_->Pixels() : nullptr;
    }

    const SettledTiles* tiles_ = nullptr;
    const CopyRects* rects_ = nullptr;
};

}  // namespace chalkpane
