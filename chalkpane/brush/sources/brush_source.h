#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "chalkpane/brush/brush_choices.h"
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
// `Prepare`. Thread: its brush's.
class BrushSource : public WithParameters<BrushSource, ParameterisedObject> {
public:
    static constexpr auto Parameters() {
        using Self = BrushSource;
        using Code = SourceParameter;
        return std::to_array<ParameterRow<Self>>({
            {Code::ProfileName, "Profile Name", "Brush Profile Type", "Soft", {}, nullptr, {ParameterType::string}},
            {Code::ProfileMask, "Profile Mask", "Profile Mask", {}, {}, &Self::profileMask},
            {Code::Size, "Size", "Brush Size", 20, {}, &Self::size},
            {Code::Flatness, "Flatness", "Brush Flatness", 1.0, {}, &Self::flatness},
            {Code::Rotation, "Rotation", "Brush Rotation", 0.0, {}, &Self::rotation},
            {Code::Roundness, "Roundness", "Brush Roundness", 1.0, {0, 2}, &Self::roundness},
            {Code::Feather, "Feather", "Profile Feather", 0.0, {}, &Self::feather, percent},
            {Code::Offset, "Offset", "Brush Offset", {}, {}, &Self::offset},
            {Code::Pickup, "Pickup", "Brush Pickup", 0, {}, &Self::pickup},
            {Code::ProfileType, "Profile Type", "Brush Preset Type", 0, {}, &Self::profileType},
            {Code::Rows, "Rows", "Brush Image Rows", 1, {}, &Self::rows},
            {Code::Columns, "Columns", "Brush Image Cols", 1, {}, &Self::columns},
            {Code::SelectionPolicy, "Selection Policy", "Brush Selection Policy", 0, {}, &Self::selectionPolicy},
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
    // A mask that is not rotated; null: none.
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

    // A stroke begins: what was picked up is released.
    void DropPickup();
    // A dab was placed on the paint plane, or on the mask plane: with pickup at every dab, the next one drags what is
    // here.
    void DabPlaced(double x, double y, double angle);
    void DabPlacedOnMask(double x, double y, double angle);

    // True: no dab is kept to be dragged along.
    [[nodiscard]] bool HoldsNothing() const { return GetPickupMode() == PickupMode::Off; }

    void SetTargetDepth(Depth depth) { targetDepth = depth; }
    // The radius of a dab in canvas pixels: parameter "Brush Size".
    [[nodiscard]] std::int32_t Radius() const { return size; }
    [[nodiscard]] ProfileType GetProfileType() const { return static_cast<ProfileType>(profileType); }
    [[nodiscard]] PickupMode GetPickupMode() const { return static_cast<PickupMode>(pickup); }
    [[nodiscard]] SelectionPolicy GetSelectionPolicy() const { return static_cast<SelectionPolicy>(selectionPolicy); }
    // Used as the profile, resized to the dab; not owned, read by `Prepare`. Null: the profile type decides.
    void SetMaskImage(const Image* image) { maskImage = image; }
    // The area of a dab, and the same after the brush's filters: kept for the brush.
    void SetDabArea(const Rect& area) { dabArea = area; }
    void SetTargetArea(const Rect& area) { targetArea = area; }
    [[nodiscard]] const Rect& DabArea() const { return dabArea; }
    [[nodiscard]] const Rect& TargetArea() const { return targetArea; }

protected:
    // The colour image of a dab, kept while it is dragged along; it shares the dab's pixels.
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
    // True when a dab is kept: then the images are that dab moved and rotated to its new place, and a mask. Without a
    // mask there is no dab, and the colours are null too.
    bool ReusePickup(const Pickup& kept, double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                     std::unique_ptr<Image>& maskOut);
    void StorePickup(Pickup& kept, const Image& colourImage, double x, double y, double angle) const;

private:
    using DabMaker = bool (BrushSource::*)(double x, double y, double angle, std::unique_ptr<Image>& colourOut,
                                           std::unique_ptr<Image>& maskOut);
    // With pickup at every dab: releases what is kept and makes a dab again, which keeps what is here.
    void Renew(Pickup& kept, DabMaker make, double x, double y, double angle);

protected:
    std::uint8_t profileType = 0;  // ProfileType
    FileName profileMask;          // image file for type 1
    std::int32_t size = 20;        // the radius of a dab, pixels
    double flatness = 1.0;
    float rotation = 0.0F;             // degrees
    float roundness = 1.0F;            // 0 .. 2
    double feather = 0.0;              // hardness of a FeatherBrushProfile
    DoublePair offset;                 // of the source image, canvas pixels
    std::uint8_t pickup = 0;           // PickupMode
    std::int32_t rows = 1;             // frames of a cutout, down; below 1 counts as 1
    std::int32_t columns = 1;          // frames of a cutout, across; below 1 counts as 1
    std::uint8_t selectionPolicy = 0;  // SelectionPolicy
    Pickup paintPickup;
    Pickup maskPickup;
    Transformer transformer;
    Rect targetArea;
    Rect dabArea;
    const Image* maskImage = nullptr;  // not owned
    Depth targetDepth = Depth::Eight;
};

// The profile type that a profile's name stands for: "Texture", "Feathered" and "OnePixel"; any other has none.
[[nodiscard]] std::optional<ProfileType> ProfileTypeOfName(std::string_view name);

}  // namespace chalkpane
