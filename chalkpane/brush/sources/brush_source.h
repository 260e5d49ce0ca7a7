#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "chalkpane/brush/profiles/brush_profile.h"
#include "chalkpane/image/image.h"
#include "chalkpane/parameters/parameter_table.h"
#include "chalkpane/transform/matrix3.h"
#include "chalkpane/transform/transformer.h"

namespace chalkpane {

// Makes the two images of a dab: its colours, four channels, and its mask, one channel.
//
// Positions are canvas pixels as real numbers, angles degrees unless said otherwise. The images belong to the caller,
// but may share their pixels with the source and with other dabs: they are for reading. Images throw std::bad_alloc
// when there is no memory for them. What is stored by `setParameter` and the setters takes hold with `Prepare`, which
// the owner calls once all is set. Profiles, cutouts and dabs have the target's depth: `SetTargetDepth` before
// `Prepare`. Thread: the plug-in's.
class BrushSource : public WithParameters<BrushSource, ParameterisedObject> {
public:
    static constexpr auto Parameters() {
        using Self = BrushSource;
        return std::to_array<ParameterRow<Self>>({
            {0, "Profile Name", "Brush Profile Type", "Soft", {}, nullptr, {ParameterType::string}},
            {1, "Profile Mask", "Profile Mask", {}, {}, &Self::profileMask},
            {2, "Size", "Brush Size", 20, {}, &Self::size},
            {3, "Flatness", "Brush Flatness", 1.0, {}, &Self::flatness},
            {4, "Rotation", "Brush Rotation", 0.0, {}, &Self::rotation},
            {5, "Roundness", "Brush Roundness", 1.0, {0, 2}, &Self::roundness},
            {6, "Feather", "Profile Feather", 0.0, {}, &Self::feather, percent},
            {7, "Offset", "Brush Offset", {}, {}, &Self::offset},
            {8, "Pickup", "Brush Pickup", 0, {}, &Self::pickup},
            {9, "Profile Type", "Brush Preset Type", 0, {}, &Self::profileType},
            {10, "Rows", "Brush Image Rows", 1, {}, &Self::rows},
            {11, "Columns", "Brush Image Cols", 1, {}, &Self::columns},
            {12, "Selection Policy", "Brush Selection Policy", 0, {}, &Self::selectionPolicy},
        });
    }

    BrushSource(const BrushSource&) = delete;
    BrushSource& operator=(const BrushSource&) = delete;

    // `setParameter` and the hook `valuesChanged` stand in front of these.
    virtual ~BrushSource() = default;
    // The picture to take colours from, in the plane of the target; copied. Null: none.
    virtual void SetSourceImage(const Image* /*image*/) {}
    // The same for the mask plane.
    virtual void SetMaskSourceImage(const Image* /*image*/) {}
    // True when there is a dab. `maskOut` may stay null, which is full coverage.
    virtual bool MakeDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                         std::unique_ptr<Image>& maskOut) = 0;
    // The dab for the mask plane; the paint dab where a source knows no other.
    virtual bool MakeMaskDab(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                             std::unique_ptr<Image>& maskOut);
    // A mask that is not turned; null: none.
    [[nodiscard]] virtual std::unique_ptr<Image> MakePlainMask(double x, double y) = 0;
    // True when the paint dab serves for the mask plane as well.
    [[nodiscard]] virtual bool MaskSameAsPaint() const { return true; }
    [[nodiscard]] virtual bool CanErase() const { return false; }
    [[nodiscard]] virtual bool IsEraser() const { return false; }
    // True when the mask plane takes a constant.
    [[nodiscard]] virtual bool PasteValue() const { return true; }
    // The dab's width across a direction, in canvas pixels. angle: radians, unlike all others here.
    [[nodiscard]] virtual double GetSizeInDirection(double angle) const;
    // The dab's width in canvas pixels.
    [[nodiscard]] virtual double GetSize() const;
    // The rectangle of a dab before it is placed; empty when there is none.
    virtual void GetDabRect(Rect& out) const = 0;
    // Not owned; null: none.
    [[nodiscard]] virtual GraphValue* GetGraph() const { return nullptr; }
    // Takes hold with the next dab.
    virtual void SetColour(const Colour& /*newColour*/) {}
    // Null: no mask, which is not the same as full coverage.
    [[nodiscard]] virtual std::unique_ptr<Image> GetMask(double x, double y, double angle) = 0;
    // Builds the profile. margin: pixels around the shape; graph: not owned, outlives the source; matrix: of positions.
    virtual void Prepare(std::int32_t /*margin*/, GraphValue* /*graph*/, const Matrix3& /*newMatrix*/) {}

