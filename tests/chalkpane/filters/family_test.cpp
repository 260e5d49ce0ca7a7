#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "chalkpane/base/multi_processor.h"
#include "chalkpane/base/random.h"
#include "chalkpane/filters/filter_registry.h"
#include "tests/chalkpane/filters/filter_pictures.h"

// What holds for every filter of the registry, whatever it does.

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

// Gives every parameter of a filter the end of its range that `low` names, or with `setting` that number.
void SetAll(Filter& filter, bool low, const double* setting) {
    const DataSet* const values = filter.MakeValues(false, nullptr, nullptr);
    for (const auto& value : *values) {
        double from = 0.0;
        double to = 1.0;
        value->getParameter()->getRange(from, to);
        const double number = setting != nullptr ? *setting : (low ? from : to);
        const bool whole = std::abs(number) < 1e9;
        value->setDouble(number);
        value->setFloat(static_cast<float>(number));
        value->setInteger(whole ? static_cast<std::int32_t>(number) : (number > 0 ? 1 << 30 : -(1 << 30)));
        value->setBoolean(!low);
        value->setEnumeration(low ? std::uint8_t{0} : std::uint8_t{3});
        value->setColour({16383, 8000, 10});
        filter.setParameter(value.get());
    }
}

// A run whose random draws start over, so that two runs can be compared.
std::unique_ptr<Image> Run(Filter& filter, const Image& source, const Rect* region, bool expand) {
    SeedRandom(11);
    filter.Advance(&source, 3, 0, 0, 0, 0);
    return Applied(filter, source, region, expand);
}

// The picture of random channels, of bounds that may end where the plane does.
Image EndPicture(const Rect& bounds, PixelType type, Depth depth) {
    Image picture = NoisePicture({0, 0, bounds.Width() - 1, bounds.Height() - 1}, type, depth,
                                 type == PixelType::Colour ? AlphaForm::Premultiplied : AlphaForm::Straight, 31);
    picture.MoveTo(bounds.x0, bounds.y0);
    return picture;
}

// One pixel, a column, a row, a small picture and none at all, in every format.
const std::vector<Image>& OddPictures() {
    static const std::vector<Image> pictures = [] {
        std::vector<Image> made;
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
                for (const Rect& bounds :
                     {Rect(0, 0, 0, 0), Rect(-3, 5, -3, 17), Rect(-7, -9, 9, -9), Rect(2, 3, 14, 11)})
                    made.push_back(
                        NoisePicture(bounds, type, depth,
                                     type == PixelType::Colour ? AlphaForm::Premultiplied : AlphaForm::Straight, 31));
                made.emplace_back(Rect(), type, depth, AlphaForm::Straight);
            }
        }
        return made;
    }();
    return pictures;
}

}  // namespace

TEST_CASE("The family has 32 filters in six menus") {
    const auto& registry = FilterRegistry::Instance();
    CHECK_EQ(registry.Filters().size(), 32);
    std::vector<std::string> names;
    for (const auto& category : registry.Categories()) names.push_back(category.name);
    CHECK(names == std::vector<std::string>{"Blurs", "Color Correctors", "Distort", "Effects", "Filters", "Grain"});
}

TEST_CASE("A clone equals its filter, a fresh object of another class does not") {
    const auto& filters = FilterRegistry::Instance().Filters();
    for (std::size_t i = 0; i < filters.size(); ++i) {
        CAPTURE(filters[i]->Name());
        const auto clone = filters[i]->Clone();
        CHECK(clone->Equals(*filters[i]));
        CHECK(clone->Differs(*filters[(i + 1) % filters.size()]));
        CHECK_EQ(clone->Name(), filters[i]->Name());
        CHECK(filters[i]->CreateNew()->Equals(*filters[i]));
    }
}

