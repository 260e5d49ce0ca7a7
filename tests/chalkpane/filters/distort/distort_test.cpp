#include <limits>
#include <vector>

#include "chalkpane/base/random.h"
#include "chalkpane/filters/distort/distort_filter.h"
#include "chalkpane/filters/distort/marble_effect.h"
#include "chalkpane/filters/distort/turbulence_effect.h"
#include "chalkpane/filters/noise/noise_lattice.h"
#include "chalkpane/parameters/data_set.h"
#include "tests/chalkpane/filters/reference_comparison.h"
#include "tests/reference/distort.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

// Moves by a fixed distance; may leave the pixels outside two columns where they are.
class Shift final : public DistortFilter {
public:
    Shift(float byX, float byY) : m_x(byX), m_y(byY) {}
    Shift(float byX, float byY, std::int32_t first, std::int32_t last)
        : m_x(byX), m_y(byY), m_first(first), m_last(last), m_narrow(true) {}

    void setParameter(ParameterValue* /*value*/) override {}
    [[nodiscard]] std::unique_ptr<Filter> Clone() const override { return nullptr; }
    [[nodiscard]] std::unique_ptr<Filter> CreateNew() const override { return nullptr; }
    [[nodiscard]] bool Equals(const Filter& /*other*/) const override { return false; }
    [[nodiscard]] std::string_view Name() const override { return "Shift"; }
    [[nodiscard]] std::string_view Label() const override { return "Shift"; }

    void MapPoint(std::int32_t x, std::int32_t y, float& sourceX, float& sourceY) const override {
        sourceX = static_cast<float>(x) + m_x;
        sourceY = static_cast<float>(y) + m_y;
    }
    bool RowSpan(std::int32_t /*y*/, std::int32_t& first, std::int32_t& last) const override {
        first = m_first;
        last = m_last;
        return m_narrow;
    }

private:
    float m_x;
    float m_y;
    std::int32_t m_first = 0;
    std::int32_t m_last = 0;
    bool m_narrow = false;
};

Image RowOf(const std::vector<int>& values, std::int32_t left) {
    Image image = Image::Mask(Rect(left, 0, left + static_cast<std::int32_t>(values.size()) - 1, 0), Depth::Eight);
    for (std::size_t i = 0; i < values.size(); ++i) image.Row8(0)[i] = static_cast<std::uint8_t>(values[i]);
    return image;
}

std::vector<int> Shifted(Filter& filter, const Image& source, bool fast) {
    std::unique_ptr<Image> result;
    filter.Apply(source, result, fast, nullptr, false);
    const auto row = result->Row8(0);
    return {row.begin(), row.end()};
}

}  // namespace

// Between 10 and 50 a fraction of 0.75 is 40. `fast` truncates 0.75 to 0, and -0.25 to 0 as well.
TEST_CASE("The fast form truncates the place, the other interpolates") {
    Shift filter(0.75F, 0.0F);
    const Image source = RowOf({10, 50, 90}, 0);
    CHECK(Shifted(filter, source, false) == std::vector<int>{40, 80, 23});  // 90 * 0.25 + 0.5 = 23
    CHECK(Shifted(filter, source, true) == std::vector<int>{10, 50, 90});
    // From -1: -1 + 0.75 = -0.25 is 0, not -1.
    CHECK(Shifted(filter, RowOf({10, 50, 90}, -1), true) == std::vector<int>{50, 50, 90});
}

TEST_CASE("A row's span is moved and the rest copied") {
    const Image source = RowOf({1, 2, 3, 4, 5}, 0);
    Shift inner(1.0F, 0.0F, 1, 2);
    CHECK(Shifted(inner, source, false) == std::vector<int>{1, 3, 4, 4, 5});
    Shift beyond(1.0F, 0.0F, -100, 100);
    CHECK(Shifted(beyond, source, false) == std::vector<int>{2, 3, 4, 5, 0});
    Shift empty(1.0F, 0.0F, 3, 2);
    CHECK(Shifted(empty, source, false) == std::vector<int>{1, 2, 3, 4, 5});
}

