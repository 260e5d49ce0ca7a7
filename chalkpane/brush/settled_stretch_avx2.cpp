#include "chalkpane/brush/dab_stretch_avx2.h"
#include "chalkpane/brush/settled_stretch.h"

#if defined(__x86_64__)

namespace chalkpane {
namespace {

class PassedAvx2 {
public:
    [[gnu::target("avx2")]] PassedAvx2(const SettledTiles& tiles, const CopyRects& rects)
        : tiles_(tiles),
          rects_(rects),
          low_(_mm_set_pd(tiles.Area().y0, tiles.Area().x0)),
          high_(_mm_set_pd(tiles.Area().y1, tiles.Area().x1)) {}

    [[nodiscard, gnu::target("avx2")]] bool Holds(__m128d place) const {
        if (_mm_movemask_pd(_mm_and_pd(_mm_cmpge_pd(place, low_), _mm_cmplt_pd(place, high_))) != 3) return false;
        const __m128i pixel = _mm_cvttpd_epi32(_mm_sub_pd(place, low_));
        return tiles_.HoldMiddle(_mm_cvtsi128_si32(pixel), _mm_extract_epi32(pixel, 1));
    }
    [[nodiscard]] const Rect& RectOf(std::size_t copy) const { return rects_.ofCopy[copy]; }
    [[gnu::target("avx2")]] void Paint(__m128i /*rect*/, std::size_t /*copy*/) const {}

private:
    const SettledTiles& tiles_;
    const CopyRects& rects_;
    __m128d low_;
    __m128d high_;
};

}  // namespace

[[gnu::target("avx2")]] void SettledStretch::PassAvx2(const SplineSearch& search, DabProgress& progress) const {
    DabStretchAvx2::Follow(search, rects_->offset, PassedAvx2(*tiles_, *rects_), progress);
}

}  // namespace chalkpane

#endif