TEST_CASE("Every filter survives odd pictures, regions and every setting at its ends and beyond") {
    MultiProcessor::Restart(1);
    const double notANumber = std::nan("");
    const double huge = 1e30;
    const double negative = -1e30;
    // A number for every setting (null: the end of its range), and with it the options of the low or of the high end.
    struct Setting {
        const double* number;
        bool low;
    };
    constexpr bool low = true;
    const Setting settings[] = {{nullptr, low},      {nullptr, !low}, {&notANumber, low},
                                {&notANumber, !low}, {&huge, !low},   {&negative, low}};
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        CAPTURE(prototype->Name());
        for (const Setting& setting : settings) {
            CAPTURE(setting.number == nullptr ? 0.0 : *setting.number);
            CAPTURE(setting.low);
            const auto filter = prototype->CreateNew();
            SetAll(*filter, setting.low, setting.number);
            for (const Image& source : OddPictures()) {
                const Rect onePixel(source.x0, source.y1, source.x0, source.y1);
                const Rect outside(1000, 1000, 1010, 1010);
                for (const Rect* region : {static_cast<const Rect*>(nullptr), &onePixel, &outside}) {
                    // It takes no region, and at its largest size it softens 2000 x 2000 pixels for each picture.
                    if (region != nullptr && setting.number == &huge && prototype->Label() == "Film Grain") continue;
                    const auto result = Run(*filter, source, region, setting.number == nullptr && setting.low);
                    CHECK((result || prototype->Label() == "Smart Blur"));
                }
            }
        }
    }
    MultiProcessor::Restart(0);
}

// Loops that count up to the last row or column in the plane's own 32 bits never end there.
TEST_CASE("Every filter works at the ends of the plane") {
    constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t first = std::numeric_limits<std::int32_t>::min();
    const double one = 1.0;
    const double three = 3.0;
    for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
        CAPTURE(prototype->Name());
        for (const double* setting : {static_cast<const double*>(nullptr), &one, &three}) {
            CAPTURE(setting == nullptr ? 0.0 : *setting);
            const auto filter = prototype->CreateNew();
            SetAll(*filter, false, setting);
            for (const Rect& bounds : {Rect(last - 9, last - 7, last, last), Rect(first, first, first + 9, first + 7),
                                       Rect(last, first, last, first + 3), Rect(first, last, first + 30, last)}) {
                for (const PixelType type : {PixelType::Colour, PixelType::Mask}) {
                    for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                        const Image source = EndPicture(bounds, type, depth);
                        const Rect corner(bounds.x1, bounds.y1, bounds.x1, bounds.y1);
                        for (const Rect* region : {static_cast<const Rect*>(nullptr), &corner})
                            for (const bool expand : {false, true})
                                CHECK((Run(*filter, source, region, expand) || prototype->Label() == "Smart Blur"));
                    }
                }
            }
        }
    }
}

TEST_CASE("One worker and many give the same bytes for every filter at both depths") {
    const auto runAll = [](std::int32_t workers) {
        MultiProcessor::Restart(workers);
        std::vector<std::unique_ptr<Image>> results;
        for (const Filter* prototype : FilterRegistry::Instance().Filters()) {
            for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
                const Image source = NoisePicture({-20, 7, 349, 330}, PixelType::Colour, prototype->WorkingDepth(depth),
                                                  AlphaForm::Premultiplied, 5);
                const auto filter = prototype->CreateNew();
                const double setting = 1.0;
                SetAll(*filter, false, &setting);
                results.push_back(Run(*filter, source, nullptr, true));
            }
        }
        MultiProcessor::Restart(0);
        return results;
    };
    const auto serial = runAll(1);
    const auto parallel = runAll(3);
    for (std::size_t i = 0; i < serial.size(); ++i) {
        const Filter& filter = *FilterRegistry::Instance().Filters()[i / 2];
        CAPTURE(filter.Name());
        if (filter.Label() == "Smart Blur") continue;  // makes nothing
        REQUIRE(serial[i]);
        REQUIRE(parallel[i]);
        CHECK(SamePixels(*serial[i], *parallel[i]));
    }
}
