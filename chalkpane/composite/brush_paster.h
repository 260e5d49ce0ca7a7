#pragma once

#include <cstdint>

#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/composite/paste_record.h"

namespace chalkpane {

// Composites one dab: a colour image through a coverage mask onto a target, with an opacity, an optional clip, and any
// blend mode.
//
//   source   4 channels; where a target is a mask, 1 channel will do
//   mask     coverage, 1 channel, or 4 of which alpha counts; null: full coverage everywhere
//   target   4 channels for `Paste`, 1 for the two mask operations; not the same buffer as another image here
//   rect     canvas pixels, inclusive; clipped to all images, so it may lie anywhere
//   clip     1 channel, or 4 of which alpha counts; null: none
//
// Borrows all images for the call. Allocates nothing. All images have one depth, that of `source`. A paste without
// overlap, with opacity 0 or below or NaN, or of images that do not fit one another changes nothing.
// Thread: the brushes'; the rows of `Paste` run on the workers, the other two stay on the caller's.
class BrushPaster : public BlendingModes {
public:
    virtual void Paste(const Image& source, const Image* mask, Image& target, PasteBehaviour over, const Rect& rect,
                       std::int32_t reserved, const Image* clip, Clip clipInverted);
    // The source's red channel, by its alpha, into a target of one channel. A source of one channel is both.
    virtual void PasteToMask(const Image& source, const Image* mask, Image& target, const Rect& rect);
    // The same with a constant, in the target's channel range, instead of red.
    virtual void PasteValueToMask(const Image& source, const Image* mask, Image& target, const Rect& rect,
                                  std::uint16_t value);
    // What a paste needs around `region`, and what it changes beyond it: nothing.
    [[nodiscard]] virtual Rect InputRegion(const Rect& region) const { return region; }
    [[nodiscard]] virtual Rect OutputRegion(const Rect& region) const { return region; }

    // 0.0 .. 1.0, not clamped. Persists until set again.
    void SetOpacity(double value) { opacity = value; }
    // Index of the blend mode, 0 .. 27. Persists until set again.
    void SetMode(std::uint8_t index) { mode = index; }

private:
    double workingOpacity = 0.0;  // of the paste under way
    double opacity = 1.0;
    PasteRecord record;  // of the paste under way
};

// One for each thread that paints, since a paste reads the opacity and mode that were set before it.
BrushPaster& SharedPaster();

}  // namespace chalkpane
