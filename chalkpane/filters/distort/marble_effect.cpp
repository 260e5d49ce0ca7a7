#include "chalkpane/filters/distort/marble_effect.h"

#include <cmath>
#include <mutex>

#include "chalkpane/filters/distort/edge_choices.h"
#include "chalkpane/parameters/parameter_def.h"

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
    static std::once_flag built;
    std::call_once(built, NoiseLattice::BuildShared);
    m_lattice = NoiseLattice::Shared();
}

void MarbleEffect::MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const {
    MapRow(x, y, {&sourceX, 1}, {&sourceY, 1});
}

void MarbleEffect::MapRow(std::int32_t x, std::int32_t y, std::span<float> sourceX, std::span<float> sourceY) const {
    const float scale = m_scale * 100.0F;
    const auto row = static_cast<float>(y);
    const auto columnAt = [x](std::size_t i) { return static_cast<float>(x + static_cast<std::int32_t>(i)); };
    for (std::size_t i = 0; i < sourceX.size(); ++i) sourceX[i] = columnAt(i) / scale;
    m_lattice->NoiseRow(sourceX, row / scale, sourceY);
    for (std::size_t i = 0; i < sourceX.size(); ++i) {
        const std::size_t ring = RingOf(sourceY[i]);
        sourceX[i] = columnAt(i) + m_deltaX[ring];
        sourceY[i] = row + m_deltaY[ring];
    }
}

std::size_t MarbleEffect::RingOf(float noise) {
    // Clamped as a float, NaN to 0, before it is truncated.
    const float place = (noise + 1.0F) * 127.0F;
    const float positive = place > 0.0F ? place : 0.0F;
    return static_cast<std::size_t>(static_cast<std::int32_t>(positive < 255.0F ? positive : 255.0F));
}

}  // namespace chalkpane
