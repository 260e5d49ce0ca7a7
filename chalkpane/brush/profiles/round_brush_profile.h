#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "chalkpane/brush/profiles/brush_profile.h"
#include "chalkpane/brush/profiles/profile_cache.h"
#include "chalkpane/transform/matrix3.h"
#include "chalkpane/transform/transformer.h"

namespace chalkpane {

// A cone, and the base of the profiles that draw their shape once and keep 64 copies of it, shifted by eighths of a
// pixel, so that a dab between pixels costs no resampling.
class RoundBrushProfile : public BrushProfile {
public:
    // Nothing is built until `Prepare`.
    //   profileMatrix  takes the positions of dabs to the target
    RoundBrushProfile(const Matrix3& profileMatrix, Depth maskDepth) : matrix(profileMatrix), depth(maskDepth) {}

    void GetRect(Rect& out) const override { RectOf(BaseMask(), out); }
    // A rotated mask is resampled, any other shares the nearest of the shifted copies.
    [[nodiscard]] std::unique_ptr<Image> GetMask(double x, double y, double angle) override;
    // The same without rotation, as the profile's own image and the place that it takes. An image of null: no mask.
    struct PlacedMask {
        const Image* mask = nullptr;  // not owned
        Rect rect;
    };
    [[nodiscard]] PlacedMask FindMask(double x, double y) const;
    // The same by the number of the shifted copy, 8 * j + i, and the whole pixels that it moves by. A number below 0:
    // no mask.
    struct CopyPlace {
        std::int32_t copy = -1;
        std::int32_t moveX = 0;
        std::int32_t moveY = 0;
    };
    [[nodiscard]] CopyPlace FindCopy(double x, double y) const {
        const Point2 at = matrix.Transform(x, y);
        const double placeX = at.x - offsetX;
        const double placeY = at.y - offsetY;
        if (!isBuilt || !IsPlaceable(at.x) || !IsPlaceable(at.y) || !IsPlaceable(placeX) || !IsPlaceable(placeY))
            return {};
        return {static_cast<std::int32_t>(8 * Eighth(at.x) + Eighth(at.y)), static_cast<std::int32_t>(placeX),
                static_cast<std::int32_t>(placeY)};
    }
    // KEEP: by the radius alone, past the matrix, and half a pixel from where `GetMask` puts it.
    [[nodiscard]] std::unique_ptr<Image> GetMaskFast(double x, double y) override;
    // Makes the base mask and the shifted copies, or takes them from the cache.
    virtual void Prepare(const DabShape& shape, const Matrix3& newMatrix);
    // The base mask; null where the shape has no pixels, is beyond `maximumRadius`, or there is no memory for it.
    [[nodiscard]] virtual std::unique_ptr<Image> MakeMask(const DabShape& shape) const;

    // Which eighth of a pixel a coordinate asks for. KEEP: half a pixel is added to what follows the truncation, so
    // that a whole coordinate takes the copy of four eighths, and the half takes eight eighths, which is the unshifted
    // one.
    [[nodiscard]] static std::size_t Eighth(double coordinate) {
        const double fraction = coordinate + 0.5 - static_cast<std::int32_t>(coordinate);
        return static_cast<std::size_t>(std::abs(static_cast<std::int32_t>(fraction * 8))) % 8;
    }
    // True: the matrix leaves places as they are.
    [[nodiscard]] bool KeepsPlaces() const { return matrix == Matrix3(); }
    // From a dab's place to where the coordinates of its mask begin.
    [[nodiscard]] Point2 Offset() const { return {offsetX, offsetY}; }

    // Not owned; null when it could not be made.
    [[nodiscard]] const Image* BaseMask() const { return masks ? masks->baseMask.get() : nullptr; }
    // j, i: eighths of a pixel in x and y, 0 .. 7.
    [[nodiscard]] const Image* Shifted(std::size_t j, std::size_t i) const {
        return masks ? masks->shifted[j][i].get() : nullptr;
    }

protected:
    [[nodiscard]] Depth MaskDepth() const { return depth; }
    [[nodiscard]] const ProfileMasks* Masks() const { return masks.get(); }
    // What determines the mask beside the shape and the depth: first a word of the class's own. Without a call the
    // masks are shared with nobody.
    void IdentifyContent(ProfileKey key) { content = std::move(key); }

private:
    [[nodiscard]] std::shared_ptr<const ProfileMasks> Build(const DabShape& shape) const;

    struct ChosenCopy {
        const Image* copy = nullptr;  // null: no mask can be placed there
        double placeX = 0.0;
        double placeY = 0.0;
    };
    [[nodiscard]] ChosenCopy Choose(double x, double y) const;

    std::shared_ptr<ProfileCache> cache = ProfileCache::Shared();
    std::shared_ptr<const ProfileMasks> masks;  // the base mask and its shifted copies; null before `Prepare`
    bool isBuilt = false;                       // there is a base mask
    std::int32_t totalRadius = 0;               // radius and margin
    double offsetX = 0.0;                       // of the dab's point in the base mask, through the matrix
    double offsetY = 0.0;
    Matrix3 matrix;
    Depth depth;
    ProfileKey content;
    Transformer transformer;
};

}  // namespace chalkpane
