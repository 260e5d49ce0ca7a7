#include "chalkpane/brush/sources/cutout_brush_source.h"
#include "chalkpane/brush/sources/image_brush_source.h"
#include "chalkpane/brush/sources/source_types.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "chalkpane/brush/image_loader.h"
#include "chalkpane/brush/sources/colour_brush_source.h"
#include "tests/chalkpane/brush/sources/source_fixture.h"

namespace chalkpane {

namespace {

using Values = SourceValues;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::unique_ptr<BrushSource> Source(SourceType type, const Values& values = Values()) {
    auto source = MakeBrushSource(type, FileName(), Depth::Eight);
    values.SetUp(*source);
    return source;
}

}  // namespace

TEST_CASE("A source declares its thirteen parameters in order") {
    struct Row {
        const char* label;
        const char* name;
        ParameterType type;
    };
    const Row rows[] = {
        {"Profile Name", "Brush Profile Type", ParameterType::string},
        {"Profile Mask", "Profile Mask", ParameterType::fileName},
        {"Size", "Brush Size", ParameterType::integer},
        {"Flatness", "Brush Flatness", ParameterType::real},
        {"Rotation", "Brush Rotation", ParameterType::float32},
        {"Roundness", "Brush Roundness", ParameterType::float32},
        {"Feather", "Profile Feather", ParameterType::real},
        {"Offset", "Brush Offset", ParameterType::doublePair},
        {"Pickup", "Brush Pickup", ParameterType::enumeration},
        {"Profile Type", "Brush Preset Type", ParameterType::enumeration},
        {"Rows", "Brush Image Rows", ParameterType::integer},
        {"Columns", "Brush Image Cols", ParameterType::integer},
        {"Selection Policy", "Brush Selection Policy", ParameterType::enumeration},
    };
    const ParameterList& list = BrushSource::ClassParameters();
    REQUIRE_EQ(list.size(), 13);
    for (std::size_t i = 0; i < 13; ++i) {
        CHECK_EQ(list[i].code, i);
        CHECK_EQ(list[i].label, rows[i].label);
        CHECK_EQ(list[i].name, rows[i].name);
        CHECK(list[i].type == rows[i].type);
    }
    CHECK_EQ(list[6].flagC, 1);  // per cent
    double low = -1.0;
    double high = -1.0;
    REQUIRE(list[5].getRange(low, high));
    CHECK_EQ(low, 0.0);
    CHECK_EQ(high, 2.0);
    CHECK_EQ(list[7].defaultValue, nullptr);
}

TEST_CASE("The defaults are a round, soft brush of radius 20 in one frame") {
    const Values values;
    std::string name;
    values[SourceParameter::ProfileName].getString(name);
    CHECK_EQ(name, "Soft");
    std::int32_t number = 0;
    values[SourceParameter::Size].getInteger(number);
    CHECK_EQ(number, 20);
    values[SourceParameter::Rows].getInteger(number);
    CHECK_EQ(number, 1);
    values[SourceParameter::Columns].getInteger(number);
    CHECK_EQ(number, 1);
    float roundness = 0.0F;
    values[SourceParameter::Roundness].getFloat(roundness);
    CHECK_EQ(roundness, 1.0F);
    CHECK_EQ(Source(SourceType::Colour)->GetSize(), 41.0);
}

TEST_CASE("Three names stand for profile types and all others for none") {
    CHECK(ProfileTypeOfName("Texture") == ProfileType::Texture);
    CHECK(ProfileTypeOfName("Feathered") == ProfileType::Feather);
    CHECK(ProfileTypeOfName("OnePixel") == ProfileType::OnePixel);
    for (const char* name : {"Soft", "texture", "Texture ", "", "Graph"}) CHECK_FALSE(ProfileTypeOfName(name));
}

TEST_CASE("Choices have the values that parameters store") {
    CHECK_EQ(static_cast<int>(SourceType::Eraser), 5);
    CHECK_EQ(static_cast<int>(SpacingType::Shorten), 2);
    CHECK_EQ(static_cast<int>(PickupMode::EveryDab), 2);
    CHECK_EQ(static_cast<int>(ProfileType::OnePixel), 2);
    CHECK_EQ(static_cast<int>(ProfileType::Feather), 4);
    CHECK_EQ(static_cast<int>(SelectionPolicy::ForwardAndBack), 2);
    CHECK_EQ(static_cast<int>(BrushParameter::Group), 13);
    CHECK_EQ(static_cast<int>(SourceParameter::SelectionPolicy), 12);
}

TEST_CASE("Codes name the parameters of the tables they stand for") {
    CHECK_EQ(BrushSource::ClassParameters().find(SourceParameter::Size)->name, "Brush Size");
    CHECK_EQ(BrushSource::ClassParameters().find(SourceParameter::ProfileType)->name, "Brush Preset Type");
    CHECK_EQ(BrushSource::ClassParameters().find(SourceParameter::SelectionPolicy)->name, "Brush Selection Policy");
}

TEST_CASE("The table of sources is in the order of stored values and says what each is given and how it is pasted") {
    const auto rows = SourceTypes();
    REQUIRE_EQ(rows.size(), 9);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        CAPTURE(i);
        CHECK_EQ(static_cast<std::size_t>(rows[i].type), i);
        const auto source = rows[i].make(FileName(), Depth::Eight);
        const bool reads = dynamic_cast<const ImageBrushSource*>(source.get()) != nullptr;
        const bool cuts = dynamic_cast<const CutoutBrushSource*>(source.get()) != nullptr;
        CHECK_EQ(rows[i].needs == SourceNeeds::Picture, reads);
        CHECK_EQ(rows[i].needs == SourceNeeds::CutoutFile, cuts);
        CHECK_EQ(rows[i].behaviour == PasteBehaviour::Replace, i == 6 || i == 7);
        CHECK_EQ(rows[i].name.empty(), i > 6);
        CHECK_EQ(&SourceTypeOf(static_cast<std::uint8_t>(i)), &rows[i]);
    }
    CHECK_EQ(&SourceTypeOf(9), &rows[0]);
    CHECK_EQ(&SourceTypeOf(255), &rows[0]);
}

