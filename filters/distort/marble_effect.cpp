#include "filters/distort/marble_effect.h"

#include <algorithm>
#include <cmath>

#include "filters/distort/edge_choices.h"
#include "filters/noise_lattice.h"
#include "filters/row_filter.h"
#include "parameters/parameter_def.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t edgesCode = 3;

}  // namespace

std::span<const std::string_view> MarbleEffect::Choices(std::uint8_t code) {
    return code == edgesCode ? std::span(edgeLabels).first(4) : std::span<const std::string_view>();
}

void MarbleEffect::setParameter(ParameterValue* value) {
    FilterClass::setParameter(value);
    SettleEdgeMode();
}

std::string_view MarbleEffect::EnumLabel(const ParameterDef& definition, std::int32_t index) const {
    return FilterClass::EnumLabel(definition, index == edgeClamp ? 3 : index);
}

void MarbleEffect::Prepare() {
    const float distance = m_distance * 30.0F;
    for (std::size_t i = 0; i < m_deltaX.size(); ++i) {
        const float angle = static_cast<float>(i) * 6.2831854820251465F * 0.00390625F * 60.0F * m_turbulence;
        m_deltaX[i] = -std::sin(angle) * distance;
        m_deltaY[i] = std::cos(angle) * distance;
    }
    // KEEP: a flag of this class alone. Turbulence has its own and builds the shared table once more.
    static bool built = false;
    if (!built) NoiseLattice::Shared().Build();
    built = true;
}

void MarbleEffect::MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const {
    const float scale = m_scale * 100.0F;
    const auto column = static_cast<float>(x);
    const auto row = static_cast<float>(y);
    const float noise = NoiseLattice::Shared().Noise2(column / scale, row / scale);
    const auto i = static_cast<std::size_t>(std::clamp(Truncated((noise + 1.0F) * 127.0F), 0, 255));
    sourceX = column + m_deltaX[i];
    sourceY = row + m_deltaY[i];
}

}  // namespace chalkpane
