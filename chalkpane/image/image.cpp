#include "chalkpane/image/image.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/image/picture_pool.h"

namespace chalkpane {

namespace {

std::atomic<std::int32_t> livingImages{0};

std::int32_t PixelBytes(std::int32_t type, std::int32_t depth) {
    return (type == ImageDefinition::maskType ? 1 : 4) * (DepthOf(depth) == Depth::Fourteen ? 2 : 1);
}

// Rows start on whole 32-bit words, which a mask has to be rounded up to. 0 when there are no pixels, or more in a row
// than its byte count can say.
std::int32_t RowBytes(std::int32_t width, std::int32_t pixelBytes) {
    const std::int64_t bytes = (std::int64_t{width} * pixelBytes + 3) / 4 * 4;
    return width > 0 && bytes <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(bytes) : 0;
}

// What an image can have pixels for; the empty rectangle otherwise.
Rect Addressable(const Rect& rect, std::int32_t type, std::int32_t depth) {
    const bool fits = rect.Height() > 0 && RowBytes(rect.Width(), PixelBytes(type, depth)) > 0;
    return fits ? rect : Rect();
}

// Beyond this an image is a mistake in its size, and asking the machine for it would only bring that down.
constexpr std::size_t maximumBytes = std::numeric_limits<std::int32_t>::max();

enum class Pixels { Zeroed, Unwritten };

// The system hands out large blocks zeroed, page by page as they are first touched. So whoever fills the image pays for
// its pages, several workers at once. A block that has been used before is zeroed here and now, unless all of it is
// going to be written anyway.
void* NewPixels(std::size_t size, Pixels pixels) {
    void* const used = PicturePool::Take(size);
    if (used == nullptr) return pixels == Pixels::Zeroed ? std::calloc(size, 1) : std::malloc(size);
    return pixels == Pixels::Zeroed ? std::memset(used, 0, size) : used;
}

ImageBuffer* NewBuffer(std::size_t bytes, Pixels pixels) {
    if (bytes > maximumBytes) throw std::bad_alloc();
    auto created = std::make_unique<ImageBuffer>();
    created->byteSize = std::max<std::size_t>(bytes, 1);
    created->pixels = static_cast<std::byte*>(NewPixels(created->byteSize, pixels));
    if (created->pixels == nullptr) throw std::bad_alloc();
    return created.release();
}

// Images of several threads may share a buffer, such as the masks of a profile: they read its pixels, and each counts.
ImageBuffer* Share(ImageBuffer* buffer) {
    ++std::atomic_ref(buffer->references);
    return buffer;
}

void Dismiss(ImageBuffer* buffer) {
    if (--std::atomic_ref(buffer->references) > 0) return;
    if (!buffer->isLent) PicturePool::Give(buffer->pixels, buffer->byteSize);
    delete buffer;
}

// The definition of an image on lent pixels; that of the empty rectangle when they will not do.
ImageDefinition LentDefinition(const LentPixels& pixels, const Rect& rect, PixelType type, Depth depth,
                               AlphaForm form) {
    constexpr std::size_t longestRow = std::numeric_limits<std::int32_t>::max();
    const auto storedType = static_cast<std::int32_t>(type);
    const auto storedDepth = static_cast<std::int32_t>(depth);
    const auto channelBytes = static_cast<std::size_t>(depth == Depth::Eight ? 1 : 2);
    const Rect area = Addressable(rect, storedType, storedDepth);
    ImageDefinition definition(area, storedType, storedDepth, static_cast<std::uint8_t>(form));
    const std::size_t needed = static_cast<std::size_t>(area.Width()) * static_cast<std::size_t>(definition.pixelBytes);
    const bool isAligned =
        reinterpret_cast<std::uintptr_t>(pixels.firstRow) % channelBytes == 0 && pixels.rowBytes % channelBytes == 0;
    if (pixels.firstRow == nullptr || pixels.rowBytes < needed || pixels.rowBytes > longestRow || !isAligned)
        return {Rect(), storedType, storedDepth, static_cast<std::uint8_t>(form)};
    if (area.IsValid()) definition.rowBytes = static_cast<std::int32_t>(pixels.rowBytes);
    return definition;
}

// Offset of a position from the near edge of `size` pixels, brought inside by the edge mode; -1 for nothing there.
std::int64_t OffsetByEdgeMode(std::int64_t offset, std::int64_t size, std::int32_t edgeMode) {
    if (offset >= 0 && offset < size) return offset;
    if (edgeMode == edgeTransparent || size < 1) return -1;
    if (edgeMode == edgeClamp) return offset < 0 ? 0 : size - 1;
    const std::int64_t period = edgeMode == edgeReflect ? 2 * size - 2 : size;
    if (period == 0) return 0;  // a single pixel reflects into itself
    const std::int64_t whole = offset >= 0 ? offset : offset - period + 1;
    offset -= whole / period * period;
    return offset >= size ? period - offset : offset;
}

template <typename Pixel>
Pixel Load(const std::byte* address) {
    Pixel pixel;
    std::memcpy(&pixel, address, sizeof pixel);
    return pixel;
}

template <typename Pixel>
Pixel PixelOrZero(const Image& image, std::int32_t x, std::int32_t y) {
    return image.Contains(x, y) ? Load<Pixel>(image.Address(x, y)) : Pixel{};
}

template <typename Pixel>
Pixel PixelByEdgeMode(const Image& image, std::int32_t x, std::int32_t y, std::int32_t edgeMode) {
    const std::int64_t column = OffsetByEdgeMode(std::int64_t{x} - image.x0, image.Width(), edgeMode);
    const std::int64_t line = OffsetByEdgeMode(std::int64_t{y} - image.y0, image.Height(), edgeMode);
    if (column < 0 || line < 0) return Pixel{};
    return Load<Pixel>(
        image.Address(static_cast<std::int32_t>(image.x0 + column), static_cast<std::int32_t>(image.y0 + line)));
}

// The channels of row y from `left` to `right`, all inside.
template <typename F>
std::span<typename F::Channel> Row(const Image& image, std::int32_t y, std::int32_t left, std::int32_t right) {
    const std::size_t channels = image.IsMask() ? 1 : 4;
    const std::size_t pixels = static_cast<std::size_t>(std::int64_t{right} - left + 1);
    return {reinterpret_cast<typename F::Channel*>(image.Address(left, y)), pixels * channels};
}

// Calls `rowLoop` with the format of the image for each row of an area inside it.
template <typename RowLoop>
void ForEachRow(const Image& image, const Rect& area, RowLoop rowLoop) {
    for (std::int64_t y = area.y0; y <= area.y1; ++y) {
        const auto line = static_cast<std::int32_t>(y);
        if (image.GetDepth() == Depth::Eight)
            rowLoop(PixelFormat8(), Row<PixelFormat8>(image, line, area.x0, area.x1), line);
        else
            rowLoop(PixelFormat14(), Row<PixelFormat14>(image, line, area.x0, area.x1), line);
    }
}

void ConvertRow(std::span<const std::uint8_t> from, std::span<std::uint16_t> to) {
    for (std::size_t i = 0; i < from.size(); ++i) to[i] = Widen(from[i]);
}
void ConvertRow(std::span<const std::uint16_t> from, std::span<std::uint8_t> to) {
    for (std::size_t i = 0; i < from.size(); ++i) to[i] = Narrow(from[i]);
}

// A full channel as it is stored, clamped to 0 .. 1; NaN is 0.
template <typename F>
typename F::Channel FullScaleOf(double value) {
    const double scaled = value * F::fullScale + 0.5;
    if (!(scaled >= 0.0)) return 0;
    return static_cast<typename F::Channel>(scaled < F::fullScale ? static_cast<std::int32_t>(scaled) : F::fullScale);
}

// Colour times alpha with a shift in place of the division. The factor of a full alpha is one above full scale, so
// that its colour stays; a 14-bit alpha beyond full scale counts as full.
template <typename F>
void PremultiplyRow(std::span<typename F::Channel> row) {
    for (std::size_t i = 0; i + 3 < row.size(); i += 4) {
        const std::int32_t alpha = std::min<std::int32_t>(row[i + 3], F::fullScale);
        const std::int32_t factor = alpha + (alpha >> (F::bits - 1));
        for (std::size_t channel = 0; channel < 3; ++channel)
            row[i + channel] = static_cast<typename F::Channel>((row[i + channel] * factor) >> F::bits);
    }
}

void UnpremultiplyRow(std::span<std::uint8_t> row) {
    for (std::size_t i = 0; i + 3 < row.size(); i += 4) {
        if (row[i + 3] == 0 || row[i + 3] == 255) continue;
        const std::int32_t factor = ReciprocalTable[row[i + 3]];
        for (auto& colour : row.subspan(i, 3))
            colour = static_cast<std::uint8_t>(std::min((colour * factor) >> 8, PixelFormat8::fullScale));
    }
}

void UnpremultiplyRow(std::span<std::uint16_t> row) {
    for (std::size_t i = 0; i + 3 < row.size(); i += 4) {
        if (row[i + 3] == 0 || row[i + 3] == PixelFormat14::fullScale) continue;
        const double factor = 16383.0 / row[i + 3];  // the row that pastes and filters use narrows it to 32 bits
        for (auto& colour : row.subspan(i, 3))
            colour = static_cast<std::uint16_t>(
                std::min(static_cast<std::int32_t>(colour * factor + 0.5), PixelFormat14::fullScale));
    }
}

struct CopyJob {
    const Image* source;
    const Image* target;
    Rect area;
    std::size_t bytes;
};

void CopyRow(std::int32_t row, void* userData, std::int32_t /*worker*/) {
    const CopyJob& job = *static_cast<const CopyJob*>(userData);
    std::memmove(job.target->Address(job.area.x0, row), job.source->Address(job.area.x0, row), job.bytes);
}

}  // namespace

ImageDefinition::ImageDefinition(const Rect& rect, std::int32_t imageType, std::int32_t imageDepth,
                                 std::uint8_t imageFlag)
    : Rect(rect), type(imageType), depth(imageDepth), flag(imageFlag), pixelBytes(PixelBytes(imageType, imageDepth)) {
    rowBytes = RowBytes(Width(), pixelBytes);
}

std::size_t ImageDefinition::ByteSize() const {
    const std::int32_t height = Height();
    return height < 1 ? 0 : static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height);
}

