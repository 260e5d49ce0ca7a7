#include "filters/distort/turbulence_effect.h"

#include <algorithm>

#include "filters/distort/edge_choices.h"
#include "filters/noise_lattice.h"
#include "filters/row_filter.h"
#include "filters/work_area.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t edgesCode = 2;
constexpr std::int32_t largestReach = 1000;  // pixels that a picture may grow by; far beyond what a control offers

}  // namespace

std::span<const std::string_view> TurbulenceEffect::Choices(std::uint8_t code) {
    return code == edgesCode ? std::span(edgeLabels).first(3) : std::span<const std::string_view>();
}

void TurbulenceEffect::setParameter(ParameterValue* value) {
    FilterClass::setParameter(value);
    SettleEdgeMode();
}

void TurbulenceEffect::Apply(const Image& source, std::unique_ptr<Image>& result, bool fast, const Rect* region,
                             bool expand) {
    if (!IsActive()) return ApplyAsCopy(source, result);
    DistortFilter::Apply(source, result, fast, region, expand);
}

std::int32_t TurbulenceEffect::Reach() const { return std::clamp(Truncated(m_amount), 0, largestReach); }

Rect TurbulenceEffect::OutputRegion(const Rect& /*rect*/, const Rect& region) const { return Grown(region, Reach()); }

void TurbulenceEffect::MapRect(Rect& out, const Rect& rect, bool expand) const {
    out = expand ? Grown(rect, Reach()) : InputRegion(rect, rect);
}

void TurbulenceEffect::Prepare() {
    // KEEP: a flag of this class alone. Marble has its own and builds the shared table once more.
    static bool built = false;
    if (!built) NoiseLattice::Shared().Build();
    built = true;
}

void TurbulenceEffect::MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const {
    const float inverse = 1.0F / static_cast<float>(m_latticeSize);
    const float amplitude = 2.0F * m_amount;
    const auto column = static_cast<float>(x);
    const auto row = static_cast<float>(y);
    const auto noise = NoiseLattice::Shared().TurbulencePair(column * inverse, row * inverse);
    sourceX = column + amplitude * noise.x;
    sourceY = row + amplitude * noise.y;
}

}  // namespace chalkpane
