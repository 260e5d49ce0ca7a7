#include "apps/chalkpane/filtering/band_run.h"

#include <doctest/doctest.h>

#include <string>
#include <vector>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "apps/chalkpane/filtering/picture_image.h"
#include "picture_io/picture_file.h"
#include "tests/address_checks.h"
#include "tests/apps/chalkpane/pictures.h"
#include "tests/cli/thrown.h"

namespace chalkpane::app {
namespace {

using testing::Same;
using testing::Varied;
using Texts = std::vector<std::string>;

std::vector<std::unique_ptr<Filter>> FiltersFrom(const Texts& texts) {
    std::vector<std::unique_ptr<Filter>> filters;
    for (const std::string& text : texts) filters.push_back(FilterFromText(text));
    return filters;
}

// As wide as makes bands of few rows; every third stretch of it shows through.
std::unique_ptr<Image> Tall(Depth depth) {
    auto image = Varied(4000, 260, Depth::Eight);
    for (std::int32_t y = 0; y <= image->y1; ++y)
        for (std::int32_t x = 0; x <= image->x1; ++x)
            if (x / 40 % 3 == 0) image->SetAlpha8(x, y, static_cast<std::uint8_t>(x * y));
    return image->Convert(Rect(), depth);
}

std::vector<std::uint8_t> FileOf(const Image& image) {
    return EncodePictureFile(PictureOf(image), RowOf(picture_io::PictureFormat::Pam), {});
}

struct Bands {
    std::unique_ptr<Image> picture;
    int count = 0;
};

Bands ByBands(const Texts& texts, const Image& source) {
    const auto filters = FiltersFrom(texts);
    const auto rowsAround = RowsAround(filters);
    REQUIRE(rowsAround);
    const auto file = FileOf(source);
    picture_io::RowReader reader(file, picture_io::Depths::Any, "picture");
    Bands bands{std::make_unique<Image>(Image::Colour(source.Bounds(), source.GetDepth(), AlphaForm::Straight))};
    CHECK(RunByBands(reader, filters, {}, source.GetDepth(), *rowsAround, [&bands](const Image& band) {
        bands.picture->CopyRegion(band, band.Bounds());
        ++bands.count;
        return true;
    }));
    return bands;
}

}  // namespace

TEST_CASE("Filters that run by bands make what they make of the whole picture, at both depths and in chains") {
    const Texts all[] = {{"Blur:Softness=4"},
                         {"Smart Blur:Softness=6:Threshold=0.3"},
                         {"Median:Radius=3"},
                         {"Erode/Dilate:Radius=5"},
                         {"Edge Detect:Brightness=7"},
                         {"Add/Subtract:Add=0.4"},
                         {"Black & White"},
                         {"Brightness/Contrast:Brightness=0.3:Contrast=0.2:Gamma=0.1:Saturation=0.3"},
                         {"Chroma Scale:Chroma Scale=200"},
                         {"Color Dodge:Color=#c07030:Amount=0.8"},
                         {"Component Correct:LUT Graph=0,0;0.3,0.6;1,1"},
                         {"Hue Rotate:Hue Rotation=40"},
                         {"Invert Color"},
                         {"Luma Graph:LUT Graph=0,0;0.3,0.6;1,1"},
                         {"Remove Red-eye:Sensitivity=0.5"},
                         {"RGB Channel Mixer:Green Input=0.5"},
                         {"Tint:Tint Color=#ff8000:Tint Amount=0.7"},
                         {"Solarize:Amount=0.5"},
                         {"Posterize:Levels=5"},
                         {"Oil:Radius=5:Levels=20"},
                         {"Emboss:Bump Height=0.7:Mix With Image=0.4"},
                         {"Halftone:Size=7:Shape=Circle:Color=yes"},
                         {"Halftone:Size=12:Red/Black Angle=30"},
                         {"Pixellate:Size=7"},
                         {"Pixellate:Size=10"},
                         {"Invert Color", "Blur:Softness=3", "Median:Radius=2", "Solarize:Amount=0.3"}};
    for (const Texts& texts : all)
        for (const Depth depth : {Depth::Eight, Depth::Fourteen}) {
            if (tests::hasAddressChecks && depth == Depth::Fourteen && texts.size() == 1)
                continue;  // takes long, there
            CAPTURE(texts.front());
            CAPTURE(depth);
            const auto source = Tall(depth);
            const auto whole = RunFilters(FiltersFrom(texts), *source, {});
            SetAlphaForm(*whole, AlphaForm::Straight);
            const Bands bands = ByBands(texts, *source);
            CHECK_GE(bands.count, 3);
            CHECK(Same(*whole, *bands.picture));
        }
}

TEST_CASE("A filter that measures the picture, draws its noise in order or moves pixels gets it whole") {
    for (const char* const text : {"AutoEqualize", "Add Noise", "Marble", "Super Soften:Softness=20", "Film Grain"}) {
        CAPTURE(text);
        CHECK_FALSE(RowsAround(FiltersFrom({"Invert Color", text})));
    }
    // 20 rows each make 260, which is beyond what bands are worth.
    CHECK_EQ(RowsAround(FiltersFrom(Texts(12, "Median:Radius=20"))), 240);
    CHECK_FALSE(RowsAround(FiltersFrom(Texts(13, "Median:Radius=20"))));
}

TEST_CASE("Bands end where nobody wants more, and a file that breaks off is told by its name") {
    const auto source = Tall(Depth::Eight);
    const auto filters = FiltersFrom({"Invert Color"});
    auto file = FileOf(*source);
    picture_io::RowReader reader(file, picture_io::Depths::Any, "picture");
    int count = 0;
    CHECK_FALSE(RunByBands(reader, filters, {}, Depth::Eight, 0, [&count](const Image&) { return ++count < 2; }));
    CHECK_EQ(count, 2);

    auto jpeg = EncodePictureFile(PictureOf(*source), RowOf(picture_io::PictureFormat::Jpeg), {});
    jpeg.resize(jpeg.size() / 2);
    picture_io::RowReader broken(jpeg, picture_io::Depths::Any, "broken.jpg");
    const std::string told = cli::testing::Thrown(
        [&] { (void)RunByBands(broken, filters, {}, Depth::Eight, 0, [](const Image&) { return true; }); });
    CHECK_MESSAGE(told.starts_with("broken.jpg: JPEG: "), told);
}

}  // namespace chalkpane::app
