#include "filters/filter_prototypes.h"

#include "filters/blurs/softener.h"
#include "filters/blurs/super_softener.h"
#include "filters/blurs/threshold_blur.h"
#include "filters/colour/auto_eq_cc.h"
#include "filters/colour/black_white_cc.h"
#include "filters/colour/brightness_cc.h"
#include "filters/colour/chroma_cc.h"
#include "filters/colour/colour_dodge_cc.h"
#include "filters/colour/colour_jitter_filter.h"
#include "filters/colour/component_cc.h"
#include "filters/colour/hue_cc.h"
#include "filters/colour/invert_cc.h"
#include "filters/colour/luma_cc.h"
#include "filters/colour/posterize_effect.h"
#include "filters/colour/rgb_channel_cc.h"
#include "filters/colour/solarize_effect.h"
#include "filters/colour/subtract_cc.h"
#include "filters/colour/tint_filter.h"
#include "filters/distort/jitter_effect.h"
#include "filters/distort/marble_effect.h"
#include "filters/distort/turbulence_effect.h"
#include "filters/effects/add_noise_effect.h"
#include "filters/effects/emboss_effect.h"
#include "filters/effects/film_grain_effect.h"
#include "filters/effects/halftone_effect.h"
#include "filters/effects/oil_effect.h"
#include "filters/effects/pixellate_effect.h"
#include "filters/effects/redeye_filter.h"
#include "filters/effects/voronoi_effect.h"
#include "filters/neighbourhood/dilate_filter.h"
#include "filters/neighbourhood/edge_detect_filter.h"
#include "filters/neighbourhood/median_filter.h"

namespace chalkpane {
namespace {

using MakeFilter = std::unique_ptr<Filter> (*)();

template <typename FilterClass>
std::unique_ptr<Filter> Make() {
    return std::make_unique<FilterClass>();
}

// The family, one line a class: `Make<InvertCC>,`.
const std::vector<MakeFilter>& Family() {
    static const std::vector<MakeFilter> family{
        Make<AutoEqCC>,        Make<BlackWhiteCC>,     Make<ChromaCC>,       Make<ComponentCC>,
        Make<RGBChannelCC>,    Make<BrightnessCC>,     Make<LumaCC>,         Make<HueCC>,
        Make<InvertCC>,        Make<SubtractCC>,       Make<TintFilter>,     Make<ColourDodgeCC>,
        Make<PixellateEffect>, Make<TurbulenceEffect>, Make<OilEffect>,      Make<SolarizeEffect>,
        Make<AddNoiseEffect>,  Make<FilmGrainEffect>,  Make<MarbleEffect>,   Make<EmbossEffect>,
        Make<VoronoiEffect>,   Make<PosterizeEffect>,  Make<HalftoneEffect>, Make<JitterEffect>,
        Make<DilateFilter>,    Make<Softener>,         Make<SuperSoftener>,  Make<ThresholdBlur>,
        Make<MedianFilter>,    Make<EdgeDetectFilter>, Make<RedeyeFilter>,   Make<ColourJitterFilter>,
    };
    return family;
}

}  // namespace

std::vector<std::unique_ptr<Filter>> MakeFilterPrototypes() {
    std::vector<std::unique_ptr<Filter>> prototypes;
    prototypes.reserve(Family().size());
    for (const MakeFilter make : Family()) prototypes.push_back(make());
    return prototypes;
}

}  // namespace chalkpane
