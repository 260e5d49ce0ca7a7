#include "chalkpane/filters/colour/component_cc.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "chalkpane/base/memory_loss.h"
#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/colour/curve_table.h"
#include "chalkpane/filters/row_filter.h"
#include "chalkpane/image/image_rows.h"

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
    // Of a channel, or one that its alpha was taken out of: nothing that an integer cannot hold.
    [[nodiscard]] float Of(float value) const { return At(static_cast<std::int32_t>(value)); }
    [[nodiscard]] float OfComplement(float value) const {
        return static_cast<float>(fullScale) - At(fullScale - static_cast<std::int32_t>(value));
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
    const auto largest = static_cast<std::int32_t>(std::max({c.red, c.green, c.blue}));
    const std::int32_t spread = largest - static_cast<std::int32_t>(std::min({c.red, c.green, c.blue}));
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
    const std::array<std::int32_t, 3> inks{full - static_cast<std::int32_t>(c.red),
                                           full - static_cast<std::int32_t>(c.green),
                                           full - static_cast<std::int32_t>(c.blue)};
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

// One run as its rows see it.
template <typename F>
struct CorrectJob {
    const Curve& curve;
    Image& result;  // starts as a copy of the source

    // `correct` is known to the compiler: a call per pixel would cost more than most of them.
    template <Correct correct>
    void CorrectRow(std::int32_t y) const {
        constexpr auto fullScale = static_cast<float>(F::fullScale);
        const auto pixels = ImageRow<F>(result, y);
        for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
            const auto alpha = pixels[i + 3];
            if (alpha == 0) {
                pixels[i] = pixels[i + 1] = pixels[i + 2] = 0;
                continue;
            }
            Colours colours{static_cast<float>(pixels[i + 2]), static_cast<float>(pixels[i + 1]),
                            static_cast<float>(pixels[i])};
            const bool divides = result.IsPremultiplied() && alpha < F::fullScale;
            const float a = divides ? static_cast<float>(alpha) / fullScale : 1.0F;
            if (divides) colours = {colours.red / a, colours.green / a, colours.blue / a};
            correct(curve, colours);
            if (divides) colours = {colours.red * a, colours.green * a, colours.blue * a};
            pixels[i] = LimitedChannel<F>(colours.blue);
            pixels[i + 1] = LimitedChannel<F>(colours.green);
            pixels[i + 2] = LimitedChannel<F>(colours.red);
        }
    }
    template <std::size_t component>
    static void RunRow(std::int32_t y, void* userData, std::int32_t /*worker*/) {
        static_cast<const CorrectJob*>(userData)->template CorrectRow<components[component].correct>(y);
    }
    template <std::size_t... all>
    static RowFunction RowOf(std::size_t component, std::index_sequence<all...> /*indices*/) {
        constexpr std::array<RowFunction, sizeof...(all)> rows{&RunRow<all>...};
        return rows[component];
    }
};

template <typename F>
std::unique_ptr<Image> Corrected(const Image& source, const Rect& work, const Curve& curve, std::size_t component) {
    auto result = Image::Unwritten(work, source);
    result->CopyRegion(source, work);
    if (source.IsMask() || component >= components.size()) return result;
    CorrectJob<F> job{curve, *result};
    const RowFunction row = CorrectJob<F>::RowOf(component, std::make_index_sequence<components.size()>());
    RunInBands(work.y0, work.y1, work.Width(), row, &job);
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
            ApplyInWorkArea(source, result, region, 0,
                            [&](const Rect& work) { return Corrected<F>(source, work, curve, m_component); });
        });
    } catch (const std::bad_alloc&) {
        CountMemoryLoss();
        result.reset();
    }
}

}  // namespace chalkpane
