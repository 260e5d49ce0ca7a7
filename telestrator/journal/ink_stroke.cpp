#include "telestrator/journal/ink_stroke.h"

#include <algorithm>
#include <cmath>

#include "chalkpane/brush/basic_brush.h"
#include "chalkpane/brush/profiles/brush_profile.h"

namespace chalkpane {
namespace {

// The brush takes no notice of others.
bool IsUsable(const CanvasPosition& at) {
    return std::abs(at.x) <= BasicBrush::farthest && std::abs(at.y) <= BasicBrush::farthest;  // false for NaN
}

// Of the dabs about their places; none where there are no dabs.
std::int32_t WidestRadius(const InkStroke& stroke) {
    std::int32_t widest = 0;
    for (const InkBrush& brush : stroke.brushes) {
        if (brush.radius <= BrushProfile::maximumRadius) widest = std::max(widest, brush.radius);
    }
    return widest;
}

// A curve stays among its samples, and a dab is as wide as its brush, but for the roundings of its place.
Rect PixelsAround(double minX, double minY, double maxX, double maxY, std::int32_t radius) {
    constexpr std::int32_t roundings = 4;
    Rect area(TruncateToInt(std::floor(minX)), TruncateToInt(std::floor(minY)), TruncateToInt(std::ceil(maxX)),
              TruncateToInt(std::ceil(maxY)));
    area.Inflate(radius + roundings);
    return area;
}

}  // namespace

bool HasColour(const InkStroke& stroke) {
    return std::any_of(stroke.brushes.begin(), stroke.brushes.end(),
                       [](const InkBrush& brush) { return !brush.erases; });
}

Rect InkBounds(const InkStroke& stroke, const Rect& canvas) {
    bool any = false;
    double minX = 0;
    double minY = 0;
    double maxX = 0;
    double maxY = 0;
    for (const PaintStep& step : stroke.steps) {
        if (!IsUsable(step.at)) continue;
        minX = any ? std::min(minX, step.at.x) : step.at.x;
        minY = any ? std::min(minY, step.at.y) : step.at.y;
        maxX = any ? std::max(maxX, step.at.x) : step.at.x;
        maxY = any ? std::max(maxY, step.at.y) : step.at.y;
        any = true;
    }
    if (!any) return {};
    return PixelsAround(minX, minY, maxX, maxY, WidestRadius(stroke)).Intersection(canvas);
}

std::vector<PaintStep> StepsOfHand(const std::vector<HandSample>& hand, const std::vector<std::uint32_t>& brushes) {
    std::vector<PaintStep> steps;
    steps.reserve(hand.size());
    for (std::size_t i = 0; i < hand.size(); ++i) {
        if (hand[i].event == HandEvent::Lift) continue;
        const StrokeStage stage = hand[i].event == HandEvent::Press  ? StrokeStage::Begin
                                  : hand[i].event == HandEvent::Move ? StrokeStage::Continue
                                                                     : StrokeStage::End;
        steps.push_back({stage, hand[i].at, hand[i].pressure, brushes[i]});
    }
    return steps;
}

InkStroke Recoloured(const InkStroke& stroke, std::uint32_t colour) {
    InkStroke recoloured = stroke;
    for (HandSettings& each : recoloured.settings) each.settings.brushColour = colour;
    for (InkBrush& brush : recoloured.brushes) {
        if (!brush.erases) brush.colour = CanvasColour(colour);
    }
    return recoloured;
}

}  // namespace chalkpane
