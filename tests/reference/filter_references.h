#pragma once

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/base/random.h"
#include "chalkpane/filters/colour/curve_table.h"
#include "chalkpane/filters/filter.h"
#include "chalkpane/filters/noise/noise_lattice.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/shape_point_list.h"
#include "tests/reference/colour.h"
#include "tests/reference/distort.h"
#include "tests/reference/effects.h"
#include "tests/reference/neighbourhood.h"

// The plain reference of any filter that has one, with whatever settings it was given: for those who go through the
// registry and know no filter by its class.
namespace reference {

// The values of a filter by the labels of their parameters.
class FilterSettings {
public:
    explicit FilterSettings(const chalkpane::Filter& filter) : m_values(*filter.m_values) {}

    [[nodiscard]] double Real(std::string_view label) const {
        double number = 0.0;
        Value(label).getDouble(number);
        return number;
    }
    [[nodiscard]] float Float(std::string_view label) const {
        float number = 0.0F;
        Value(label).getFloat(number);
        return number;
    }
    [[nodiscard]] int Integer(std::string_view label) const {
        std::int32_t number = 0;
        Value(label).getInteger(number);
        return number;
    }
    [[nodiscard]] int Choice(std::string_view label) const {
        std::uint8_t index = 0;
        Value(label).getEnumeration(index);
        return index;
    }
    [[nodiscard]] bool Boolean(std::string_view label) const {
        bool on = false;
        Value(label).getBoolean(on);
        return on;
    }
    [[nodiscard]] Bgr Colour(std::string_view label) const {
        chalkpane::Colour colour;
        Value(label).getColour(colour);
        return {colour.blue, colour.green, colour.red};
    }
    template <typename Number>
    [[nodiscard]] std::vector<Number> Curve(std::string_view label, const Image& source) const {
        chalkpane::ShapePointList curve;
        Value(label).getGraph(curve);
        const auto exact = chalkpane::CurveTable(curve, FullScale(source));
        std::vector<Number> entries;
        entries.reserve(exact.size());
        for (const double entry : exact) entries.push_back(static_cast<Number>(entry));
        return entries;
    }

private:
    [[nodiscard]] const chalkpane::ParameterValue& Value(std::string_view label) const {
        for (const auto& value : m_values)
            if (value->getParameter()->label == label) return *value;
        throw std::runtime_error("no such parameter");
    }
    const chalkpane::DataSet& m_values;
};

inline TintSettings TintOf(const FilterSettings& s) {
    TintSettings settings;
    settings.keep = s.Float("Keep Highlights");
    std::size_t range = 0;
    for (const std::string part : {"", "Shadow ", "Midtone ", "Highlight "}) {
        settings.colours[range] = s.Colour(part + "Tint Color");
        settings.amounts[range++] = s.Float(part + "Tint Amount");
    }
    return settings;
}

inline GrainSettings GrainOf(const FilterSettings& s) {
    return {{s.Float("Red Level"), s.Float("Green Level"), s.Float("Blue Level")},
            {s.Float("Red Size"), s.Float("Green Size"), s.Float("Blue Size")},
            s.Integer("RandomSeed")};
}

inline HalftoneSettings HalftoneOf(const FilterSettings& s) {
    return {s.Integer("Size"),
            s.Float("Softness"),
            s.Choice("Shape"),
            s.Boolean("Color"),
            {s.Float("Red/Black Angle"), s.Float("Green Angle"), s.Float("Blue Angle")}};
}

inline EmbossSettings EmbossOf(const FilterSettings& s) {
    return {s.Float("Light Direction"), s.Float("Light Elevation"), s.Float("Bump Height"), s.Colour("Color"),
            s.Float("Mix With Image")};
}

inline Image Turbulence(const Image& source, const FilterSettings& s) {
    const float amount = s.Float("Amount");
    const float inverse = 1.0F / static_cast<float>(s.Integer("Lattice Size"));
    return Distort(source, nullptr, 0, s.Choice("Edges"), false, [&](int x, int y, float& sx, float& sy) {
        const auto column = static_cast<float>(x);
        const auto row = static_cast<float>(y);
        const auto n = chalkpane::NoiseLattice::Shared()->TurbulencePair(column * inverse, row * inverse);
        sx = column + 2.0F * amount * n.x;
        sy = row + 2.0F * amount * n.y;
    });
}

inline Image RedeyeRemoved(const Image& source, float sensitivity) {
    return FloatFiltered(source, nullptr, [&](int, int, float& a, float& r, float& g, float& b) {
        const float k = r * 0.5133333F;
        if (a != 0.0F && g - sensitivity <= k && b * 0.1933333F - sensitivity <= k)
            r = ((g + b * 0.1933333F) * 0.5F) / 0.5133333F;
    });
}

struct FilterReference {
    std::string_view label;  // of the filter
    Image (*apply)(const Image& source, const FilterSettings& settings, int frame);
};

// In the order of the registry. Colour Jitter draws its one number as the filter does.
inline constexpr std::array filterReferences{
    FilterReference{"Blur", [](const Image& source, const FilterSettings& s,
                               int) { return Blur(source, s.Real("Softness"), nullptr, false); }},
    FilterReference{"Super Soften",
                    [](const Image& source, const FilterSettings& s, int) {
                        return SuperSoften(source, s.Real("Softness"), s.Choice("Quality") + 1, nullptr, false);
                    }},
    FilterReference{"Add/Subtract",
                    [](const Image& source, const FilterSettings& s, int) {
                        return Subtract(source, s.Colour("Source Color"), s.Float("Add"), nullptr);
                    }},
    FilterReference{"AutoEqualize",
                    [](const Image& source, const FilterSettings&, int) { return AutoEqualise(source, nullptr); }},
    FilterReference{"Black & White",
                    [](const Image& source, const FilterSettings&, int) { return BlackWhite(source, nullptr); }},
    FilterReference{"Brightness/Contrast",
                    [](const Image& source, const FilterSettings& s, int) {
                        return Brightness(
                            source, {s.Real("Brightness"), s.Real("Contrast"), s.Real("Gamma"), s.Real("Saturation")},
                            nullptr);
                    }},
    FilterReference{"Chroma Scale", [](const Image& source, const FilterSettings& s,
                                       int) { return Chroma(source, s.Float("Chroma Scale"), nullptr); }},
    FilterReference{
        "Color Dodge",
        [](const Image& source, const FilterSettings& s, int) {
            return Dodged(source, {s.Colour("Color"), s.Float("Amount"), s.Choice("Mode"), s.Choice("Range")}, nullptr);
        }},
    FilterReference{"Colour Jitter",
                    [](const Image& source, const FilterSettings& s, int) {
                        const float turn =
                            (s.Float("Hue Rotation") * (static_cast<float>(chalkpane::Random()) / 32767.0F)) / 360.0F;
                        return RotatedHues(source, nullptr, [turn](float h, float /*v*/) { return h + turn; });
                    }},
    FilterReference{"Component Correct",
                    [](const Image& source, const FilterSettings& s, int) {
                        return ComponentCorrected(source, s.Curve<float>("LUT Graph", source), s.Choice("Component"),
                                                  nullptr);
                    }},
    FilterReference{"Hue Rotate",
                    [](const Image& source, const FilterSettings& s, int) {
                        return HueRotated(source,
                                          {s.Float("Hue Rotation"), s.Float("Shadow Hue Rotation"),
                                           s.Float("Midtone Hue Rotation"), s.Float("Highlight Hue Rotation")},
                                          nullptr);
                    }},
    FilterReference{"Invert Color",
                    [](const Image& source, const FilterSettings&, int) {
                        return EachChannel(source, nullptr, [](int c, int max) { return max - c; });
                    }},
    FilterReference{"Luma Graph", [](const Image& source, const FilterSettings& s,
                                     int) { return LumaCurve(source, s.Curve<int>("LUT Graph", source), nullptr); }},
    FilterReference{"Remove Red-eye", [](const Image& source, const FilterSettings& s,
                                         int) { return RedeyeRemoved(source, s.Float("Sensitivity")); }},
    FilterReference{"RGB Channel Mixer",
                    [](const Image& source, const FilterSettings& s, int) {
                        return ChannelMixer(source, s.Choice("Component"),
                                            {s.Float("Blue Input"), s.Float("Green Input"), s.Float("Red Input")},
                                            nullptr);
                    }},
    FilterReference{
        "Tint", [](const Image& source, const FilterSettings& s, int) { return Tinted(source, TintOf(s), nullptr); }},
    FilterReference{"Turbulence",
                    [](const Image& source, const FilterSettings& s, int) { return Turbulence(source, s); }},
    FilterReference{"Add Noise",
                    [](const Image& source, const FilterSettings& s, int) {
                        return AddNoise(source, s.Float("Level"), s.Choice("Distribution") != 0,
                                        s.Choice("Channels") != 0, s.Integer("Density %"), nullptr);
                    }},
    FilterReference{"Emboss", [](const Image& source, const FilterSettings& s,
                                 int) { return Emboss(source, EmbossOf(s), nullptr); }},
    FilterReference{"Halftone", [](const Image& source, const FilterSettings& s,
                                   int) { return Halftone(source, HalftoneOf(s), nullptr); }},
    FilterReference{"Oil",
                    [](const Image& source, const FilterSettings& s, int) {
                        return Oil(source, s.Integer("Radius"), s.Integer("Levels"), s.Boolean("Use Intensity"),
                                   nullptr);
                    }},
    FilterReference{"Pixellate", [](const Image& source, const FilterSettings& s,
                                    int) { return Pixellate(source, s.Integer("Size"), nullptr); }},
    FilterReference{"Solarize", [](const Image& source, const FilterSettings& s,
                                   int) { return Solarised(source, s.Float("Amount"), nullptr); }},
    FilterReference{"Stained Glass",
                    [](const Image& source, const FilterSettings& s, int) {
                        return Voronoi(source, s.Real("Spacing"), s.Real("Randomness"), s.Real("Edges"), nullptr);
                    }},
    FilterReference{"Edge Detect", [](const Image& source, const FilterSettings& s,
                                      int) { return EdgeDetect(source, s.Real("Brightness"), nullptr, false); }},
    FilterReference{"Median", [](const Image& source, const FilterSettings& s,
                                 int) { return Median(source, s.Integer("Radius"), nullptr, false); }},
    FilterReference{"Posterize", [](const Image& source, const FilterSettings& s,
                                    int) { return Posterised(source, s.Integer("Levels"), nullptr); }},
    FilterReference{"Film Grain", [](const Image& source, const FilterSettings& s,
                                     int frame) { return FilmGrain(source, GrainOf(s), frame); }},
};

// What the filter, whose values have been made, is to make of a source at the depth that it works in; nothing where
// there is no reference.
inline std::optional<Image> Filtered(const chalkpane::Filter& filter, const Image& source, int frame) {
    for (const FilterReference& row : filterReferences)
        if (row.label == filter.Label()) return row.apply(source, FilterSettings(filter), frame);
    return std::nullopt;
}

}  // namespace reference