TEST_CASE("A distortion whose region misses the picture is blank and draws no random number") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
    MarbleEffect marble;
    TurbulenceEffect turbulence;
    SetNumber(turbulence, "Amount", 5);
    const Image blank(source.Bounds(), source);
    const auto state = RandomState();
    for (const Rect& region : {Rect(20, 20, 30, 30), Rect(6, 6, 2, 2)}) {
        CHECK(SamePixels(*Applied(marble, source, &region, true), blank));
        CHECK(SamePixels(*Applied(turbulence, source, &region, true), blank));
    }
    SetNumber(turbulence, "Amount", 0.05);
    CHECK(SamePixels(*Applied(turbulence, source), source));
    CHECK_EQ(RandomState(), state);
}

TEST_CASE("Turbulence reads where the noise sends it") {
    for (const auto& [amount, lattice, edges] :
         {std::tuple{0.1F, 1, 0}, std::tuple{3.7F, 4, 1}, std::tuple{10.0F, 10, 2}}) {
        TurbulenceEffect filter;
        SetNumber(filter, "Amount", amount);
        SetNumber(filter, "Lattice Size", lattice);
        SetNumber(filter, "Edges", edges);
        Applied(filter, NoisePicture({0, 0, 0, 0}, PixelType::Colour, Depth::Eight, AlphaForm::Straight,
                                     1));  // the first run builds the lattice
        for (const bool fast : {false, true}) {
            const auto reference = [&, a = amount, l = lattice, e = edges](const Image& source, const Rect* region,
                                                                           bool expand) {
                const float inverse = 1.0F / static_cast<float>(l);
                return reference::Distort(
                    source, region, expand ? static_cast<int>(a) : 0, e, fast, [&](int x, int y, float& sx, float& sy) {
                        const auto column = static_cast<float>(x);
                        const auto row = static_cast<float>(y);
                        const auto n = NoiseLattice::Shared()->TurbulencePair(column * inverse, row * inverse);
                        sx = column + 2.0F * a * n.x;
                        sy = row + 2.0F * a * n.y;
                    });
            };
            const float tried = amount;
            CAPTURE(tried);
            if (!fast) CompareWithReference(filter, reference);
            const Image source =
                NoisePicture({-9, -9, 20, 11}, PixelType::Colour, Depth::Fourteen, AlphaForm::Premultiplied, 4);
            std::unique_ptr<Image> result;
            filter.Apply(source, result, fast, nullptr, true);
            CHECK(SamePixels(*result, reference(source, nullptr, true)));
        }
    }
}

TEST_CASE("Marble reads along the noise's contour lines") {
    for (const auto& [scale, distance, turbulence, edges] :
         {std::tuple{0.1F, 0.1F, 0.1F, 0}, std::tuple{1.0F, 0.5F, 1.0F, 3}, std::tuple{0.03F, 1.0F, 0.3F, 1}}) {
        const float tried = scale;
        CAPTURE(tried);
        MarbleEffect filter;
        SetNumber(filter, "Scale", scale);
        SetNumber(filter, "Distance", distance);
        SetNumber(filter, "Turbulence", turbulence);
        SetNumber(filter, "Edges", edges);
        Applied(filter, NoisePicture({0, 0, 0, 0}, PixelType::Colour, Depth::Eight, AlphaForm::Straight,
                                     1));  // the first run builds the lattice
        CompareWithReference(filter, [&, s = scale * 100.0F, f = distance * 30.0F, t = turbulence, e = edges](
                                         const Image& source, const Rect* region, bool /*expand*/) {
            return reference::Distort(
                source, region, 0, e == 3 ? 4 : e, false, [&](int x, int y, float& sx, float& sy) {
                    const auto column = static_cast<float>(x);
                    const auto row = static_cast<float>(y);
                    const float n = NoiseLattice::Shared()->Noise2(column / s, row / s);
                    const int i = std::clamp(static_cast<int>((n + 1.0F) * 127.0F), 0, 255);
                    const float a = static_cast<float>(i) * 6.2831854820251465F * 0.00390625F * 60.0F * t;
                    sx = column - std::sin(a) * f;
                    sy = row + std::cos(a) * f;
                });
        });
    }
}

