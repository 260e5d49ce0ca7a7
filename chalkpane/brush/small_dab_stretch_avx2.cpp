#include "chalkpane/brush/dab_stretch_avx2.h"
#include "chalkpane/brush/small_dab_stretch.h"

#if defined(__x86_64__)
#include "chalkpane/composite/small_dab_avx2.h"

namespace chalkpane {
namespace {

// The dabs of a stretch as blocks.
class BlocksAvx2 {
public:
    [[gnu::target("avx2")]] BlocksAvx2(const SmallDabTarget& canvas, const SmallMasks& masks, std::int32_t opacity,
                                       const std::array<double, 2>& low, const std::array<double, 2>& high)
        : colour_(canvas, opacity),
          canvas_(canvas),
          masks_(masks),
          low_(_mm_loadu_pd(low.data())),
          high_(_mm_loadu_pd(high.data())) {}

    [[nodiscard, gnu::target("avx2")]] bool Holds(__m128d place) const {
        return _mm_movemask_pd(_mm_and_pd(_mm_cmpge_pd(place, low_), _mm_cmple_pd(place, high_))) == 3;
    }
    [[nodiscard]] const Rect& RectOf(std::size_t copy) const { return masks_.ofCopy[copy].rect; }
    [[nodiscard, gnu::target("avx2")]] bool Paint(__m128i rect, std::size_t copy) const {
        colour_.Over(canvas_.At(_mm_cvtsi128_si32(rect), _mm_extract_epi32(rect, 3)), canvas_.rowBytes,
                     masks_.ofCopy[copy]);
        return true;
    }

private:
    SmallColourAvx2 colour_;
    const SmallDabTarget& canvas_;
    const SmallMasks& masks_;
    __m128d low_;
    __m128d high_;
};

}  // namespace

[[gnu::target("avx2")]] void SmallDabStretch::PaintAvx2(const SplineSearch& search, std::int32_t opacity,
                                                        DabProgress& progress) const {
    DabStretchAvx2::Follow(search, masks_->offset, BlocksAvx2(canvas_, *masks_, opacity, low_, high_), progress);
}

}  // namespace chalkpane

#endif
