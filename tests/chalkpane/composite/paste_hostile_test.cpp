#include <doctest/doctest.h>

#include <limits>

#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/composite/paster.h"
#include "tests/chalkpane/composite/paste_fixture.h"

// Pastes that no brush makes: nothing may be touched that is not there.
namespace chalkpane {

namespace {

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

const std::array hostileRects{Rect(lowest, lowest, highest, highest),
                              Rect(highest, highest, lowest, lowest),
                              Rect(lowest, 0, lowest, 5),
                              Rect(highest, highest, highest, highest),
                              Rect(3, 9, 2, 0),
                              Rect(3, 0, 2, 9),
                              Rect(),
                              Rect(-100, -100, 4, 4)};

// Every operation there is, on the images as they come.
void PasteAll(const Image& source, const Image* mask, Image& target, const Rect& rect, const Image* clip) {
    for (const Clip clipInverted : {Clip::Limiting, Clip::Inverted}) {
        for (const auto mode : {std::uint8_t{0}, std::uint8_t{16}, std::uint8_t{200}}) {
            BrushPaster paster;
            paster.SetMode(mode);
            paster.SetOpacity(0.8);
            paster.Paste(source, mask, target, PasteBehaviour::Over, rect, 0, clip, clipInverted);
            paster.Paste(source, mask, target, PasteBehaviour::Replace, rect, 0, clip, clipInverted);
            paster.PasteToMask(source, mask, target, rect);
            paster.PasteValueToMask(source, mask, target, rect, 65535);
        }
        Eraser eraser;
        eraser.SetOpacity(0.1);
        eraser.Paste(source, mask, target, rect, 0, clip, clipInverted);
        Paster layer;
        layer.SetOpacity(0.5);
        layer.Paste(source, target, rect, 0, clip, clipInverted);
        layer.PasteOnto(source, target, rect, 0);
        layer.PasteMaskOnto(source, target, rect);
        layer.PasteValueOnto(65535, source, target, rect);
        layer.Replace(source, target, rect, 0, clip, clipInverted);
    }
}

}  // namespace

TEST_CASE("any rectangle is survived") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Image source = NoiseImage({-4, -4, 9, 9}, PixelType::Colour, depth, 1);
        const Image mask = NoiseImage({2, 2, 5, 30}, PixelType::Mask, depth, 2);
        const Image clip = NoiseImage({4, -9, 30, 4}, PixelType::Colour, depth, 3);
        for (const Rect& rect : hostileRects) {
            Image target = NoiseImage({0, 0, 19, 19}, PixelType::Colour, depth, 4);
            PasteAll(source, &mask, target, rect, &clip);
            PasteAll(source, nullptr, target, rect, nullptr);
        }
    }
}

TEST_CASE("pictures at the ends of the plane are pasted") {
    for (const Rect& bounds : {Rect(highest - 12, highest - 5, highest, highest),
                               Rect(lowest, lowest, lowest + 12, lowest + 5), Rect(highest, lowest, highest, lowest)}) {
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            const auto placed = [&](PixelType type, unsigned seed) {
                Image image = NoiseImage({0, 0, bounds.Width() - 1, bounds.Height() - 1}, type, depth, seed);
                image.MoveTo(bounds.x0, bounds.y0);
                return image;
            };
            const Image source = placed(PixelType::Colour, 1);
            const Image mask = placed(PixelType::Mask, 2);
            for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
                Image target = placed(type, 3);
                PasteAll(source, &mask, target, bounds, &mask);
                PasteAll(source, nullptr, target, {lowest, lowest, highest, highest}, nullptr);
            }
        }
    }
}

TEST_CASE("a rectangle without end is cut to the images") {
    const Image source = FlatImage({-4, -4, 9, 9}, PixelType::Colour, Depth::Eight, {255, 255, 255, 255});
    const Image mask = FlatImage({2, 2, 5, 30}, PixelType::Mask, Depth::Eight, {255});
    Image target = Image::Colour({0, 0, 19, 19}, Depth::Eight, AlphaForm::Premultiplied);
    BrushPaster().Paste(source, &mask, target, PasteBehaviour::Over, {lowest, lowest, highest, highest}, 0, nullptr,
                        Clip::Limiting);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x) CHECK_EQ(ValuesAt(target, x, y)[3], Rect(2, 2, 5, 9).Contains(x, y) ? 254 : 0);
}

