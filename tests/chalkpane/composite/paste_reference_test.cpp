#include <doctest/doctest.h>

#include <optional>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/composite/blending_modes.h"
#include "chalkpane/composite/brush_paster.h"
#include "chalkpane/composite/eraser.h"
#include "chalkpane/composite/paster.h"
#include "tests/chalkpane/composite/paste_fixture.h"
#include "tests/reference/pasting.h"

// Random pastes of every kind against the plain references.
namespace chalkpane {

namespace {

enum class ClipKind { None, Limiting, Inverted };
constexpr std::array clipKinds{ClipKind::None, ClipKind::Limiting, ClipKind::Inverted};
constexpr std::array opacities{1.0, 0.9961, 0.99609375, 0.73, 0.5, 0.003, 1.5};

// Everything that one random paste needs, and the same for the reference.
class Scene {
public:
    Scene(std::uint32_t seed, Depth depth, ClipKind clipKind, PixelType sourceType, PixelType targetType)
        : random(seed),
          source(NoiseImage(RandomRect(random), sourceType, depth, seed * 5,
                            (random() & 1) != 0 ? AlphaForm::Premultiplied : AlphaForm::Straight)),
          target(NoiseImage({0, 0, 39, 36}, targetType, depth, seed * 5 + 1, AlphaForm::Premultiplied)),
          rect(RandomRect(random)),
          opacity(opacities[random() % opacities.size()]),
          sourcePicture(source),
          targetPicture(target) {
        const auto maskKind = random() % 3;
        if (maskKind != 0)
            mask.emplace(NoiseImage(RandomRect(random), maskKind == 1 ? PixelType::Mask : PixelType::Colour, depth,
                                    seed * 5 + 2));
        if (clipKind != ClipKind::None)
            clip.emplace(NoiseImage(RandomRect(random), random() % 2 == 0 ? PixelType::Mask : PixelType::Colour, depth,
                                    seed * 5 + 3));
        if (mask) maskPicture.emplace(*mask);
        if (clip) clipPicture.emplace(*clip);
        clipInverted = clipKind == ClipKind::Inverted ? Clip::Inverted : Clip::Limiting;
    }

    [[nodiscard]] reference::Pasting Reference() {
        reference::Pasting job;
        job.source = &sourcePicture;
        job.mask = maskPicture ? &*maskPicture : nullptr;
        job.target = &targetPicture;
        job.rect = rect;
        job.clip = {clipPicture ? &*clipPicture : nullptr, clipInverted == Clip::Inverted};
        job.opacity = opacity;
        job.premultiplied = source.flag != 0;
        return job;
    }
    [[nodiscard]] const Image* Mask() const { return mask ? &*mask : nullptr; }
    [[nodiscard]] const Image* ClipImage() const { return clip ? &*clip : nullptr; }

    std::mt19937 random;
    Image source;
    Image target;
    std::optional<Image> mask;
    std::optional<Image> clip;
    Rect rect;
    double opacity;
    Clip clipInverted = Clip::Limiting;
    reference::Picture sourcePicture;
    reference::Picture targetPicture;
    std::optional<reference::Picture> maskPicture;
    std::optional<reference::Picture> clipPicture;
};

void CompareBrushPaste(std::uint32_t seed, Depth depth, ClipKind clipKind, std::uint8_t mode,
                       PasteBehaviour behaviour) {
    Scene scene(seed, depth, clipKind, PixelType::Colour, PixelType::Colour);
    BrushPaster paster;
    paster.SetOpacity(scene.opacity);
    paster.SetMode(mode);
    paster.Paste(scene.source, scene.Mask(), scene.target, behaviour, scene.rect, 0, scene.ClipImage(),
                 scene.clipInverted);
    auto reference = scene.Reference();
    reference.mode = mode;
    reference.over = behaviour == PasteBehaviour::Over;
    reference::BrushPaste(reference);
    CAPTURE(seed);
    CAPTURE(depth);
    CAPTURE(mode);
    CAPTURE(reference.over);
    CAPTURE(static_cast<int>(clipKind));
    CHECK(SamePixels(scene.target, scene.targetPicture));
}

template <typename Compare>
void ForEachDepthAndClip(Compare compare) {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen})
        for (const ClipKind clipKind : clipKinds) compare(depth, clipKind);
}

}  // namespace