Image::Image(std::int32_t width, std::int32_t height, std::int32_t imageType, std::int32_t imageDepth,
             std::uint8_t imageFlag, bool useBitmap)
    : Image(width < 1 || height < 1 ? Rect() : Rect(0, 0, width - 1, height - 1), imageType, imageDepth, imageFlag,
            useBitmap) {}

Image::Image(const Rect& rect, std::int32_t imageType, std::int32_t imageDepth, std::uint8_t imageFlag,
             bool /*useBitmap: the platform's bitmap would be zeroed pixels too*/)
    : ImageDefinition(Addressable(rect, imageType, imageDepth), imageType, imageDepth, imageFlag),
      buffer(NewBuffer(ByteSize(), Pixels::Zeroed)),
      origin(buffer->pixels) {
    ++livingImages;
}

Image::Image(const ImageDefinition& definition, ImageBuffer* pixels)
    : ImageDefinition(definition), buffer(pixels), origin(pixels->pixels) {
    ++livingImages;
}

std::unique_ptr<Image> Image::Unwritten(const Rect& rect, const ImageDefinition& format) {
    const ImageDefinition definition(Addressable(rect, format.type, format.depth), format.type, format.depth,
                                     format.flag);
    // Nobody writes the bytes between the end of a row and the next.
    const bool hasGaps = std::int64_t{definition.Width()} * definition.pixelBytes != definition.rowBytes;
    const Pixels pixels = hasGaps ? Pixels::Zeroed : Pixels::Unwritten;
    return std::unique_ptr<Image>(new Image(definition, NewBuffer(definition.ByteSize(), pixels)));
}