TEST_CASE("The source type picks the class and its flag") {
    struct Row {
        std::uint8_t type;
        bool sameAsPaint;
        bool canErase;
        bool isEraser;
        bool pasteValue;
    };
    const Row rows[] = {
        {0, true, true, false, true},    {1, false, false, false, false}, {2, false, false, false, false},
        {3, true, false, false, true},   {4, false, false, false, false}, {5, true, true, true, true},
        {6, false, false, false, false}, {7, false, false, false, false}, {8, false, false, false, false},
        {9, true, true, false, true},    {255, true, true, false, true}};
    for (const Row& row : rows) {
        CAPTURE(static_cast<int>(row.type));
        const auto source = MakeBrushSource(row.type, FileName(), Depth::Eight);
        CHECK_EQ(source->MaskSameAsPaint(), row.sameAsPaint);
        CHECK_EQ(source->CanErase(), row.canErase);
        CHECK_EQ(source->IsEraser(), row.isEraser);
        CHECK_EQ(source->PasteValue(), row.pasteValue);
    }
}

// The middle of a picture, 10 * 2 blue, under the dab at (2, 2); one pixel further by the offset with types 1, 4 and 8.
TEST_CASE("Types 1, 4 and 8 read at the offset, 2, 6 and 7 under the dab") {
    const Image picture = MapPicture(5, 5);
    const auto values = [] { return std::make_unique<Values>(); }();
    values->Choice(SourceParameter::ProfileType, ProfileType::OnePixel).Offset(1.0, 0.0);
    for (const SourceType type : {SourceType::Clone, SourceType::Image, SourceType::Splodge, SourceType::Replace,
                                  SourceType::ReplaceToo, SourceType::SplodgeToo}) {
        const auto source = Source(type, *values);
        source->SetSourceImage(&picture);
        const bool follows = type == SourceType::Clone || type == SourceType::Splodge || type == SourceType::SplodgeToo;
        CHECK_EQ(ValuesAt(*DabAt(*source, 2.0, 2.0).colour, 2, 2)[0], follows ? 30 : 20);
    }
}

