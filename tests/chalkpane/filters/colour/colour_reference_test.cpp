#include <array>
#include <vector>

#include "chalkpane/base/random.h"
#include "chalkpane/filters/colour/auto_eq_cc.h"
#include "chalkpane/filters/colour/black_white_cc.h"
#include "chalkpane/filters/colour/brightness_cc.h"
#include "chalkpane/filters/colour/chroma_cc.h"
#include "chalkpane/filters/colour/colour_dodge_cc.h"
#include "chalkpane/filters/colour/colour_jitter_filter.h"
#include "chalkpane/filters/colour/component_cc.h"
#include "chalkpane/filters/colour/curve_table.h"
#include "chalkpane/filters/colour/hue_cc.h"
#include "chalkpane/filters/colour/invert_cc.h"
#include "chalkpane/filters/colour/luma_cc.h"
#include "chalkpane/filters/colour/posterize_effect.h"
#include "chalkpane/filters/colour/rgb_channel_cc.h"
#include "chalkpane/filters/colour/solarize_effect.h"
#include "chalkpane/filters/colour/subtract_cc.h"
#include "chalkpane/filters/colour/tint_filter.h"
#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/colour.h"

// Every colour corrector against its plain reference, over random pictures.

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

// Holds the reference's settings, without those arguments that no colour corrector has.
template <typename Reference>
auto OnArea(Reference reference) {
    return [reference](const Image& source, const Rect* region, bool /*expand*/) { return reference(source, region); };
}

void SetColour(Filter& filter, std::string_view label, const reference::Bgr& bgr) {
    const auto word = [&bgr](std::size_t c) { return static_cast<std::uint16_t>(bgr[c]); };
    SetParameter(filter, label, [&](ParameterValue& value) { value.setColour({word(2), word(1), word(0)}); });
}

}  // namespace

TEST_CASE("Inverting, black and white, equalising are their plain references") {
    InvertCC invert;
    CompareWithReference(invert, OnArea([](const Image& source, const Rect* region) {
                             return reference::EachChannel(source, region, [](int c, int max) { return max - c; });
                         }));
    BlackWhiteCC blackWhite;
    CompareWithReference(blackWhite, OnArea(reference::BlackWhite));
    AutoEqCC equalise;
    CompareWithReference(equalise, OnArea(reference::AutoEqualise));
}

TEST_CASE("Scaling chroma is its plain reference") {
    for (const float setting : {0.0F, 37.5F, 100.0F, 300.0F, -50.0F}) {
        CAPTURE(setting);
        ChromaCC filter;
        SetNumber(filter, "Chroma Scale", setting);
        CompareWithReference(filter, OnArea([setting](const Image& source, const Rect* region) {
                                 return reference::Chroma(source, setting, region);
                             }));
    }
}

TEST_CASE("Adding a colour is its plain reference") {
    for (const float add : {0.3F, 1.0F, -0.7F}) {
        CAPTURE(add);
        const reference::Bgr words{16383, 3000, 0};
        SubtractCC filter;
        SetColour(filter, "Source Color", words);
        SetNumber(filter, "Add", add);
        CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                 return reference::Subtract(source, words, add, region);
                             }));
    }
}

TEST_CASE("The channel mixer is its plain reference") {
    for (const int component : {0, 1, 2}) {
        for (const std::array<float, 3>& bgrInputs : {std::array{0.25F, 0.5F, 0.3F}, std::array{1.0F, 1.0F, 1.0F}}) {
            CAPTURE(component);
            RGBChannelCC filter;
            SetNumber(filter, "Component", component);
            SetNumber(filter, "Blue Input", bgrInputs[0]);
            SetNumber(filter, "Green Input", bgrInputs[1]);
            SetNumber(filter, "Red Input", bgrInputs[2]);
            CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                     return reference::ChannelMixer(source, component, bgrInputs, region);
                                 }));
        }
    }
}

TEST_CASE("Brightness is its plain reference, with and without saturation") {
    for (const reference::BrightnessSettings& settings : {reference::BrightnessSettings{0.5, 0.5, 0.5, 0.5},
                                                          {-0.3, 0.2, -0.4, 0.0},
                                                          {0.1, -0.2, 0.0, -1.0},
                                                          {0.0, 0.0, 0.0, 1.0}}) {
        CAPTURE(settings.saturation);
        BrightnessCC filter;
        SetNumber(filter, "Brightness", settings.brightness);
        SetNumber(filter, "Contrast", settings.contrast);
        SetNumber(filter, "Gamma", settings.gamma);
        SetNumber(filter, "Saturation", settings.saturation);
        CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                 return reference::Brightness(source, settings, region);
                             }));
    }
}

TEST_CASE("The luma curve is its plain reference") {
    for (const double lift : {0.0, 0.4}) {
        CAPTURE(lift);
        ShapePointList curve;
        curve[0].setPoint(0.0, lift);
        curve[0].setOutHandle(0.2, 0.6);
        LumaCC filter;
        SetParameter(filter, "LUT Graph", [&curve](ParameterValue& value) { value.setGraph(curve); });
        CompareWithReference(filter, OnArea([&curve](const Image& source, const Rect* region) {
                                 const auto exact = CurveTable(curve, reference::FullScale(source));
                                 return reference::LumaCurve(source, std::vector<int>(exact.begin(), exact.end()),
                                                             region);
                             }));
    }
}