Image::Image(const ImageDefinition& definition, const LentPixels& pixels)
    : ImageDefinition(definition), buffer(new ImageBuffer), origin(static_cast<std::byte*>(pixels.firstRow)) {
    buffer->pixels = origin;
    buffer->isLent = true;
    ++livingImages;
}

Image::Image(std::int32_t width, std::int32_t height, PixelType imageType, Depth imageDepth, AlphaForm form)
    : Image(width, height, static_cast<std::int32_t>(imageType), static_cast<std::int32_t>(imageDepth),
            static_cast<std::uint8_t>(form)) {}

Image::Image(const Rect& rect, PixelType imageType, Depth imageDepth, AlphaForm form)
    : Image(rect, static_cast<std::int32_t>(imageType), static_cast<std::int32_t>(imageDepth),
            static_cast<std::uint8_t>(form)) {}

Image::Image(const Rect& rect, const ImageDefinition& format) : Image(rect, format.type, format.depth, format.flag) {}

Image Image::Colour(std::int32_t width, std::int32_t height, Depth depth, AlphaForm form) {
    return {width, height, PixelType::Colour, depth, form};
}
Image Image::Colour(const Rect& rect, Depth depth, AlphaForm form) { return {rect, PixelType::Colour, depth, form}; }
Image Image::Mask(std::int32_t width, std::int32_t height, Depth depth) {
    return {width, height, PixelType::Mask, depth, AlphaForm::Straight};
}
Image Image::Mask(const Rect& rect, Depth depth) { return {rect, PixelType::Mask, depth, AlphaForm::Straight}; }

