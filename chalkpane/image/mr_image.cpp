#include "chalkpane/image/mr_image.h"

#include <cmath>

#include "chalkpane/image/halve_image.h"

namespace chalkpane {

Image* MRImage::GetWholeLevelImage(double level, bool fullSize, std::int32_t spare) {
    return GetLevelImage(Bounds(), level, fullSize, spare);
}

std::int32_t MRImage::LevelCount() const {
    std::int32_t count = 0;
    for (std::int32_t width = Width() / 2, height = Height() / 2; width > 1 && height > 1; width /= 2, height /= 2)
        ++count;
    return count;
}

void MRImage::SetMaxLevel(std::int32_t level) { maxLevel = level; }
double MRImage::GetScale() const { return scale; }
double MRImage::GetScaleY() const { return scale; }
double MRImage::GetOffsetX() const { return offsetX; }
double MRImage::GetOffsetY() const { return offsetY; }

ImageMRImage::ImageMRImage(const Image& source) : MRImage(source), base(source) {}

Image* ImageMRImage::GetLevelImage(const Rect& /*rect*/, double level, bool fullSize, std::int32_t /*spare*/) {
    Release();
    scale = 1.0;
    offsetX = 0.0;
    offsetY = 0.0;
    if (fullSize || !(level > 0.0)) return &base;
    return hasPyramid != 0 ? PickFromPyramid(level) : ReduceStepwise(level);
}

// Level 2.5 is two true halvings and a blended one, which stays at the size of its input.
Image* ImageMRImage::ReduceStepwise(double level) {
    constexpr double wholeStep = 0.001;
    Image* current = &base;
    for (int turn = 0; level > 0.0 && current->Width() > 1 && current->Height() > 1; level -= 1.0, ++turn) {
        double blend = 1.0 - level;
        if (blend < wholeStep) {
            scale /= 2;
            blend = 0.0;
        }
        auto& idle = turn % 2 == 0 ? temporaryA : temporaryB;
        idle.reset();
        idle = HalveImage(*current, blend);
        current = idle.get();
    }
    return current;
}

Image* ImageMRImage::PickFromPyramid(double level) {
    if (levels.empty()) return &base;
    const double highest = static_cast<double>(levels.size() - 1);
    const auto index = static_cast<std::size_t>(std::min(std::floor(level), highest));
    scale = std::ldexp(1.0, -static_cast<int>(index));
    return index == 0 || !levels[index] ? &base : levels[index].get();
}

void ImageMRImage::Release() {
    temporaryA.reset();
    temporaryB.reset();
}

std::unique_ptr<MRImage> ImageMRImage::Clone() const { return std::make_unique<ImageMRImage>(base); }

}  // namespace chalkpane