TEST_CASE("Turning hues is its plain reference, with and without ranges") {
    for (const reference::HueSettings& settings : {reference::HueSettings{50.0F, 0.0F, 0.0F, 0.0F},
                                                   {-100.0F, 30.0F, 0.0F, -60.0F},
                                                   {0.0F, 0.0F, 99.0F, 0.0F},
                                                   {9000.0F, 200.0F, -300.0F, 400.0F}}) {
        CAPTURE(settings.hue);
        HueCC filter;
        SetNumber(filter, "Hue Rotation", settings.hue);
        SetNumber(filter, "Shadow Hue Rotation", settings.shadow);
        SetNumber(filter, "Midtone Hue Rotation", settings.midtone);
        SetNumber(filter, "Highlight Hue Rotation", settings.highlight);
        CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                 return reference::HueRotated(source, settings, region);
                             }));
    }
}

TEST_CASE("Jittering colour is its plain reference") {
    const Image source = NoisePicture({-20, 3, 57, 21}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 12);
    ColourJitterFilter filter;
    SetNumber(filter, "Hue Rotation", 80);
    SeedRandom(5);
    const auto result = Applied(filter, source);
    SeedRandom(5);
    const float turn = (80.0F * (static_cast<float>(Random()) / 32767.0F)) / 360.0F;
    CHECK(SamePixels(*result,
                     reference::RotatedHues(source, nullptr, [turn](float h, float /*v*/) { return h + turn; })));
}

TEST_CASE("Tinting is its plain reference in every mixture of ranges") {
    for (const std::array<float, 4>& amounts :
         {std::array{1.0F, 0.0F, 0.0F, 0.0F}, std::array{0.4F, 0.0F, 0.0F, 0.0F}, std::array{0.7F, 0.5F, 0.2F, 1.0F},
          std::array{0.0F, 0.0F, 1.0F, 0.0F}, std::array{1.0F, 1.0F, 0.0F, 0.3F}}) {
        for (const float keep : {0.0F, 0.8F}) {
            CAPTURE(amounts[0]);
            CAPTURE(amounts[1]);
            CAPTURE(keep);
            const reference::TintSettings settings{
                {{{200, 9000, 16383}, {16383, 0, 0}, {0, 0, 0}, {1000, 16383, 3000}}}, amounts, keep};
            TintFilter filter;
            SetNumber(filter, "Keep Highlights", keep);
            std::size_t range = 0;
            for (const std::string part : {"", "Shadow ", "Midtone ", "Highlight "}) {
                SetColour(filter, part + "Tint Color", settings.colours[range]);
                SetNumber(filter, part + "Tint Amount", amounts[range++]);
            }
            CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                     return reference::Tinted(source, settings, region);
                                 }));
        }
    }
}

TEST_CASE("Dodging is its plain reference in all modes and ranges") {
    for (int mode = 0; mode < 7; ++mode) {
        const reference::DodgeSettings settings{{12000, 3000, 16383}, mode % 2 == 0 ? 0.6F : 1.0F, mode, mode % 4};
        CAPTURE(mode);
        ColourDodgeCC filter;
        SetColour(filter, "Color", settings.words);
        SetNumber(filter, "Amount", settings.amount);
        SetNumber(filter, "Mode", mode);
        SetNumber(filter, "Range", settings.range);
        CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                 return reference::Dodged(source, settings, region);
                             }));
    }
}

TEST_CASE("Solarizing and posterizing are their plain references") {
    for (const float amount : {0.0F, 0.3F, 0.5F, 0.9F, 1.0F}) {
        CAPTURE(amount);
        SolarizeEffect filter;
        SetNumber(filter, "Amount", amount);
        CompareWithReference(filter, OnArea([amount](const Image& source, const Rect* region) {
                                 return reference::Solarised(source, amount, region);
                             }));
    }
    for (const int levels : {2, 7, 255}) {
        CAPTURE(levels);
        PosterizeEffect filter;
        SetNumber(filter, "Levels", levels);
        CompareWithReference(filter, OnArea([levels](const Image& source, const Rect* region) {
                                 return reference::Posterised(source, levels, region);
                             }));
    }
}

TEST_CASE("Correcting a component is its plain reference for all ten") {
    ShapePointList curve;
    curve[0].setPoint(0.0, 0.1);
    curve[0].setOutHandle(0.2, 0.6);
    for (int component = 0; component < 10; ++component) {
        CAPTURE(component);
        ComponentCC filter;
        SetNumber(filter, "Component", component);
        SetParameter(filter, "LUT Graph", [&curve](ParameterValue& value) { value.setGraph(curve); });
        CompareWithReference(filter, OnArea([&](const Image& source, const Rect* region) {
                                 const auto exact = CurveTable(curve, reference::FullScale(source));
                                 return reference::ComponentCorrected(
                                     source, std::vector<float>(exact.begin(), exact.end()), component, region);
                             }));
    }
}
