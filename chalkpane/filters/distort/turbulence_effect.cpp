#include "chalkpane/filters/distort/turbulence_effect.h"

#include <algorithm>
#include <array>
#include <mutex>

#include "chalkpane/filters/distort/edge_choices.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/filters/work_area.h"

namespace chalkpane {
namespace {

constexpr std::uint8_t edgesCode = 2;
constexpr std::int32_t largestSupportRadius =
    1000;  // pixels that a picture may grow by; far beyond what a control offers

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

std::int32_t TurbulenceEffect::SupportRadius() const {
    return std::clamp(Truncated(m_amount), 0, largestSupportRadius);
}

Rect TurbulenceEffect::OutputRegion(const Rect& /*rect*/, const Rect& region) const {
    return Grown(region, SupportRadius());
}

void TurbulenceEffect::MapRect(Rect& out, const Rect& rect, bool expand) const {
    out = expand ? Grown(rect, SupportRadius()) : InputRegion(rect, rect);
}

void TurbulenceEffect::Prepare() {
    // KEEP: a flag of this class alone. Marble has its own and builds the shared table once more.
    static std::once_flag built;
    std::call_once(built, NoiseLattice::BuildShared);
    m_lattice = NoiseLattice::Shared();
}

void TurbulenceEffect::MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const {
    MapRow(x, y, {&sourceX, 1}, {&sourceY, 1});
}

void TurbulenceEffect::MapRow(std::int32_t x, std::int32_t y, std::span<float> sourceX,
                              std::span<float> sourceY) const {
    const float inverse = 1.0F / static_cast<float>(m_latticeSize);
    const float amplitude = 2.0F * m_amount;
    const auto row = static_cast<float>(y);
    std::int64_t first = x;  // past the last column there may be no more of the plane
    constexpr std::size_t block = 256;
    std::array<float, block> places;
    while (!sourceX.empty()) {
        const std::size_t count = std::min(block, sourceX.size());
        const auto columnAt = [start = static_cast<std::int32_t>(first)](std::size_t i) {
            return static_cast<float>(start + static_cast<std::int32_t>(i));
        };
        for (std::size_t i = 0; i < count; ++i) places[i] = columnAt(i) * inverse;
        m_lattice->TurbulenceRow(std::span(places).first(count), row * inverse, sourceX.first(count),
                                 sourceY.first(count));
        for (std::size_t i = 0; i < count; ++i) {
            sourceX[i] = columnAt(i) + amplitude * sourceX[i];
            sourceY[i] = row + amplitude * sourceY[i];
        }
        first += static_cast<std::int64_t>(count);
        sourceX = sourceX.subspan(count);
        sourceY = sourceY.subspan(count);
    }
}

}  // namespace chalkpane
