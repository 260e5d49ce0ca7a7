#include "chalkpane/brush/dab_stretch_avx2.h"
#include "chalkpane/brush/settled_stretch.h"

#if defined(__x86_64__)

namespace chalkpane {
namespace {

class PassedAvx2 {
public:
    [[gnu::target("avx2")]] PassedAvx2(const SettledTiles& tiles, const CopyRects& rects, const SettledPixels* pixels)
        : tiles_(tiles),
          rects_(rects),
          pixels_(pixels),
          low_(_mm_set_pd(tiles.Area().y0, tiles.Area().x0)),
          high_(_mm_set_pd(tiles.Area().y1, tiles.Area().x1)) {}

    [[nodiscard, gnu::target("avx2")]] bool Holds(__m128d place) const {
        if (_mm_movemask_pd(_mm_and_pd(_mm_cmpge_pd(place, low_), _mm_cmplt_pd(place, high_))) != 3) return false;
        const __m128i pixel = _mm_cvttpd_epi32(_mm_sub_pd(place, low_));
        isInCell_ = tiles_.HoldMiddle(_mm_cvtsi128_si32(pixel), _mm_extract_epi32(pixel, 1));
        return isInCell_ || pixels_ != nullptr;
    }
    [[nodiscard]] const Rect& RectOf(std::size_t copy) const { return rects_.ofCopy[copy]; }
    [[nodiscard, gnu::target("avx2")]] bool Paint(__m128i rect, std::size_t copy) const {
        if (isInCell_) return true;
        const Rect& area = tiles_.Area();
        const std::int32_t left = _mm_cvtsi128_si32(rect);
        const std::int32_t top = _mm_extract_epi32(rect, 3);
        if (left < area.x0 || _mm_extract_epi32(rect, 1) < area.y0 || _mm_extract_epi32(rect, 2) > area.x1 ||
            top > area.y1)
            return false;
        return BearMaskAvx2(pixels_->At(left, top), rects_.masks[copy]);
    }

private:
    const SettledTiles& tiles_;
    const CopyRects& rects_;
    const SettledPixels* pixels_;
    __m128d low_;
    __m128d high_;
    mutable bool isInCell_ = false;
};

}  // namespace

[[gnu::target("avx2")]] void SettledStretch::PassAvx2(const SplineSearch& search, DabProgress& progress) const {
    DabStretchAvx2::Follow(search, rects_->offset, PassedAvx2(*tiles_, *rects_, PixelsToAsk()), progress);
}

}  // namespace chalkpane

#endif
