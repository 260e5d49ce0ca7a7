#include "chalkpane/brush/profiles/image_brush_profile.h"

#include <new>
#include <numbers>
#include <utility>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/brush/image_loader.h"
#include "chalkpane/composite/paster.h"

namespace chalkpane {

namespace {

// The picture as one channel of the depth wanted; null when nothing of it remains.
std::unique_ptr<Image> AsMask(const Image& picture, Depth depth) {
    auto converted = picture.Convert(Rect(), depth);
    if (!converted || converted->IsMask()) return converted;
    auto mask = std::make_unique<Image>(Image::Mask(converted->Bounds(), depth));
    converted->CopyAlphaToMask(*mask);
    return mask;
}

}  // namespace

ImageBrushProfile::ImageBrushProfile(const DabShape& shape, const Matrix3& profileMatrix)
    : matrix(profileMatrix), rotation(shape.rotation) {}

ImageBrushProfile::ImageBrushProfile(const Image& picture, const DabShape& shape, const Matrix3& profileMatrix,
                                     Depth maskDepth)
    : ImageBrushProfile(shape, profileMatrix) {
    TakeMask(picture, shape.radius, maskDepth, Resizing::ToTheDab);
}

ImageBrushProfile::ImageBrushProfile(const std::string& fileName, const DabShape& shape, const Matrix3& profileMatrix,
                                     Depth maskDepth)
    : ImageBrushProfile(shape, profileMatrix) {
    const auto picture = LoadImageFile(fileName);
    if (picture) TakeMask(*picture, shape.radius, maskDepth, Resizing::None);
}

void ImageBrushProfile::TakeMask(const Image& picture, std::int32_t radius, Depth depth, Resizing resizing) {
    const bool isResized = resizing == Resizing::ToTheDab;
    if (isResized && (radius < 0 || radius > maximumRadius)) return;
    if (picture.Width() < 1 || picture.Height() < 1) return;
    try {
        auto converted = AsMask(picture, depth);
        if (!converted) return;
        const std::int32_t width = converted->Width();
        if (radius != width / 2) {
            // KEEP: a file keeps its own size, whatever the dab's.
            const double factor = isResized ? 2.0 * radius / width : 1.0;
            transformer.SetTransform(0.0, 0.0, 0.0, 0.0, factor, factor, 0.0);
            Rect resized;
            converted = transformer.Apply(*converted, resized);
            if (!resized.IsValid()) return;
        }
        converted->MoveTo(0, 0);  // KEEP: the mask lies at (0, 0), not around it; dabs are placed from there
        auto taken = std::make_unique<Image>(Image::Mask(converted->Bounds(), depth));
        Paster paster;
        paster.SetOpacity(1.0);
        paster.PasteMaskOnto(*converted, *taken, *taken);
        mask = std::move(taken);
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        mask = nullptr;
    }
}

std::unique_ptr<Image> ImageBrushProfile::GetMask(double x, double y, double angle) {
    if (!mask) return nullptr;
    transformer.SetMatrix(Matrix3::Translation(-(mask->Width() * 0.5), -(mask->Height() * 0.5)) *
                          Matrix3::Rotation(-(rotation + angle) * std::numbers::pi / 180) * Matrix3::Translation(x, y));
    return Transformed();
}

std::unique_ptr<Image> ImageBrushProfile::GetMaskFast(double x, double y) {
    if (!mask) return nullptr;
    transformer.SetTransform(mask->Width() * 0.5, mask->Height() * 0.5, x, y, 1.0, 1.0, rotation);
    return Transformed();
}

std::unique_ptr<Image> ImageBrushProfile::Transformed() {
    Rect rect;
    auto result = transformer.Apply(*mask, rect);
    return rect.IsValid() ? std::move(result) : nullptr;
}

}  // namespace chalkpane