TEST_CASE("unblended dabs agree with the plain reference") {
    std::uint32_t seed = 1000;
    ForEachDepthAndClip([&](Depth depth, ClipKind clipKind) {
        for (int i = 0; i < 100; ++i) {
            CompareBrushPaste(seed++, depth, clipKind, 0, PasteBehaviour::Over);
            CompareBrushPaste(seed++, depth, clipKind, 0, PasteBehaviour::Replace);
        }
    });
}

TEST_CASE("blended dabs agree with the plain reference in every mode") {
    std::uint32_t seed = 5000;
    ForEachDepthAndClip([&](Depth depth, ClipKind clipKind) {
        for (int mode = 1; mode < blendModeCount; ++mode) {
            for (int i = 0; i < 3; ++i) {
                CompareBrushPaste(seed++, depth, clipKind, static_cast<std::uint8_t>(mode), PasteBehaviour::Over);
                CompareBrushPaste(seed++, depth, clipKind, static_cast<std::uint8_t>(mode), PasteBehaviour::Replace);
            }
        }
    });
}

TEST_CASE("erasing agrees with the plain reference") {
    std::uint32_t seed = 20000;
    ForEachDepthAndClip([&](Depth depth, ClipKind clipKind) {
        for (int i = 0; i < 100; ++i, ++seed) {
            Scene scene(seed, depth, clipKind, PixelType::Colour, PixelType::Colour);
            Eraser eraser;
            eraser.SetOpacity(scene.opacity);
            eraser.Paste(scene.source, scene.Mask(), scene.target, scene.rect, 0, scene.ClipImage(),
                         scene.clipInverted);
            auto reference = scene.Reference();
            reference.source = nullptr;  // read for its depth alone
            reference::Erase(reference);
            CAPTURE(seed);
            CHECK(SamePixels(scene.target, scene.targetPicture));
        }
    });
}

TEST_CASE("pastes into a mask agree with the plain reference") {
    std::uint32_t seed = 30000;
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        for (int i = 0; i < 200; ++i, ++seed) {
            Scene scene(seed, depth, ClipKind::None, i % 3 == 0 ? PixelType::Mask : PixelType::Colour, PixelType::Mask);
            BrushPaster paster;
            paster.SetOpacity(scene.opacity);
            const int value =
                i % 2 == 0 ? -1 : static_cast<int>(scene.random() & (depth == Depth::Eight ? 0xff : 0x3fff));
            if (value < 0)
                paster.PasteToMask(scene.source, scene.Mask(), scene.target, scene.rect);
            else
                paster.PasteValueToMask(scene.source, scene.Mask(), scene.target, scene.rect,
                                        static_cast<std::uint16_t>(value));
            reference::PasteToMask(scene.Reference(), value);
            CAPTURE(seed);
            CAPTURE(value);
            CHECK(SamePixels(scene.target, scene.targetPicture));
        }
    }
}

TEST_CASE("compositing and replacing agree with the plain reference") {
    std::uint32_t seed = 40000;
    ForEachDepthAndClip([&](Depth depth, ClipKind clipKind) {
        for (int i = 0; i < 200; ++i, ++seed) {
            Scene scene(seed, depth, clipKind, PixelType::Colour, PixelType::Colour);
            const bool visible = i % 16 != 15;
            Paster paster;
            paster.SetOpacity(scene.opacity);
            paster.SetVisible(visible);
            auto reference = scene.Reference();
            reference.mask = nullptr;
            if (i % 2 == 0) {
                paster.Paste(scene.source, scene.target, scene.rect, 0, scene.ClipImage(), scene.clipInverted);
                reference::Composite(reference, visible);
            } else {
                paster.Replace(scene.source, scene.target, scene.rect, 0, scene.ClipImage(), scene.clipInverted);
                reference::ReplaceBy(reference, visible);
            }
            CAPTURE(seed);
            CAPTURE(visible);
            CHECK(SamePixels(scene.target, scene.targetPicture));
        }
    });
}