TEST_CASE("The profile type picks the profile, and a mask image goes before it") {
    SetImageFileLoader([](const std::string& name) {
        return std::make_unique<Image>(name == "leaf" ? 7 : 0, 3, PixelType::Mask, Depth::Eight, AlphaForm::Straight);
    });
    const auto rectOf = [](ProfileType type, const Image* maskImage) {
        Values values;
        values.Integer(SourceParameter::Size, 3).Choice(SourceParameter::ProfileType, type);
        static_cast<FileNameValue&>(values[SourceParameter::ProfileMask]).setFileName(FileName("leaf"));
        const auto source = MakeBrushSource(SourceType::Colour, FileName(), Depth::Eight);
        source->SetMaskImage(maskImage);
        values.SetUp(*source);
        Rect rect;
        source->GetDabRect(rect);
        return rect;
    };
    CHECK(rectOf(ProfileType::Graph, nullptr) == Rect(0, 0, 6, 6));
    CHECK(rectOf(ProfileType::Image, nullptr) == Rect(0, 0, 6, 2));
    CHECK(rectOf(ProfileType::OnePixel, nullptr) == Rect(0, 0, 0, 0));
    CHECK(rectOf(ProfileType::Texture, nullptr) == Rect(0, 0, 7, 7));
    CHECK(rectOf(ProfileType::Feather, nullptr) == Rect(0, 0, 6, 6));
    CHECK(rectOf(static_cast<ProfileType>(5), nullptr) == Rect(0, 0, 6, 6));
    const Image mask = Image::Mask(6, 2, Depth::Eight);
    for (const ProfileType type :
         {ProfileType::Graph, ProfileType::Image, ProfileType::OnePixel, ProfileType::Texture, ProfileType::Feather})
        CHECK(rectOf(type, &mask) == Rect(0, 0, 5, 1));
    SetImageFileLoader({});
}

// Feather 0.5 at radius 2 is full one pixel aside, the graph is 153 there.
TEST_CASE("The settings of a source reach its profile") {
    Values values;
    values.Integer(SourceParameter::Size, 2).Choice(SourceParameter::ProfileType, ProfileType::Feather);
    values[SourceParameter::Feather].setDouble(0.5);
    auto source = Source(SourceType::Colour, values);
    CHECK_EQ(ValuesAt(*source->MakePlainMask(2.0, 2.0), 3, 2)[0], 255);
    values.Choice(SourceParameter::ProfileType, ProfileType::Graph);
    CHECK_EQ(ValuesAt(*Source(SourceType::Colour, values)->MakePlainMask(2.0, 2.0), 3, 2)[0], 153);
    values[SourceParameter::Flatness].setDouble(2.0);
    CHECK_EQ(ValuesAt(*Source(SourceType::Colour, values)->MakePlainMask(2.0, 2.0), 3, 2)[0], 51);
    values[SourceParameter::Rotation].setFloat(90.0F);
    CHECK_EQ(ValuesAt(*Source(SourceType::Colour, values)->MakePlainMask(2.0, 2.0), 3, 2)[0], 153);
    values[SourceParameter::Flatness].setDouble(1.0);
    values[SourceParameter::Roundness].setFloat(2.0F);
    CHECK_EQ(ValuesAt(*Source(SourceType::Colour, values)->MakePlainMask(2.0, 2.0), 3, 3)[0], 51);
}