Image Image::Lend(const LentPixels& pixels, const Rect& rect, PixelType type, Depth depth, AlphaForm form) {
    return {LentDefinition(pixels, rect, type, depth, form), pixels};
}

Image::Image(const Image& other) : ImageDefinition(other), buffer(Share(other.buffer)), origin(other.origin) {
    ++livingImages;
}

Image& Image::operator=(const Image& other) {
    if (this == &other) return *this;
    Dismiss(std::exchange(buffer, Share(other.buffer)));
    origin = other.origin;
    ImageDefinition::operator=(other);
    return *this;
}

Image::~Image() {
    Dismiss(buffer);
    --livingImages;
}

std::unique_ptr<Image> Image::Clone() const {
    auto copy = Unwritten(Bounds(), *this);
    ForEachRow(*this, Bounds(), [&](auto, auto row, std::int32_t y) {
        std::memcpy(copy->Address(x0, y), row.data(), row.size_bytes());
    });
    return copy;
}

std::unique_ptr<Image> Image::Convert(const Rect& rect, std::int32_t newDepth) const {
    const Rect area = rect.IsValid() ? Intersection(rect) : Bounds();
    if (area.Width() < 1 || area.Height() < 1) return nullptr;
    if (DepthOf(newDepth) == GetDepth()) {
        auto cut = std::make_unique<Image>(*this);
        cut->origin = Address(area.x0, area.y1);
        static_cast<Rect&>(*cut) = area;  // the rows stay as far apart as in the buffer
        return cut;
    }
    auto converted = Unwritten(area, ImageDefinition(area, type, newDepth, flag));
    for (std::int64_t y = area.y0; y <= area.y1; ++y) {
        const auto line = static_cast<std::int32_t>(y);
        if (GetDepth() == Depth::Eight)
            ConvertRow(Row<PixelFormat8>(*this, line, area.x0, area.x1), converted->Row14(line));
        else
            ConvertRow(Row<PixelFormat14>(*this, line, area.x0, area.x1), converted->Row8(line));
    }
    return converted;
}

std::byte* Image::Address(std::int32_t x, std::int32_t y) const {
    return origin + (std::ptrdiff_t{y1} - y) * rowBytes + (std::ptrdiff_t{x} - x0) * pixelBytes;
}

