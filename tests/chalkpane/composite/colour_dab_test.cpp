#include "chalkpane/composite/colour_dab.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <random>

#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/image/image_rows.h"

namespace chalkpane {
namespace {

constexpr std::int32_t canvasSize = 40;

template <typename F>
void FillWithNoise(Image& image, std::mt19937& random) {
    for (std::int32_t y = image.y0; y <= image.y1; ++y)
        for (auto& channel : ImageRow<F>(image, y))
            channel = static_cast<typename F::Channel>(random() % (F::fullScale + 1U));
}

template <typename F>
bool AreEqual(const Image& a, const Image& b) {
    for (std::int32_t y = a.y0; y <= a.y1; ++y)
        if (!std::ranges::equal(ImageRow<F>(a, y), ImageRow<F>(b, y))) return false;
    return true;
}

template <typename F>
struct DabPair {
    static constexpr Depth depth = F::bits == 8 ? Depth::Eight : Depth::Fourteen;
    std::mt19937 random{20240612};
    Image colour = Image::Colour(60, 60, depth, AlphaForm::Straight);
    Image mask = Image::Mask(Rect(-3, 5, 9, 15), depth);
    Image plain = Image::Colour(canvasSize, canvasSize, depth, AlphaForm::Premultiplied);
    Image direct = Image::Colour(canvasSize, canvasSize, depth, AlphaForm::Premultiplied);

    DabPair() {
        FillWithNoise<F>(plain, random);
        direct.CopyRegion(plain, plain);
        FillWithNoise<F>(mask, random);
        for (std::int32_t y = 0; y < 60; ++y) {
            const auto row = ImageRow<F>(colour, y);
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = i % 4 == 3 ? F::fullScale : static_cast<typename F::Channel>((i % 4) * F::fullScale / 3);
        }
    }
    // Images of their own at (x, y), as a source makes them.
    template <typename Paste>
    void Compare(std::int32_t x, std::int32_t y, Paste paste) {
        Image movedMask(mask);
        movedMask.MoveTo(x, y);
        Image movedColour(colour);
        static_cast<Rect&>(movedColour) = movedMask;
        paste(movedColour, movedMask, ColourDab{&colour, &mask, movedMask});
        CAPTURE(x);
        CAPTURE(y);
        CHECK(AreEqual<F>(plain, direct));
    }
};

}  // namespace

TEST_CASE_TEMPLATE("a dab of one colour paints what its images paint, wherever it lies", F, PixelFormat8,
                   PixelFormat14) {
    DabPair<F> pair;
    BrushPaster paster;
    for (std::int32_t i = 0; i < 600; ++i) {
        const auto x = static_cast<std::int32_t>(pair.random() % 70) - 20;
        const auto y = static_cast<std::int32_t>(pair.random() % 70) - 20;
        const auto mode = static_cast<std::uint8_t>(i % 3 == 0 ? pair.random() % 22 : 0);
        const auto behaviour = i % 5 == 0 ? PasteBehaviour::Replace : PasteBehaviour::Over;
        const double opacity = i % 7 == 0 ? -1.0 : static_cast<double>(pair.random() % 1000) / 900;
        paster.SetOpacity(opacity);
        paster.SetMode(mode);
        pair.Compare(x, y, [&](const Image& colour, const Image& mask, const ColourDab& dab) {
            paster.Paste(colour, &mask, pair.plain, behaviour, mask, 0, nullptr, Clip::Inverted);
            PasteColourDab(dab, dab.rect, pair.direct, behaviour, opacity, mode);
        });
    }
}

TEST_CASE_TEMPLATE("the eraser's dab takes away what its images take away", F, PixelFormat8, PixelFormat14) {
    DabPair<F> pair;
    Eraser eraser;
    for (std::int32_t i = 0; i < 200; ++i) {
        const auto x = static_cast<std::int32_t>(pair.random() % 70) - 20;
        const auto y = static_cast<std::int32_t>(pair.random() % 70) - 20;
        const double opacity = i % 7 == 0 ? 0.0 : static_cast<double>(pair.random() % 1000) / 3000;
        eraser.SetOpacity(opacity);
        pair.Compare(x, y, [&](const Image& colour, const Image& mask, const ColourDab& dab) {
            eraser.Paste(colour, &mask, pair.plain, mask, 0, nullptr, Clip::Inverted);
            EraseColourDab(dab, dab.rect, pair.direct, opacity);
        });
    }
}

TEST_CASE("a dab that lacks an image, or is of another depth, changes nothing") {
    DabPair<PixelFormat8> pair;
    const Image deep = Image::Mask(13, 11, Depth::Fourteen);
    for (const ColourDab& dab : {ColourDab{nullptr, &pair.mask, pair.mask}, ColourDab{&pair.colour, nullptr, pair.mask},
                                 ColourDab{&pair.colour, &deep, deep}, ColourDab{&pair.mask, &pair.mask, pair.mask}}) {
        PasteColourDab(dab, dab.rect, pair.direct, PasteBehaviour::Over, 1.0, 0);
        EraseColourDab(dab, dab.rect, pair.direct, 1.0);
        CHECK(AreEqual<PixelFormat8>(pair.plain, pair.direct));
    }
}

}  // namespace chalkpane