TEST_CASE("compositing onto a mask agrees with the plain reference") {
    std::uint32_t seed = 50000;
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        for (int i = 0; i < 300; ++i, ++seed) {
            const auto what = static_cast<reference::Onto>(i % 3);
            Scene scene(seed, depth, ClipKind::None, what == reference::Onto::Red ? PixelType::Colour : PixelType::Mask,
                        PixelType::Mask);
            Paster paster;
            paster.SetOpacity(scene.opacity);
            const auto value = static_cast<std::uint16_t>(scene.random() & (depth == Depth::Eight ? 0xff : 0x3fff));
            if (what == reference::Onto::Red) paster.PasteOnto(scene.source, scene.target, scene.rect, 0);
            if (what == reference::Onto::Mask) paster.PasteMaskOnto(scene.source, scene.target, scene.rect);
            if (what == reference::Onto::Value) paster.PasteValueOnto(value, scene.source, scene.target, scene.rect);
            auto reference = scene.Reference();
            reference.mask = nullptr;
            reference::LayOnto(reference, what, value);
            CAPTURE(seed);
            CHECK(SamePixels(scene.target, scene.targetPicture));
        }
    }
}

// Three pieces of the scratch rows, the last one short.
TEST_CASE("a blended paste of any width goes in pieces") {
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Rect wide{-3, 0, 2200, 2};
        const Image source = NoiseImage(wide, PixelType::Colour, depth, 71);
        const Image mask = NoiseImage(wide, PixelType::Mask, depth, 72);
        const Image clip = NoiseImage({500, 1, 1900, 1}, PixelType::Mask, depth, 73);
        Image target = NoiseImage(wide, PixelType::Colour, depth, 74);
        const reference::Picture sourcePicture(source);
        const reference::Picture maskPicture(mask);
        const reference::Picture clipPicture(clip);
        reference::Picture targetPicture(target);
        BrushPaster paster;
        paster.SetMode(17);
        paster.Paste(source, &mask, target, PasteBehaviour::Over, wide, 0, &clip, Clip::Inverted);
        reference::Pasting reference;
        reference.source = &sourcePicture;
        reference.mask = &maskPicture;
        reference.target = &targetPicture;
        reference.rect = wide;
        reference.clip = {&clipPicture, true};
        reference.mode = 17;
        reference::BrushPaste(reference);
        CHECK(SamePixels(target, targetPicture));
    }
}

TEST_CASE("one worker and many paint the same bytes") {
    const Rect large{0, 0, 399, 309};  // more than five bands of rows
    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
        const Image source = NoiseImage(large, PixelType::Colour, depth, 81, AlphaForm::Premultiplied);
        const Image mask = NoiseImage(large, PixelType::Mask, depth, 82);
        const auto paintAll = [&](std::int32_t workers) {
            MultiProcessor::Restart(workers);
            Image target = NoiseImage(large, PixelType::Colour, depth, 83, AlphaForm::Premultiplied);
            BrushPaster paster;
            paster.Paste(source, &mask, target, PasteBehaviour::Over, large, 0, nullptr, Clip::Limiting);
            paster.SetMode(4);
            paster.Paste(source, &mask, target, PasteBehaviour::Replace, large, 0, &mask, Clip::Inverted);
            Eraser eraser;
            eraser.SetOpacity(0.3);
            eraser.Paste(source, &mask, target, large, 0, nullptr, Clip::Limiting);
            Paster layer;
            layer.SetOpacity(0.4);
            layer.Paste(source, target, large, 0, nullptr, Clip::Limiting);
            layer.Replace(source, target, {3, 3, 200, 290}, 0, &mask, Clip::Limiting);
            return reference::Picture(target);
        };
        const auto alone = paintAll(1);
        CHECK(reference::Same(alone, paintAll(2)));
        MultiProcessor::Restart(0);
    }
}

}  // namespace chalkpane