// Without turbulence the angle is 0: x stays, y moves by 30 * 0.1 = 3.
TEST_CASE("Marble without turbulence moves the picture upward by the distance") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    MarbleEffect filter;
    SetNumber(filter, "Turbulence", 0);
    const auto result = Applied(filter, source);
    CHECK(std::equal(source.Row8(4).begin(), source.Row8(4).end(), result->Row8(1).begin()));
    CHECK((result->GetPixel8(3, 7) == Pixel8{}));
}

// Clamp repeats the top row where transparency leaves nothing.
TEST_CASE("The fourth choice of edges clamps, and both its numbers are called so") {
    const Image source = NoisePicture({0, 0, 8, 8}, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 3);
    MarbleEffect filter;
    SetNumber(filter, "Turbulence", 0);
    SetNumber(filter, "Edges", 3);
    const auto clamped = Applied(filter, source);
    CHECK(std::equal(source.Row8(8).begin(), source.Row8(8).end(), clamped->Row8(7).begin()));
    MarbleEffect four;
    SetNumber(four, "Turbulence", 0);
    SetNumber(four, "Edges", 4);
    CHECK(filter.Equals(four));
    SetParameter(filter, "Edges", [&filter](ParameterValue& value) {
        const ParameterDef& definition = *value.getParameter();
        CHECK_EQ(filter.EnumCount(definition), 4);
        CHECK_EQ(filter.EnumLabel(definition, 3), "Clamp");
        CHECK_EQ(filter.EnumLabel(definition, 4), "Clamp");
        CHECK_EQ(filter.EnumLabel(definition, 5), "");
    });
    TurbulenceEffect turbulence;
    SetParameter(turbulence, "Edges", [&turbulence](ParameterValue& value) {
        CHECK_EQ(turbulence.EnumCount(*value.getParameter()), 3);
        CHECK_EQ(turbulence.EnumLabel(*value.getParameter(), 2), "Wrap");
    });
    TurbulenceEffect other;
    SetNumber(turbulence, "Edges", 3);
    SetNumber(other, "Edges", 4);
    CHECK(turbulence.Equals(other));
}

TEST_CASE("Turbulence says how far it reaches, truncated") {
    TurbulenceEffect filter;
    CHECK_FALSE(filter.IsActive());
    SetNumber(filter, "Amount", 0.1);
    CHECK(filter.IsActive());
    SetNumber(filter, "Amount", 2.9);
    CHECK(filter.OutputRegion({}, {0, 0, 1, 1}) == Rect(-2, -2, 3, 3));
    CHECK(filter.InputRegion({}, {0, 0, 1, 1}) == Rect(0, 0, 1, 1));
}

TEST_CASE("Distortions take any setting") {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Rect& bounds : {Rect(0, 0, 0, 0), Rect(2147483000, -2147483000, 2147483003, -2147482998)}) {
        const Image source = NoisePicture(bounds, PixelType::Colour, Depth::Eight, AlphaForm::Premultiplied, 3);
        for (const double value : {-1e30, -1.0, 0.0, 1e-30, 1e30, infinity, -infinity, std::nan("")}) {
            for (const char* label : {"Scale", "Distance", "Turbulence"}) {
                for (const bool fast : {false, true}) {
                    MarbleEffect filter;
                    SetNumber(filter, label, value);
                    SetNumber(filter, "Edges", 1);
                    std::unique_ptr<Image> result;
                    filter.Apply(source, result, fast, nullptr, true);
                    CHECK(result);
                }
            }
            TurbulenceEffect filter;
            SetNumber(filter, "Amount", value);
            SetNumber(filter, "Lattice Size", 0);
            CHECK(Applied(filter, source));
            CHECK(Applied(filter, source, &source.Bounds(), true));
        }
    }
}