TEST_CASE("A one-pixel profile makes the size 0") {
    Values values;
    values.Integer(SourceParameter::Size, 7).Choice(SourceParameter::ProfileType, ProfileType::OnePixel);
    CHECK_EQ(Source(SourceType::Colour, values)->GetSize(), 1.0);
    CHECK_EQ(Source(SourceType::Colour, values)->GetSizeInDirection(1.0), doctest::Approx(1.0).epsilon(1e-12));
}

TEST_CASE("A margin widens the dab, and is the radius of a one-pixel profile") {
    for (const ProfileType type : {ProfileType::Graph, ProfileType::OnePixel}) {
        const auto source = MakeBrushSource(SourceType::Colour, FileName(), Depth::Eight);
        Values values;
        values.Integer(SourceParameter::Size, 1).Choice(SourceParameter::ProfileType, type).Give(*source);
        source->Prepare(3, nullptr, Matrix3());
        Rect rect;
        source->GetDabRect(rect);
        CHECK(rect == (type == ProfileType::Graph ? Rect(0, 0, 8, 8) : Rect(0, 0, 6, 6)));
    }
}

TEST_CASE("A source shows the graph of its profile") {
    GraphValue graph{ShapePointList()};
    const auto source = MakeBrushSource(SourceType::Colour, FileName(), Depth::Eight);
    CHECK_EQ(source->GetGraph(), nullptr);
    source->Prepare(0, &graph, Matrix3());
    CHECK_EQ(source->GetGraph(), &graph);
}

// Size 2: w = 5. Across a dab of flatness 2 it is 5 / sqrt(0 + 4) = 2.5.
TEST_CASE("The size in a direction shrinks with the flatness") {
    Values values;
    values.Integer(SourceParameter::Size, 2);
    values[SourceParameter::Flatness].setDouble(2.0);
    const auto source = Source(SourceType::Colour, values);
    CHECK_EQ(source->GetSizeInDirection(std::numbers::pi / 2), doctest::Approx(2.5).epsilon(1e-12));
    CHECK_EQ(source->GetSizeInDirection(std::numbers::pi), doctest::Approx(5.0).epsilon(1e-12));
}

// With rotation 90 and flatness 2 the formula gives 2.5 at angle 0 as well.
TEST_CASE("At angle 0 the size is the whole width, however the dab is rotated") {
    Values values;
    values.Integer(SourceParameter::Size, 2);
    values[SourceParameter::Flatness].setDouble(2.0);
    values[SourceParameter::Rotation].setFloat(90.0F);
    CHECK_EQ(Source(SourceType::Colour, values)->GetSizeInDirection(0.0), 5.0);
    CHECK_LT(Source(SourceType::Colour, values)->GetSizeInDirection(1e-9), 2.6);
}

// a = 90 / 57.295 - 1 = 0.570817, the width 5 / sqrt(cos^2 + 4 sin^2) = 3.650668; by the true constant 3.650725.
TEST_CASE("Degrees become radians by 57.295") {
    Values values;
    values.Integer(SourceParameter::Size, 2);
    values[SourceParameter::Flatness].setDouble(2.0);
    values[SourceParameter::Rotation].setFloat(90.0F);
    CHECK_EQ(Source(SourceType::Colour, values)->GetSizeInDirection(1.0),
             doctest::Approx(3.650667962635).epsilon(1e-11));
}

TEST_CASE("The largest sizes are no overflow and no dab") {
    for (const std::int32_t size : {std::numeric_limits<std::int32_t>::max(), 1025, -1}) {
        Values values;
        values.Integer(SourceParameter::Size, size);
        for (const SourceType type : {SourceType::Colour, SourceType::Clone, SourceType::Splodge, SourceType::Eraser}) {
            const auto source = Source(type, values);
            CHECK_EQ(source->GetSize(), 2.0 * size + 1.0);
            const DabImages dab = DabAt(*source, 5.0, 5.0);
            CHECK_FALSE(dab.made);
            CHECK_FALSE(dab.colour);
            CHECK_FALSE(dab.mask);
            Rect rect(1, 2, 3, 4);
            source->GetDabRect(rect);
            CHECK(rect == Rect());
        }
    }
}

