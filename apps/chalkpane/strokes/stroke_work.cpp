#include "apps/chalkpane/strokes/stroke_work.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "chalkpane/brush/brush_choices.h"
#include "chalkpane/brush/sources/brush_source.h"
#include "chalkpane/filters/filter.h"
#include "cli/error.h"

namespace chalkpane::app {
namespace {

constexpr double passesOfAFilter = 500;        // a wide median or a curve of 14 bits costs as much for each pixel
constexpr double leastPixelsOfAFilter = 2000;  // what it prepares does not shrink with the dab
constexpr double passesOfAProfile = 65;        // the shape and its shifted copies
constexpr double passesOfMatchPath = 10;       // each dab's mask is rotated to lie along the path
constexpr double passesOfPickup = 7;           // each dab takes what lies under it along
constexpr double passesOfWords = 3;            // 14 bits take four times as long as 8
constexpr double passesOfBlend = 12;           // with what lies under a dab; the four modes of HSV take some more
constexpr int finalSteps = 4;                  // with which a stroke ends

double NumberOf(const ParameterValue* value) {
    double number = 0.0;
    if (value != nullptr) value->getDouble(number);
    return number;
}

double PixelsOf(const Rect& area) {
    return area.IsValid() ? static_cast<double>(area.Width()) * static_cast<double>(area.Height()) : 1.0;
}

double Distance(const StrokePoint& from, const StrokePoint& to) { return std::hypot(to.x - from.x, to.y - from.y); }

// The curve from one step to the next is no longer than the longest of the edges that bend it.
double MostDabsOfStep(double longestEdge, double newestEdge, const BrushPace& pace) {
    double spacing = pace.spacing;
    if (pace.shortens && newestEdge > 0.0) spacing = std::min(spacing, newestEdge);
    const double places = SplineIterator::steps;
    return spacing > 0.0 ? std::min(places, longestEdge / spacing + 1) : places;
}

}  // namespace

BrushPace PaceOf(BasicBrush& brush, Depth depth) {
    bool adjusts = false;
    std::uint8_t spacingType = 0;
    if (const ParameterValue* const value = brush.Value(BrushParameter::AdjustSpacing)) value->getBoolean(adjusts);
    if (const ParameterValue* const value = brush.Value(BrushParameter::SpacingType))
        value->getEnumeration(spacingType);
    double width = brush.Source()->GetSize();
    // Across a flattened dab the way is shorter by that factor.
    if (adjusts) width /= std::max(1.0, std::abs(NumberOf(brush.SourceValue(SourceParameter::Flatness))));
    BrushPace pace;
    pace.spacing = std::abs(width * NumberOf(brush.Value(BrushParameter::Spacing)));
    pace.shortens = static_cast<SpacingType>(spacingType) != SpacingType::Keep;
    const double area = std::max(PixelsOf(brush.Source()->DabArea()), PixelsOf(brush.Source()->TargetArea()));
    bool matchesPath = false;
    if (const ParameterValue* const value = brush.Value(BrushParameter::MatchPath)) value->getBoolean(matchesPath);
    const bool picksUp = brush.Source()->GetPickupMode() != PickupMode::Off;
    std::uint8_t blendMode = 0;
    if (const ParameterValue* const value = brush.Value(BrushParameter::BlendMode)) value->getEnumeration(blendMode);
    const double passes = 1 + (matchesPath ? passesOfMatchPath : 0) + (picksUp ? passesOfPickup : 0) +
                          (depth == Depth::Fourteen ? passesOfWords : 0) + (blendMode != 0 ? passesOfBlend : 0);
    pace.pixels = passes * area +
                  passesOfAFilter * std::max(area, leastPixelsOfAFilter) * static_cast<double>(brush.Filters().size());
    pace.preparedPixels = area * passesOfAProfile;
    return pace;
}

double MostDabs(std::span<const StrokePoint> points, const BrushPace& pace) {
    if (points.empty()) return 0.0;
    std::array<double, 3> edges{};  // of the last four samples
    double dabs = 1.0;
    const auto step = [&](double edge) {
        edges = {edges[1], edges[2], edge};
        dabs += MostDabsOfStep(*std::ranges::max_element(edges), edge, pace);
    };
    for (std::size_t i = 1; i < points.size(); ++i) step(Distance(points[i - 1], points[i]));
    for (int i = 0; i < finalSteps; ++i) step(0.0);
    return dabs;
}

void WorkLimit::CountBrush(const BrushPace& pace, const std::string& place) {
    m_pixels += pace.preparedPixels;
    Check(place);
}

void WorkLimit::CountStroke(std::span<const StrokePoint> points, const BrushPace& pace, const std::string& place) {
    const double dabs = MostDabs(points, pace);
    m_dabs += dabs;
    m_pixels += dabs * pace.pixels;
    Check(place);
}

void WorkLimit::Check(const std::string& place) const {
    if (m_dabs <= mostDabs && m_pixels <= mostPixels) return;
    throw cli::Error(
        place, {},
        "up to here the file asks for more dabs than can be painted; take a wider Spacing, a smaller Size, "
        "or fewer points");
}

}  // namespace chalkpane::app
