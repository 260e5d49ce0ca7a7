#pragma once

#include <cstdint>

#include "image/image.h"

namespace chalkpane {

// What the pasters share: the words of a paste and the arithmetic of its region.

// What a clip image does: `Limiting` keeps the paste within the clip's rectangle and lowers the opacity by its values;
// `Inverted` keeps the paste out where the clip has values, and lets it be outside the clip's rectangle.
enum class Clip : std::uint8_t { Limiting, Inverted };

// What a dab does to the alpha of the target: `Replace` moves it towards the source's pixel, transparency included;
// `Over` lays the source over it.
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

}  // namespace chalkpane