TEST_CASE("images of another depth or format change nothing") {
    const Rect rect{0, 0, 9, 9};
    for (int i = 0; i < 64; ++i) {
        const auto depthOf = [i](int bit) { return DepthOf(i >> bit & 1); };
        const auto typeOf = [i](int bit) { return (i >> bit & 1) != 0 ? PixelType::Mask : PixelType::Colour; };
        const Image source = NoiseImage(rect, typeOf(4), depthOf(0), 1);
        const Image mask = NoiseImage(rect, PixelType::Mask, depthOf(1), 2);
        const Image clip = NoiseImage(rect, PixelType::Mask, depthOf(2), 3);
        Image target = NoiseImage(rect, typeOf(5), depthOf(3), 4);
        const reference::Picture before(target);
        if (depthOf(0) != depthOf(3)) {
            PasteAll(source, &mask, target, rect, &clip);
            CAPTURE(i);
            CHECK(SamePixels(target, before));
        } else {
            PasteAll(source, &mask, target, rect, &clip);  // survives
        }
    }
}

TEST_CASE("empty images are survived") {
    const Image nothing = Image::Colour(Rect(), Depth::Eight, AlphaForm::Straight);
    const Image nothingMask = Image::Mask(Rect(), Depth::Eight);
    Image target = NoiseImage({0, 0, 9, 9}, PixelType::Colour, Depth::Eight, 1);
    Image emptyTarget = Image::Colour(Rect(), Depth::Eight, AlphaForm::Straight);
    PasteAll(nothing, nullptr, target, target, nullptr);
    PasteAll(target, &nothingMask, target, target, nullptr);
    PasteAll(target, nullptr, target, target, &nothingMask);
    PasteAll(target, nullptr, emptyTarget, {lowest, lowest, highest, highest}, nullptr);
}

// Sums stored modulo the word leave such values in pictures.
TEST_CASE("14-bit words beyond full scale overflow nothing") {
    const Rect rect{0, 0, 15, 15};
    std::mt19937 random(5);
    const auto wild = [&](PixelType type) {
        Image image(rect, type, Depth::Fourteen, (random() & 1) != 0 ? AlphaForm::Premultiplied : AlphaForm::Straight);
        for (std::int32_t y = image.y0; y <= image.y1; ++y)
            for (auto& word : image.Row14(y)) word = static_cast<std::uint16_t>(random() % 3 == 0 ? 65535 : random());
        return image;
    };
    for (int i = 0; i < 20; ++i) {
        const Image source = wild(PixelType::Colour);
        const Image sourceMask = wild(PixelType::Mask);
        const Image mask = wild(PixelType::Mask);
        const Image clip = wild(PixelType::Mask);
        Image target = wild(PixelType::Colour);
        Image targetMask = wild(PixelType::Mask);
        for (const Image* from : {&source, &sourceMask}) {
            PasteAll(*from, &mask, target, rect, &clip);
            PasteAll(*from, &mask, targetMask, rect, nullptr);
            PasteAll(*from, nullptr, targetMask, rect, nullptr);
        }
    }
}

TEST_CASE("opacities without sense are survived") {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Image source = NoiseImage({0, 0, 9, 9}, PixelType::Colour, Depth::Fourteen, 1);
    const Image mask = NoiseImage({0, 0, 9, 9}, PixelType::Mask, Depth::Fourteen, 2);
    Image target = NoiseImage({0, 0, 9, 9}, PixelType::Colour, Depth::Fourteen, 3);
    Image targetMask = NoiseImage({0, 0, 9, 9}, PixelType::Mask, Depth::Fourteen, 3);
    for (const double opacity : {infinity, -infinity, 1e300, 1e-300, std::numeric_limits<double>::quiet_NaN()}) {
        BrushPaster paster;
        paster.SetOpacity(opacity);
        paster.Paste(source, &mask, target, PasteBehaviour::Over, target, 0, &mask, Clip::Inverted);
        paster.PasteToMask(source, &mask, targetMask, target);
        Eraser eraser;
        eraser.SetOpacity(opacity);
        eraser.Paste(source, &mask, target, target, 0, nullptr, Clip::Limiting);
        Paster layer;
        layer.SetOpacity(opacity);
        layer.SetFactor(std::numeric_limits<float>::infinity());
        layer.Paste(source, target, target, 0, nullptr, Clip::Limiting);
        layer.Replace(source, target, target, 0, nullptr, Clip::Limiting);
        layer.PasteMaskOnto(mask, targetMask, target);
    }
}

}  // namespace chalkpane
