#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "chalkpane/image/pixel_format.h"
#include "chalkpane/image/rect.h"

namespace chalkpane {

// Images are rectangles in an integer plane with pixels behind them. All coordinates are plane coordinates in pixels, y
// growing upward; memory row 0 is the top row y = y1, so memory reads like a top-down bitmap. A colour pixel is four
// channels in the order blue, green, red, alpha. Formats: image/pixel_format.h.
// Images are created and destroyed on one thread; several threads may write to distinct rows of one image.

// The channels of a pixel, as an image's `type` stores them. Any stored value but 2 counts as colour.
enum class PixelType : std::int32_t { Colour = 1, Mask = 2 };

// What pixels an image has, without the pixels.
class ImageDefinition : public Rect {
public:
    static constexpr auto maskType = static_cast<std::int32_t>(PixelType::Mask);
    static constexpr auto colourType = static_cast<std::int32_t>(PixelType::Colour);

    // The empty rectangle of 8-bit straight colour.
    ImageDefinition() = default;
    // The numbers are those of the fields below.
    ImageDefinition(const Rect& rect, std::int32_t type, std::int32_t depth, std::uint8_t flag);

    [[nodiscard]] bool IsMask() const { return type == maskType; }
    [[nodiscard]] PixelType GetPixelType() const { return IsMask() ? PixelType::Mask : PixelType::Colour; }
    [[nodiscard]] Depth GetDepth() const { return DepthOf(depth); }
    [[nodiscard]] AlphaForm GetAlphaForm() const { return flag != 0 ? AlphaForm::Premultiplied : AlphaForm::Straight; }
    [[nodiscard]] bool IsPremultiplied() const { return flag != 0; }
    // Says in which form the pixels are; changes none of them.
    void DeclareAlphaForm(AlphaForm form) { flag = static_cast<std::uint8_t>(form); }
    // True when pixels of both have the same channels of the same depth.
    [[nodiscard]] bool HasFormatOf(const ImageDefinition& other) const {
        return IsMask() == other.IsMask() && GetDepth() == other.GetDepth();
    }
    [[nodiscard]] const Rect& Bounds() const { return *this; }
    // Bytes of the whole buffer; 0 for an area without pixels.
    [[nodiscard]] std::size_t ByteSize() const;

    std::int32_t type = colourType;  // PixelType; 2: one channel, a mask; any other value: four channels
    std::int32_t depth = 0;          // Depth; 0: 8 bits; not 0: 14 bits in 16-bit words
    std::uint8_t flag = 0;           // AlphaForm; set: colour is premultiplied by alpha
    std::int32_t rowBytes = 0;       // bytes from one row to the row below it in the plane; a lent buffer has its own
    std::int32_t pixelBytes = 0;     // 1, 2, 4 or 8
};

// Pixel storage shared by one or more images.
struct ImageBuffer {
    std::int32_t references = 1;
    std::byte* pixels = nullptr;  // from the C library's allocator and owned, unless `isLent`
    void* bitmap = nullptr;       // the platform's bitmap object; there is none here, the pixels are all there is
    bool isLent = false;          // the pixels are a caller's, who frees them
    std::size_t byteSize = 0;     // of owned pixels
};

// A caller's pixels for an image to stand on, see `Image::Lend`.
//
// The first row in memory is the top row of the picture, each row below it follows `rowBytes` bytes later, and the
// bytes between the end of a row and the next are never written. A colour pixel is blue, green, red, alpha:
// 4 bytes at 8 bits, 4 words of 0 .. 16383 in the machine's byte order at 14. A mask pixel is one byte or word.
struct LentPixels {
    void* firstRow = nullptr;
    std::size_t rowBytes = 0;  // at least a row of pixels; at 14 bits even, as the address of the first row is
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
    // The same by name. A size alone lies at (0, 0).
    Image(std::int32_t width, std::int32_t height, PixelType type, Depth depth, AlphaForm form);
    Image(const Rect& rect, PixelType type, Depth depth, AlphaForm form);
    // What `format` says, for another rectangle.
    Image(const Rect& rect, const ImageDefinition& format);
    // Four channels, or one.
    [[nodiscard]] static Image Colour(std::int32_t width, std::int32_t height, Depth depth, AlphaForm form);
    [[nodiscard]] static Image Colour(const Rect& rect, Depth depth, AlphaForm form);
    [[nodiscard]] static Image Mask(std::int32_t width, std::int32_t height, Depth depth);
    [[nodiscard]] static Image Mask(const Rect& rect, Depth depth);

    // Of that rectangle and the format of `format`, with whatever lay in its memory before: for one who goes on to
    // write every pixel.
    [[nodiscard]] static std::unique_ptr<Image> Unwritten(const Rect& rect, const ImageDefinition& format);

    // An image on pixels that stay the caller's: nothing is copied, cleared or freed, all operations read and write
    // them in place. They must outlive every image that shares them: this one, its copies, what `Convert` cuts out of
    // it at its own depth, and whatever a `BasicBrush` or a source was given of it to keep. `Clone`, and `Convert` to
    // the other depth, give images with pixels of their own.
    //
    //   rect   where the picture lies in the plane; (0, 0, width - 1, height - 1) for one that begins at the origin
    //
    // Without pixels, or with rows that are too short, longer than 2 GiB or, at 14 bits, at odd addresses, the image is
    // one of the empty rectangle: `IsValid` says so. Throws std::bad_alloc.
    [[nodiscard]] static Image Lend(const LentPixels& pixels, const Rect& rect, PixelType type, Depth depth,
                                    AlphaForm form);

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
    [[nodiscard]] std::unique_ptr<Image> Convert(const Rect& rect, Depth newDepth) const {
        return Convert(rect, static_cast<std::int32_t>(newDepth));
    }

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

    // Living images of the whole process, for leak tests.
    [[nodiscard]] static std::int32_t LivingImages();

    ImageBuffer* buffer = nullptr;  // shared, counted by `references`
    std::byte* origin = nullptr;    // first byte of pixel (x0, y1): inside the buffer, which a cut-out may share

private:
    Image(const ImageDefinition& definition, const LentPixels& pixels);
    Image(const ImageDefinition& definition, ImageBuffer* pixels);
};

}  // namespace chalkpane