    // A stroke begins: what was picked up is let go.
    void DropPickup();
    // A dab was placed on the paint plane, or on the mask plane: with pickup at every dab, the next one drags what is
    // here.
    void DabPlaced(double x, double y, double angle);
    void DabPlacedOnMask(double x, double y, double angle);

    // True: no dab is kept to be dragged along.
    [[nodiscard]] bool HoldsNothing() const { return pickup == 0; }

    // 0: 8 bits; not 0: 14 bits in 16-bit words.
    void SetTargetDepth(std::int32_t depth) { targetDepth = depth; }
    // Used as the profile, resized to the dab; not owned, read by `Prepare`. Null: the profile type decides.
    void SetMaskImage(const Image* image) { maskImage = image; }
    // The area of a dab, and the same after the brush's filters: kept for the brush.
    void SetDabArea(const Rect& area) { dabArea = area; }
    void SetTargetArea(const Rect& area) { targetArea = area; }
    [[nodiscard]] const Rect& DabArea() const { return dabArea; }
    [[nodiscard]] const Rect& TargetArea() const { return targetArea; }

protected:
    // The colour image of a dab, held while it is dragged along; it shares the dab's pixels.
    struct Pickup {
        std::unique_ptr<Image> image;
        double x = 0.0;
        double y = 0.0;
        double angle = 0.0;
    };

    BrushSource() = default;

    // Never null; what could not be built gives no masks.
    [[nodiscard]] std::unique_ptr<BrushProfile> MakeProfile(std::int32_t margin, GraphValue* graph,
                                                            const Matrix3& matrix);
    // True when a dab is held: then the images are that dab moved and turned to its new place, and a mask. Without a
    // mask there is no dab, and the colours are null too.
    bool ReusePickup(const Pickup& held, double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                     std::unique_ptr<Image>& maskOut);
    void StorePickup(Pickup& held, const Image& colourImage, double x, double y, double angle) const;

private:
    using DabMaker = bool (BrushSource::*)(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                           std::unique_ptr<Image>& maskOut);
    // With pickup at every dab: lets go of what is held and makes a dab again, which holds what is here.
    void Renew(Pickup& held, DabMaker make, double x, double y, double angle);

protected:
    std::uint8_t profileType = 0;  // 0 graph, 1 image, 2 one pixel, 3 texture, 4 feather
    FileName profileMask;          // image file for type 1
    std::int32_t size = 20;        // radius in pixels
    double flatness = 1.0;
    float rotation = 0.0F;             // degrees
    float roundness = 1.0F;            // 0 .. 2
    double feather = 0.0;              // hardness of a FeatherBrushProfile
    DoublePair offset;                 // of the source image, canvas pixels
    std::uint8_t pickup = 0;           // 0 off, 1 once per stroke, 2 every dab
    std::int32_t rows = 1;             // frames of a cutout, down; below 1 counts as 1
    std::int32_t columns = 1;          // frames of a cutout, across; below 1 counts as 1
    std::uint8_t selectionPolicy = 0;  // 0 random, 1 forward, 2 forward and back
    Pickup paintPickup;
    Pickup maskPickup;
    Transformer transformer;
    Rect targetArea;
    Rect dabArea;
    const Image* maskImage = nullptr;  // not owned
    std::int32_t targetDepth = 0;
};

// The profile type that a profile's name stands for: "Texture", "Feathered" and "OnePixel"; any other name leaves the
// type as it is.
[[nodiscard]] std::uint8_t ProfileTypeOfName(const std::string& name, std::uint8_t current);

// 0 colour; 1 image that goes with the brush; 2, 6, 7 image that stays with the canvas; 3 cutout from a file; 4, 8 a
// colour sampled from the image; 5 eraser; any other paints colour. Never null. Depth as in `SetTargetDepth`.
[[nodiscard]] std::unique_ptr<BrushSource> MakeBrushSource(std::uint8_t sourceType, const FileName& cutoutFile,
                                                           std::int32_t targetDepth);
// A cutout around an image, whose pixels it shares where the depth is the target's.
[[nodiscard]] std::unique_ptr<BrushSource> MakeCutoutSource(const Image& cutout, std::int32_t targetDepth);

}  // namespace chalkpane
