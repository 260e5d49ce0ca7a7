#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/image/pixel_format.h"
#include "chalkpane/image/rect.h"

namespace chalkpane {

// Images are rectangles in an integer plane with pixels behind them. All coordinates are plane coordinates, y growing
// upward; memory row 0 is the top row y = y1, so memory reads like a top-down bitmap. Formats: image/pixel_format.h.
// Images are created and destroyed on one thread; several threads may write to distinct rows of one image.

// What pixels an image has, without the pixels.
class ImageDefinition : public Rect {
public:
    static constexpr std::int32_t maskType = 2;
    static constexpr std::int32_t colourType = 1;

    ImageDefinition() = default;
    ImageDefinition(const Rect& rect, std::int32_t type, std::int32_t depth, std::uint8_t flag);

    [[nodiscard]] bool IsMask() const { return type == maskType; }
    [[nodiscard]] const Rect& Bounds() const { return *this; }
    // Bytes of the whole buffer; 0 for an area without pixels.
    [[nodiscard]] std::size_t ByteSize() const;

    std::int32_t type = colourType;  // 2: one channel, a mask; any other value: four channels
    std::int32_t depth = 0;          // 0: 8 bits; not 0: 14 bits in 16-bit words
    std::uint8_t flag = 0;           // set: colour is premultiplied by alpha
    std::int32_t rowBytes = 0;       // bytes from one row to the next
    std::int32_t pixelBytes = 0;
};

// Pixel storage shared by one or more images.
struct ImageBuffer {
    std::int32_t references = 1;
    std::byte* pixels = nullptr;  // owned, from std::calloc
    void* bitmap = nullptr;       // the platform's bitmap object; there is none here, the pixels are all there is
};

struct Pixel8 {
    std::uint8_t blue = 0, green = 0, red = 0, alpha = 0;
    friend constexpr bool operator==(const Pixel8&, const Pixel8&) = default;
};
struct Pixel14 {
    std::uint16_t blue = 0, green = 0, red = 0, alpha = 0;
    friend constexpr bool operator==(const Pixel14&, const Pixel14&) = default;
};

// What a read outside the image gives. Any other value wraps with the size as period, as `wrap` does.
enum EdgeMode : std::int32_t {
    edgeTransparent = 0,
    edgeReflect = 1,  // without repeating the edge pixel
    edgeWrap = 2,
    edgeClamp = 4,
};

class Image : public ImageDefinition {
public:
    // New buffers throw std::bad_alloc when there is no memory for them, and always above 2 GiB. All of them start
    // zeroed. A rectangle without pixels, or one beyond what an image can address, gives an image of the empty
    // rectangle.
    Image(std::int32_t width, std::int32_t height, std::int32_t type, std::int32_t depth, std::uint8_t flag,
          bool useBitmap = false);
    Image(const Rect& rect, std::int32_t type, std::int32_t depth, std::uint8_t flag, bool useBitmap = false);
    // Shares the buffer: no pixels are copied, a write through one is seen through all.
    Image(const Image& other);
    Image& operator=(const Image& other);
    virtual ~Image();

    // A new image of the same definition with all pixels copied.
    [[nodiscard]] std::unique_ptr<Image> Clone() const;
    // `rect`, when valid, cuts the image down first; null when nothing remains. At the image's own depth the result
    // shares the image's pixels (of the rectangle cut out); at another depth it is a new image, 8 to 14 bits by Widen,
    // 14 to 8 by Narrow.
    [[nodiscard]] std::unique_ptr<Image> Convert(const Rect& rect, std::int32_t depth) const;

    // First byte of pixel (x, y); the caller keeps inside.
    [[nodiscard]] std::byte* Address(std::int32_t x, std::int32_t y) const;
    // The channels of row y from x0 to x1, 1 or 4 a pixel; y inside, depth as named.
    [[nodiscard]] std::span<std::uint8_t> Row8(std::int32_t y) const;
    [[nodiscard]] std::span<std::uint16_t> Row14(std::int32_t y) const;

    [[nodiscard]] Pixel8 GetPixel8(std::int32_t x, std::int32_t y) const;    // zero outside
    [[nodiscard]] Pixel14 GetPixel14(std::int32_t x, std::int32_t y) const;  // zero outside
    [[nodiscard]] Pixel8 GetPixelEdge8(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const;
    [[nodiscard]] Pixel14 GetPixelEdge14(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const;
    [[nodiscard]] std::uint8_t GetMaskEdge8(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const;
    [[nodiscard]] std::uint16_t GetMaskEdge14(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const;
    // Alpha of a four-channel image, or the only channel of a mask; widened in a 14-bit image. The caller keeps inside.
    void SetAlpha8(std::int32_t x, std::int32_t y, std::uint8_t value);

    // value: 0.0 .. 1.0, rounded to full scale and stored in alpha or the mask's channel; kept inside the image.
    void FillChannel(const Rect& rect, double value);
    void FillChannel(double value);
    // Copies alpha into `mask` (one channel, same depth) where the two overlap; a mask not covered is cleared first.
    void CopyAlphaToMask(Image& mask) const;
    void Clear();
    // Scales colour by alpha, and back, inside `rect`.
    void Premultiply(const Rect& rect);
    void Unpremultiply(const Rect& rect);
    // Copies the overlap of both images and `rect`, rows on the workers; both images have one format.
    void CopyRegion(const Image& source, const Rect& rect);
    void ClearAndCopyRegion(const Image& source, const Rect& rect);

    // Living images of the whole module, for leak tests.
    [[nodiscard]] static std::int32_t LivingImages();

    ImageBuffer* buffer = nullptr;  // shared, counted by `references`
    std::byte* origin = nullptr;    // first byte of pixel (x0, y1): inside the buffer, which a cut-out may share
};

}  // namespace chalkpane
