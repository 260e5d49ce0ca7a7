#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "chalkpane/image/image.h"

namespace chalkpane {

// A picture that can be asked for at any zoom level: level 0 is its own size, each level above halves it, fractions lie
// between. One user at a time: an object that makes levels on demand keeps them in working images.
class MRImage : public ImageDefinition {
public:
    // True when levels are drawn anew instead of reduced from pixels.
    [[nodiscard]] virtual bool IsResolutionFree() const = 0;
    // The part `rect` at zoom 2 to the -level; at full size with `fullSize`. The object owns the result, which lasts
    // until the next call or `Release`. `spare` is for the classes below.
    virtual Image* GetLevelImage(const Rect& rect, double level, bool fullSize, std::int32_t spare) = 0;
    // The same over the object's own rectangle.
    virtual Image* GetWholeLevelImage(double level, bool fullSize, std::int32_t spare);
    // Gives up the working images.
    virtual void Release() = 0;
    [[nodiscard]] virtual std::unique_ptr<MRImage> Clone() const = 0;
    // How often width and height can be halved while both stay above 1: 9 for 1024.
    [[nodiscard]] virtual std::int32_t LevelCount() const;
    virtual void SetMaxLevel(std::int32_t level);
    virtual ~MRImage() = default;
    // Zoom and offset of the image last returned.
    [[nodiscard]] virtual double GetScale() const;
    [[nodiscard]] virtual double GetScaleY() const;  // the same: both axes zoom alike
    [[nodiscard]] virtual double GetOffsetX() const;
    [[nodiscard]] virtual double GetOffsetY() const;

    double scale = 1.0;
    double offsetX = 0.0;
    double offsetY = 0.0;
    std::int32_t maxLevel = 0;
    std::uint8_t hasPyramid = 0;  // levels were built in advance

protected:
    explicit MRImage(const ImageDefinition& definition) : ImageDefinition(definition) {}
    MRImage(const MRImage&) = default;
    MRImage& operator=(const MRImage&) = default;
};

// An image as a multi-resolution picture: levels are reduced from its pixels, which it shares.
class ImageMRImage final : public MRImage {
public:
    explicit ImageMRImage(const Image& source);

    [[nodiscard]] bool IsResolutionFree() const override { return false; }
    // `rect` and `spare` are ignored. Level 0 and `fullSize` return `base` itself. Levels beyond a width or height of 1
    // stop there.
    Image* GetLevelImage(const Rect& rect, double level, bool fullSize, std::int32_t spare) override;
    void Release() override;
    [[nodiscard]] std::unique_ptr<MRImage> Clone() const override;

    std::vector<std::unique_ptr<Image>> levels;  // the pyramid, read when `hasPyramid` is set; entry 0 is not used
    Image base;
    std::unique_ptr<Image> temporaryA;  // the working images of `GetLevelImage`, in turns
    std::unique_ptr<Image> temporaryB;

private:
    Image* ReduceStepwise(double level);
    Image* PickFromPyramid(double level);
};

}  // namespace chalkpane
