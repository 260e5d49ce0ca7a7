// Paints a stroke on a picture in RGBA, as most programs have their pixels, and inverts a corner of it.
//
// The library keeps its pixels blue, green, red, alpha, colour multiplied by alpha, the top row first. An image can
// stand on pixels of one's own, so nothing is copied here: the picture is turned into that order and form in place, and
// back when it is done.
#include <chalkpane/brush/basic_brush.h>
#include <chalkpane/filters/filter_registry.h>
#include <chalkpane/image/image.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using chalkpane::AlphaForm;
using chalkpane::Depth;
using chalkpane::Image;
using chalkpane::PixelType;
using chalkpane::Rect;

// Four bytes a pixel: red, green, blue, alpha, not multiplied; the top row first and no gap between the rows.
struct RgbaPicture {
    std::int32_t width;
    std::int32_t height;
    std::vector<std::uint8_t> bytes;
};

// Red, green, blue becomes blue, green, red, and the other way round.
void SwapRedAndBlue(RgbaPicture& picture) {
    for (std::size_t i = 0; i + 3 < picture.bytes.size(); i += 4) std::swap(picture.bytes[i], picture.bytes[i + 2]);
}

// The picture's own bytes as an image; the picture must outlive it.
Image ImageOn(RgbaPicture& picture) {
    return Image::Lend({picture.bytes.data(), static_cast<std::size_t>(picture.width) * 4},
                       Rect(0, 0, picture.width - 1, picture.height - 1), PixelType::Colour, Depth::Eight,
                       AlphaForm::Premultiplied);
}

// A new filter of that name; null when there is none.
std::unique_ptr<chalkpane::Filter> FilterNamed(std::string_view name) {
    for (const chalkpane::Filter* prototype : chalkpane::FilterRegistry::Instance().Filters())
        if (prototype->Name() == name) return prototype->CreateNew();
    return nullptr;
}

}  // namespace

int main() {
    RgbaPicture picture{256, 256, std::vector<std::uint8_t>(std::size_t{256} * 256 * 4, 255)};  // white, opaque

    // In.
    SwapRedAndBlue(picture);
    Image canvas = ImageOn(picture);
    canvas.Premultiply(canvas);

    // A red stroke of a brush 11 pixels wide. y grows upward: it runs from the lower left to the upper right.
    chalkpane::BasicBrush brush("Embedded");
    brush.SetTarget(&canvas);
    brush.SetSize(5);  // the radius: 2 * 5 + 1 pixels
    brush.SetColour({0x3FFF, 0, 0});
    Rect changed = brush.BeginStroke(40, 60, 1.0);
    changed = changed.Union(brush.EndStroke(200, 180, 1.0));
    std::printf("painted %d,%d to %d,%d\n", changed.x0, changed.y0, changed.x1, changed.y1);

    // A filter makes a new image, which is copied back.
    if (const auto invert = FilterNamed("InvertColor")) {
        std::unique_ptr<Image> inverted;
        const Rect corner(0, 0, 15, 15);  // the lower left
        invert->Apply(canvas, inverted, false, &corner, false);
        if (inverted) canvas.CopyRegion(*inverted, corner);
    }

    // Out.
    canvas.Unpremultiply(canvas);
    SwapRedAndBlue(picture);
    const auto print = [&](const char* what, std::size_t x, std::size_t rowFromTop) {
        const std::uint8_t* const rgba = &picture.bytes[(rowFromTop * 256 + x) * 4];
        std::printf("%s: %d %d %d %d\n", what, rgba[0], rgba[1], rgba[2], rgba[3]);
    };
    print("on the stroke", 120, 255 - 120);
    print("beside it", 120, 0);
    print("inverted corner", 0, 255);
}
