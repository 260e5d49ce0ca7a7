#include "chalkpane/filters/row_chain.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/filters/filter_chain.h"
#include "chalkpane/filters/filter_registry.h"
#include "tests/chalkpane/filters/filter_pictures.h"
#include "tests/chalkpane/filters/wide_paths.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

using Filters = std::vector<std::unique_ptr<Filter>>;

std::unique_ptr<Filter> FreshFilter(std::string_view label) {
    for (const Filter* prototype : FilterRegistry::Instance().Filters())
        if (prototype->Label() == label) return prototype->CreateNew();
    throw std::runtime_error("no such filter");
}

std::unique_ptr<Filter> FilterWith(std::string_view label, std::string_view parameter, double value) {
    auto filter = FreshFilter(label);
    SetNumber(*filter, parameter, value);
    return filter;
}

// One changes nothing.
Filters FourFilters() {
    Filters filters;
    filters.push_back(FilterWith("Hue Rotate", "Hue Rotation", 70));
    filters.push_back(FilterWith("Hue Rotate", "Hue Rotation", 0));
    filters.push_back(FreshFilter("Invert Color"));
    filters.push_back(FilterWith("Posterize", "Levels", 5));
    return filters;
}

Image OneByOne(const Filters& filters, const Image& source) {
    Image picture = source;
    for (const auto& filter : filters) picture = *Applied(*filter, picture);
    return picture;
}

std::unique_ptr<Image> ByRows(const Filters& filters, std::unique_ptr<Image> picture) {
    RowChain rows;
    for (const auto& filter : filters) rows.Add(*filter);
    CHECK(rows.Run(picture));
    CHECK(rows.IsEmpty());
    return picture;
}

// Counts loops that are told of, which are those that wake the workers.
class LoopsHeard final : public RunListener {
public:
    LoopsHeard() { MultiProcessor::SetListener(this); }
    ~LoopsHeard() override { MultiProcessor::SetListener(nullptr); }
    LoopsHeard(const LoopsHeard&) = delete;
    LoopsHeard& operator=(const LoopsHeard&) = delete;
    LoopsHeard(LoopsHeard&&) = delete;
    LoopsHeard& operator=(LoopsHeard&&) = delete;
    void BeginLoop(std::int64_t /*rows*/) override { ++count; }
    void RowDone() override {}

    int count = 0;
};

const Rect bounds(-3, 5, 320, 210);

}  // namespace

TEST_CASE("A chain by rows makes what its filters make one by one") {
    const Filters filters = FourFilters();
    for (const std::int32_t workers : {1, 3}) {
        MultiProcessor::Restart(workers);
        for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
            for (const AlphaForm form : {AlphaForm::Straight, AlphaForm::Premultiplied}) {
                for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                    const Image source = NoisePicture(bounds, type, depth, form, 5);
                    CHECK(SamePixels(*ByRows(filters, source.Clone()), OneByOne(filters, source)));
                }
                const Image words = WordPicture(bounds, type, form, 6);
                CHECK(SamePixels(*ByRows(filters, words.Clone()), OneByOne(filters, words)));
            }
        }
    }
    MultiProcessor::Restart(0);
}

TEST_CASE("Every filter that a chain by rows takes makes the same in it as alone") {
    const Image source = NoisePicture(bounds, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 7);
    int taken = 0;
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        if (!RowChain::Takes(*prototype, Depth::Eight)) continue;
        CAPTURE(prototype->Label());
        ++taken;
        Filters filters;
        filters.push_back(prototype->CreateNew());
        filters.back()->MakeValues(false, nullptr, nullptr);
        for (const auto& value : *filters.back()->m_values) filters.back()->setParameter(value.get());
        CHECK(SamePixels(*ByRows(filters, source.Clone()), OneByOne(filters, source)));
    }
    CHECK_GE(taken, 10);
}

TEST_CASE("A chain by rows takes nobody who looks at the whole picture, at other pixels or at other depths") {
    for (const char* label : {"AutoEqualize", "Luma Graph", "Blur", "Pixellate", "Add Noise", "Oil"})
        CHECK_FALSE(RowChain::Takes(*FreshFilter(label), Depth::Eight));
    CHECK(RowChain::Takes(*FreshFilter("Solarize"), Depth::Fourteen));
}

TEST_CASE("A chain by rows works in place, and leaves the pixels of a picture that is shared") {
    const Filters filters = FourFilters();
    auto own = NoisePicture(bounds, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 8).Clone();
    const std::byte* const pixels = own->origin;
    own = ByRows(filters, std::move(own));
    CHECK_EQ(own->origin, pixels);
    const auto before = own->Clone();
    const auto made = ByRows(filters, std::make_unique<Image>(*own));
    CHECK_NE(made->origin, pixels);
    CHECK(SamePixels(*own, *before));
    CHECK(SamePixels(*made, OneByOne(filters, *before)));
}

TEST_CASE("A chain of filters wakes the workers once") {
    Filters filters = FourFilters();
    auto colour = NoisePicture(bounds, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 9).Clone();
    const Image expected = OneByOne(filters, *colour);
    std::unique_ptr<Image> mask;
    const LoopsHeard heard;
    RunFilterChain(filters, colour, mask, ChainScope::EveryFilter);
    CHECK_EQ(heard.count, 1);
    CHECK(SamePixels(*colour, expected));
}

TEST_CASE("A chain longer than the rows take at once is run in parts") {
    Filters filters;
    for (int i = 0; i < 21; ++i) filters.push_back(FilterWith("Hue Rotate", "Hue Rotation", 10 + 3 * i));
    auto colour = NoisePicture(bounds, PixelType::Colour, Depth::Eight, AlphaForm::Straight, 10).Clone();
    const Image expected = OneByOne(filters, *colour);
    std::unique_ptr<Image> mask;
    RunFilterChain(filters, colour, mask, ChainScope::EveryFilter);
    CHECK(SamePixels(*colour, expected));
}
