#include "filters/colour/component_cc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "filters/colour/curve_table.h"
#include "filters/image_rows.h"
#include "filters/row_filter.h"

namespace chalkpane {
namespace {

struct Colours {
    float red, green, blue;
};

// The curve over one channel's range, in floats.
struct Curve {
    std::vector<float> table;
    std::int32_t fullScale;

    [[nodiscard]] float At(std::int32_t index) const {
        return table[static_cast<std::size_t>(std::clamp(index, 0, fullScale))];
    }
    [[nodiscard]] float Of(float value) const { return At(Truncated(value)); }
    [[nodiscard]] float OfComplement(float value) const {
        return static_cast<float>(fullScale) - At(fullScale - Truncated(value));
    }
};

using Correct = void (*)(const Curve&, Colours&);

void CorrectBrightness(const Curve& curve, Colours& c) {
    const float largest = std::max({c.red, c.green, c.blue});
    const float wanted = curve.Of(largest);
    if (largest == 0.0F) {
        c = {wanted, wanted, wanted};
        return;
    }
    const float factor = wanted / largest;
    c = {c.red * factor, c.green * factor, c.blue * factor};
}

void CorrectSaturation(const Curve& curve, Colours& c) {
    const std::int32_t largest = Truncated(std::max({c.red, c.green, c.blue}));
    const std::int32_t spread = largest - Truncated(std::min({c.red, c.green, c.blue}));
    if (largest <= 0 || spread <= 0) return;
    const auto top = static_cast<float>(largest);
    const float wanted = curve.At(spread);
    if (wanted <= 0.001F) {
        c = {top, top, top};
        return;
    }
    const float factor = wanted / static_cast<float>(spread);
    c = {top + (c.red - top) * factor, top + (c.green - top) * factor, top + (c.blue - top) * factor};
}

void CorrectRed(const Curve& curve, Colours& c) { c.red = curve.Of(c.red); }
void CorrectGreen(const Curve& curve, Colours& c) { c.green = curve.Of(c.green); }
void CorrectBlue(const Curve& curve, Colours& c) { c.blue = curve.Of(c.blue); }
void CorrectCyan(const Curve& curve, Colours& c) { c.red = curve.OfComplement(c.red); }
void CorrectMagenta(const Curve& curve, Colours& c) { c.green = curve.OfComplement(c.green); }
void CorrectYellow(const Curve& curve, Colours& c) { c.blue = curve.OfComplement(c.blue); }

// KEEP: each colour is truncated before it is subtracted from full scale.
void CorrectBlack(const Curve& curve, Colours& c) {
    const std::int32_t full = curve.fullScale;
    const std::array<std::int32_t, 3> inks{full - Truncated(c.red), full - Truncated(c.green),
                                           full - Truncated(c.blue)};
    const std::int32_t black = *std::min_element(inks.begin(), inks.end());
    const std::int32_t more = Truncated(curve.At(black) - static_cast<float>(black));
    const auto colour = [full, more](std::int32_t ink) {
        return static_cast<float>(full - std::clamp(ink + more, 0, full));
    };
    c = {colour(inks[0]), colour(inks[1]), colour(inks[2])};
}

void CorrectAll(const Curve& curve, Colours& c) { c = {curve.Of(c.red), curve.Of(c.green), curve.Of(c.blue)}; }

struct Component {
    std::string_view label;
    Correct correct;
};
// In the order of the enumeration.
constexpr std::array<Component, 10> components{{
    {"Brightness", CorrectBrightness},
    {"Saturation", CorrectSaturation},
    {"Red", CorrectRed},
    {"Green", CorrectGreen},
    {"Blue", CorrectBlue},
    {"Cyan", CorrectCyan},
    {"Magenta", CorrectMagenta},
    {"Yellow", CorrectYellow},
    {"Black", CorrectBlack},
    {"All", CorrectAll},
}};
constexpr auto componentLabels = [] {
    std::array<std::string_view, components.size()> labels;
    std::transform(components.begin(), components.end(), labels.begin(), [](const Component& c) { return c.label; });
    return labels;
}();

template <typename F>
void CorrectRow(const Curve& curve, Correct correct, bool premultiplied, std::span<typename F::Channel> pixels) {
    constexpr auto fullScale = static_cast<float>(F::fullScale);
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        const auto alpha = pixels[i + 3];
        if (alpha == 0) {
            pixels[i] = pixels[i + 1] = pixels[i + 2] = 0;
            continue;
        }
        Colours colours{static_cast<float>(pixels[i + 2]), static_cast<float>(pixels[i + 1]),
                        static_cast<float>(pixels[i])};
        const bool divides = premultiplied && alpha < F::fullScale;
        const float a = divides ? static_cast<float>(alpha) / fullScale : 1.0F;
        if (divides) colours = {colours.red / a, colours.green / a, colours.blue / a};
        correct(curve, colours);
        if (divides) colours = {colours.red * a, colours.green * a, colours.blue * a};
        pixels[i] = LimitedChannel<F>(colours.blue);
        pixels[i + 1] = LimitedChannel<F>(colours.green);
        pixels[i + 2] = LimitedChannel<F>(colours.red);
    }
}

template <typename F>
std::unique_ptr<Image> Corrected(const Image& source, const Rect& work, const Curve& curve, Correct correct) {
    auto result = NewImageLike(source, work);
    result->CopyRegion(source, work);
    if (source.IsMask() || correct == nullptr) return result;
    for (std::int32_t y = work.y0; y <= work.y1; ++y)
        CorrectRow<F>(curve, correct, source.flag != 0, ImageRow<F>(*result, y));
    return result;
}

}  // namespace

std::span<const std::string_view> ComponentCC::Choices(std::uint8_t code) {
    return code == 0 ? std::span<const std::string_view>(componentLabels) : std::span<const std::string_view>();
}

void ComponentCC::Apply(const Image& source, std::unique_ptr<Image>& result, bool /*fast*/, const Rect* region,
                        bool /*expand*/) {
    result.reset();
    try {
        WithFormatOf(source, [&](auto format) {
            using F = decltype(format);
            const auto exact = CurveTable(m_graph, F::fullScale);
            const Curve curve{std::vector<float>(exact.begin(), exact.end()), F::fullScale};
            bool changes = false;
            for (std::size_t i = 0; i < curve.table.size(); ++i)
                changes = changes || !(std::fabs(curve.table[i] - static_cast<float>(i)) <= 0.001F);
            if (!changes) return ApplyAsCopy(source, result);
            const Correct correct = m_component < components.size() ? components[m_component].correct : nullptr;
            ApplyInWorkArea(source, result, region, 0,
                            [&](const Rect& work) { return Corrected<F>(source, work, curve, correct); });
        });
    } catch (const std::bad_alloc&) {
        result.reset();
    }
}

}  // namespace chalkpane
