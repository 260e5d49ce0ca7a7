#include "chalkpane/filters/filter_prototypes.h"

#include "chalkpane/filters/blurs/softener.h"
#include "chalkpane/filters/blurs/super_softener.h"
#include "chalkpane/filters/blurs/threshold_blur.h"
#include "chalkpane/filters/colour/auto_eq_cc.h"
#include "chalkpane/filters/colour/black_white_cc.h"
#include "chalkpane/filters/colour/brightness_cc.h"
#include "chalkpane/filters/colour/chroma_cc.h"
#include "chalkpane/filters/colour/colour_dodge_cc.h"
#include "chalkpane/filters/colour/colour_jitter_filter.h"
#include "chalkpane/filters/colour/component_cc.h"
#include "chalkpane/filters/colour/hue_cc.h"
#include "chalkpane/filters/colour/invert_cc.h"
#include "chalkpane/filters/colour/luma_cc.h"
#include "chalkpane/filters/colour/posterize_effect.h"
#include "chalkpane/filters/colour/rgb_channel_cc.h"
#include "chalkpane/filters/colour/solarize_effect.h"
#include "chalkpane/filters/colour/subtract_cc.h"
#include "chalkpane/filters/colour/tint_filter.h"
#include "chalkpane/filters/distort/jitter_effect.h"
#include "chalkpane/filters/distort/marble_effect.h"
#include "chalkpane/filters/distort/turbulence_effect.h"
#include "chalkpane/filters/effects/add_noise_effect.h"
#include "chalkpane/filters/effects/emboss_effect.h"
#include "chalkpane/filters/effects/film_grain_effect.h"
#include "chalkpane/filters/effects/halftone_effect.h"
#include "chalkpane/filters/effects/oil_effect.h"
#include "chalkpane/filters/effects/pixellate_effect.h"
#include "chalkpane/filters/effects/redeye_filter.h"
#include "chalkpane/filters/effects/voronoi_effect.h"
#include "chalkpane/filters/neighbourhood/dilate_filter.h"
#include "chalkpane/filters/neighbourhood/edge_detect_filter.h"
#include "chalkpane/filters/neighbourhood/median_filter.h"

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