std::span<std::uint8_t> Image::Row8(std::int32_t y) const { return Row<PixelFormat8>(*this, y, x0, x1); }
std::span<std::uint16_t> Image::Row14(std::int32_t y) const { return Row<PixelFormat14>(*this, y, x0, x1); }

Pixel8 Image::GetPixel8(std::int32_t x, std::int32_t y) const { return PixelOrZero<Pixel8>(*this, x, y); }
Pixel14 Image::GetPixel14(std::int32_t x, std::int32_t y) const { return PixelOrZero<Pixel14>(*this, x, y); }
Pixel8 Image::GetPixelEdge8(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const {
    return PixelByEdgeMode<Pixel8>(*this, x, y, edgeMode);
}
Pixel14 Image::GetPixelEdge14(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const {
    return PixelByEdgeMode<Pixel14>(*this, x, y, edgeMode);
}
std::uint8_t Image::GetMaskEdge8(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const {
    return PixelByEdgeMode<std::uint8_t>(*this, x, y, edgeMode);
}
std::uint16_t Image::GetMaskEdge14(std::int32_t x, std::int32_t y, std::int32_t edgeMode) const {
    return PixelByEdgeMode<std::uint16_t>(*this, x, y, edgeMode);
}

void Image::SetAlpha8(std::int32_t x, std::int32_t y, std::uint8_t value) {
    const int channel = IsMask() ? 0 : 3;
    if (GetDepth() == Depth::Eight)
        reinterpret_cast<std::uint8_t*>(Address(x, y))[channel] = value;
    else
        reinterpret_cast<std::uint16_t*>(Address(x, y))[channel] = Widen(value);
}

void Image::FillChannel(const Rect& rect, double value) {
    ForEachRow(*this, Intersection(rect), [&]<typename F>(F, auto row, std::int32_t) {
        const auto stored = FullScaleOf<F>(value);
        if (IsMask())
            std::fill(row.begin(), row.end(), stored);
        else
            for (std::size_t i = 3; i < row.size(); i += 4) row[i] = stored;
    });
}

void Image::FillChannel(double value) { FillChannel(Bounds(), value); }

void Image::CopyAlphaToMask(Image& mask) const {
    if (!mask.IsMask() || mask.GetDepth() != GetDepth()) return;
    const Rect overlap = Intersection(mask);
    if (!overlap.Contains(mask)) mask.Clear();
    const std::size_t step = IsMask() ? 1 : 4;
    ForEachRow(mask, overlap, [&]<typename F>(F, auto to, std::int32_t y) {
        const auto from = Row<F>(*this, y, overlap.x0, overlap.x1);
        for (std::size_t i = 0; i < to.size(); ++i) to[i] = from[i * step + step - 1];
    });
}

void Image::Clear() {
    ForEachRow(*this, Bounds(), [](auto, auto row, std::int32_t) { std::memset(row.data(), 0, row.size_bytes()); });
}

void Image::Premultiply(const Rect& rect) {
    if (IsMask()) return;
    ForEachRow(*this, Intersection(rect), []<typename F>(F, auto row, std::int32_t) { PremultiplyRow<F>(row); });
}

void Image::Unpremultiply(const Rect& rect) {
    if (IsMask()) return;
    ForEachRow(*this, Intersection(rect), [](auto, auto row, std::int32_t) { UnpremultiplyRow(row); });
}

void Image::CopyRegion(const Image& source, const Rect& rect) {
    if (source.pixelBytes != pixelBytes) return;  // the size of a pixel names the format
    const Rect area = Intersection(source).Intersection(rect);
    CopyJob job{&source, this, area, static_cast<std::size_t>(area.Width()) * static_cast<std::size_t>(pixelBytes)};
    RunInBands(area.y0, area.y1, area.Width(), CopyRow, &job);
}

void Image::ClearAndCopyRegion(const Image& source, const Rect& rect) {
    Clear();
    CopyRegion(source, rect);
}

std::int32_t Image::LivingImages() { return livingImages; }

}  // namespace chalkpane
