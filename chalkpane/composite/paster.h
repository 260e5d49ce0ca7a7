#pragma once

#include <cstdint>

#include "chalkpane/composite/paste_record.h"
#include "chalkpane/image/pixel_format.h"
#include "chalkpane/parameters/parameter_table.h"

namespace chalkpane {

// Composites a whole image over another, with an opacity.
//
//   source   4 channels; premultiplied by alpha when its flag is set
//   target   4 channels for `Paste` and `Replace`, 1 for the others; not the same buffer as another image here
//   mask     1 channel
//   rect     canvas pixels, inclusive; clipped to all images, so it may lie anywhere
//   clip     1 channel, or 4 of which alpha counts; null: none
//
// Borrows all images for the call. All images have one depth. A paste without overlap, or of images that do not fit one
// another, changes nothing; so does one at opacity 0 or below or NaN, but for `Replace`.
// Thread: the brushes'; the rows of `Paste` and `Replace` run on the workers, the others stay on the caller's.
class Paster : public WithParameters<Paster, ParameterisedObject>, public ImageChannels {
public:
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<Paster>>({
            {0, "Opacity", "Paste Opacity", 1.0, {0, 1}, &Paster::opacity, percent},
            {1, "Visible", "Visible", true, {}, &Paster::visible},
        });
    }

    virtual void Paste(const Image& source, Image& target, const Rect& rect, std::int32_t reserved, const Image* clip,
                       Clip clipInverted);
    // The source's red channel, by its alpha, onto a target of one channel.
    virtual void PasteOnto(const Image& source, Image& target, const Rect& rect, std::int32_t reserved);
    // One channel onto one channel: coverage adds up.
    virtual void PasteMaskOnto(const Image& mask, Image& target, const Rect& rect);
    // A constant in the target's channel range, through a mask.
    virtual void PasteValueOnto(std::uint16_t value, const Image& mask, Image& target, const Rect& rect);
    // As `Paste`, but the parts of `rect` outside the source, and all of it if nothing can be pasted, become zero.
    virtual void Replace(const Image& source, Image& target, const Rect& rect, std::int32_t reserved, const Image* clip,
                         Clip clipInverted);
    [[nodiscard]] virtual Rect InputRegion(const Rect& region) const { return region; }
    [[nodiscard]] virtual Rect OutputRegion(const Rect& region) const { return region; }

    // 0.0 .. 1.0, not clamped.
    void SetOpacity(double value) { opacity = value; }
    // Multiplies the opacity until removed.
    void SetFactor(float value) {
        factor = value;
        useFactor = true;
    }
    void RemoveFactor() { useFactor = false; }
    void SetVisible(bool value) { visible = value; }

private:
    [[nodiscard]] double TakeOpacity() const;

    double workingOpacity = 0.0;  // of the paste under way
    double opacity = 1.0;
    bool useFactor = false;
    float factor = 1.0F;
    bool visible = true;
    PasteRecord record;  // of the paste under way
};

}  // namespace chalkpane
