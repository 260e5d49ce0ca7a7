#pragma once

#include <cstdint>

namespace chalkpane {

// How a texture unit composites the canvas with what came before it. The canvas is premultiplied by its alpha.
enum class Combiner {
    StrokesOverBase,   // base texture: the stroke covers the container's own look, alpha adds
    StrokesCutByBase,  // base texture: the base picture's alpha cuts out the strokes
    CoverPrevious,     // multi-texture, first of two stages: previous * (1 - a)
    AddStrokes,        // multi-texture, second stage: + texture
};

// Sets the combiner of the active texture unit.
void SetCombiner(Combiner combiner);

}  // namespace chalkpane
