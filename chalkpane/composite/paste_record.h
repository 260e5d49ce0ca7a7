#pragma once

#include <algorithm>
#include <cstdint>

#include "chalkpane/image/image.h"

namespace chalkpane {

// What the pasters share: the words of a paste and the arithmetic of its region.

// What a clip image does: `Limiting` keeps the paste within the clip's rectangle and lowers the opacity by its values;
// `Inverted` keeps the paste out where the clip has values, and lets it be outside the clip's rectangle.
enum class Clip : std::uint8_t { Limiting, Inverted };

// What a dab does to the alpha of the target: `Replace` moves it towards the source's pixel, transparency included;
// `Over` composites the source over it.
enum class PasteBehaviour : std::uint8_t { Replace, Over };

// One paste as its row functions see it; lives as long as the call. The images are not owned.
struct PasteRecord {
    const Image* source = nullptr;
    const Image* mask = nullptr;
    Image* target = nullptr;
    Rect rect;
    const Image* clip = nullptr;
    Clip clipInverted = Clip::Limiting;
};

// `rect` within the mask, if there is one, within a limiting clip, and within the target; empty when nothing remains.
inline Rect PasteRegion(const Rect& rect, const Image* mask, const Image& target, const Image* clip = nullptr,
                        Clip clipInverted = Clip::Limiting) {
    Rect region = rect.Intersection(target);
    if (mask != nullptr) region = region.Intersection(*mask);
    if (clip != nullptr && clipInverted == Clip::Limiting) region = region.Intersection(*clip);
    return region;
}

// True when the image can be read at this depth; null is no image and always can.
inline bool HasDepthOf(const Image& model, const Image* image) {
    return image == nullptr || image->GetDepth() == model.GetDepth();
}

// An opacity in the scale of an operation: truncated, and limited to `limit`. NaN, and all from 0 down, is 0.
inline std::int32_t IntegerOpacity(double opacity, double factor, std::int32_t limit) {
    const double scaled = opacity * factor;
    if (!(scaled > 0.0)) return 0;
    return scaled < limit ? static_cast<std::int32_t>(scaled) : limit;
}

}  // namespace chalkpane