TEST_CASE("A source that was not prepared makes no dab") {
    for (const SourceType type :
         {SourceType::Colour, SourceType::Clone, SourceType::Cutout, SourceType::Splodge, SourceType::Eraser}) {
        const auto source = MakeBrushSource(type, FileName(), Depth::Eight);
        CHECK_FALSE(DabAt(*source, 5.0, 5.0).made);
        CHECK_FALSE(MaskDabAt(*source, 5.0, 5.0).made);
        CHECK_FALSE(source->MakePlainMask(5.0, 5.0));
        CHECK_FALSE(source->GetMask(5.0, 5.0, 0.0));
        source->DabPlaced(5.0, 5.0, 0.0);
        source->DabPlacedOnMask(5.0, 5.0, 0.0);
        source->DropPickup();
    }
}

TEST_CASE("A dab that cannot be placed is not made, held or not") {
    Values values;
    values.Integer(SourceParameter::Size, 3).Choice(SourceParameter::Pickup, PickupMode::EveryDab);
    const Image picture = MapPicture(5, 5);
    for (const SourceType type : {SourceType::Colour, SourceType::Clone, SourceType::Image, SourceType::Splodge}) {
        const auto source = Source(type, values);
        source->SetSourceImage(&picture);
        for (int round = 0; round < 2; ++round) {
            for (const double far : {notANumber, 1e300, -1e300, std::numeric_limits<double>::infinity()}) {
                CHECK_FALSE(DabAt(*source, far, 2.0).made);
                CHECK_FALSE(DabAt(*source, 2.0, far).made);
                CHECK_FALSE(DabAt(*source, 2.0, 2.0, notANumber).made);
                CHECK_FALSE(MaskDabAt(*source, far, 2.0).made);
                source->DabPlaced(far, far, notANumber);
                source->DabPlacedOnMask(far, far, notANumber);
            }
            CHECK(DabAt(*source, 2.0, 2.0).made);
        }
    }
}

TEST_CASE("Numbers that are none in the settings are survived") {
    Values values;
    values.Integer(SourceParameter::Size, 3).Offset(notANumber, 1e300);
    values[SourceParameter::Flatness].setDouble(notANumber);
    values[SourceParameter::Rotation].setFloat(std::numeric_limits<float>::quiet_NaN());
    values[SourceParameter::Roundness].setFloat(std::numeric_limits<float>::infinity());
    values[SourceParameter::Feather].setDouble(notANumber);
    const Image picture = MapPicture(5, 5);
    for (const SourceType type : {SourceType::Colour, SourceType::Clone, SourceType::Splodge, SourceType::Eraser}) {
        for (const ProfileType profile : {ProfileType::Graph, ProfileType::Image, ProfileType::OnePixel,
                                          ProfileType::Texture, ProfileType::Feather, static_cast<ProfileType>(200)}) {
            values.Choice(SourceParameter::ProfileType, profile);
            const auto source = Source(type, values);
            source->SetSourceImage(&picture);
            CHECK_EQ(DabAt(*source, 2.0, 2.0, 20.0).made, profile != ProfileType::Image);
            CHECK_FALSE(std::isfinite(source->GetSizeInDirection(1.0)));
        }
    }
}

TEST_CASE("The areas that a brush stores come back") {
    const auto source = Source(SourceType::Colour);
    source->SetDabArea({1, 2, 3, 4});
    source->SetTargetArea({5, 6, 7, 8});
    CHECK(source->DabArea() == Rect(1, 2, 3, 4));
    CHECK(source->TargetArea() == Rect(5, 6, 7, 8));
}

}  // namespace chalkpane
