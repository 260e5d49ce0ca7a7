#include "chalkpane/filters/noise/grain_lanes.h"

namespace chalkpane {

GrainLanes::GrainLanes(std::size_t pixels, const GrainDraws& draws)
    : m_draws(draws), m_stretch((pixels + lanes * 8 - 1) / (lanes * 8) * 8) {
    const GrainJump stretch = GrainJump::Of(m_stretch * draws.PerPixel());
    GrainJump jump;
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        m_before[lane] = jump.before;
        m_at[lane] = jump.at;
        m_factors[lane] = jump.factor;
        jump = jump.Then(stretch);
    }
}

}  // namespace chalkpane
