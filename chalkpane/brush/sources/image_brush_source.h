#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "chalkpane/brush/sources/profiled_brush_source.h"

namespace chalkpane {

// Where a dab reads its picture. Canvas: under the dab. Brush: at the offset from the dab, as a brush that clones does.
enum class ImageFollows : std::uint8_t { Canvas, Brush };

// Dabs cut from a picture.
class ImageBrushSource : public ProfiledBrushSource {
public:
    explicit ImageBrushSource(ImageFollows follows) : followsBrush(follows == ImageFollows::Brush) {}

    // A picture of one channel gives no colours.
    void SetSourceImage(const Image* image) override { sourceImage = image != nullptr ? image->Clone() : nullptr; }
    void SetMaskSourceImage(const Image* image) override {
        maskSourceImage = image != nullptr ? image->Clone() : nullptr;
    }
    // Where there is no picture, or none of it under the dab, the colours are zero.
    bool MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                 std::unique_ptr<Image>& maskOut) override;
    bool MakeMaskDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                     std::unique_ptr<Image>& maskOut) override;
    [[nodiscard]] bool MaskSameAsPaint() const override { return false; }
    [[nodiscard]] bool PasteValue() const override { return false; }

protected:
    // From dab to picture: whole pixels, and what is left of one, 0 .. 1 either way.
    struct ReadOffset {
        std::int32_t x = 0;
        std::int32_t y = 0;
        double fractionX = 0.0;
        double fractionY = 0.0;
    };
    // Nothing when it is too far to be of any picture.
    [[nodiscard]] std::optional<ReadOffset> OffsetAt(double x, double y) const;
    // What all dabs begin with: a dab that is kept, or a mask and a colour image of zeros, which is kept from now on
    // when dabs are to be. False: there is no dab. `isNew`: the colours are still to be read.
    bool BeginDab(Pickup& kept, double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                  std::unique_ptr<Image>& maskOut, bool& isNew);
    // The picture at the depth of the dab, which it takes on for good; null where there is none to read.
    [[nodiscard]] static const Image* AtDepth(std::unique_ptr<Image>& picture, Depth depth);

    std::unique_ptr<Image> sourceImage;      // null: none
    std::unique_ptr<Image> maskSourceImage;  // null: none
    bool followsBrush;

private:
    bool MakeDabFrom(std::unique_ptr<Image>& picture, Pickup& kept, double x, double y, double angle,
                     std::unique_ptr<Image>& colourOut, std::unique_ptr<Image>& maskOut);
};

}  // namespace chalkpane
