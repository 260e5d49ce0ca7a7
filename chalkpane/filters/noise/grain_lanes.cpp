#include "chalkpane/filters/noise/grain_lanes.h"

namespace chalkpane {

GrainLanes::GrainLanes(std::size_t pixels, const GrainDraws& draws)
    : m_draws(draws), m_stretch((pixels + lanes * 8 - 1) / (lanes * 8) * 8), m_starts(m_stretch * draws.PerPixel()) {}

}  // namespace chalkpane
