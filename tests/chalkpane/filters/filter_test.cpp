#include "chalkpane/filters/filter.h"

#include <doctest/doctest.h>

#include "chalkpane/filters/filter_tool_factory.h"
#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/string_value.h"
#include "tests/chalkpane/filters/test_filters.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

// A filter with the parameters that the frame itself looks at.
class PlacedForTest final : public FilterClass<PlacedForTest, PointFilter> {
public:
    static constexpr FilterIdentity identity{"Placed For Test", "Placed", ""};
    static constexpr auto Parameters() {
        using Self = PlacedForTest;
        return std::to_array<ParameterRow<Self>>({
            {0, "Group", "Group", {}, {}, nullptr, {ParameterType::groupBegin}},
            {1, "Centre", "Centre", {}, {}, &Self::m_centre, {ParameterType::scaledPosition}},
            {2, "Corner", "Corner", {}, {}, &Self::m_corner, {ParameterType::position}},
            {3, "Layer", "Layer", {}, {}, nullptr, {ParameterType::layer}},
        });
    }
    DoublePair m_centre;
    DoublePair m_corner;

    const ParameterDef& Definition(std::size_t index) const { return (*parameters)[index]; }
};

class TwoLayers final : public LayerProvider {
public:
    std::uint8_t indexOfName(const std::string& name) const override { return name == "Back" ? 1 : 0; }
    void nameOfIndex(std::string& out, std::uint8_t index) const override { out = index == 1 ? "Back" : "Front"; }
};

DoublePair PairOf(const ParameterValue& value) {
    DoublePair pair;
    value.getDoubleXY(pair.x, pair.y);
    return pair;
}

}  // namespace

TEST_CASE("a fresh filter is awake and attached to nothing") {
    InvertForTest filter;
    CHECK(filter.m_active);
    CHECK_EQ(filter.m_frame, 0);
    CHECK_EQ(filter.m_image, nullptr);
    CHECK_EQ(filter.m_values, nullptr);
}

TEST_CASE("what a class does not override answers as the family does") {
    PlacedForTest filter;
    CHECK_FALSE(filter.MovesPixels());
    CHECK_FALSE(filter.FiltersMask());
    CHECK(filter.IsActive());
    CHECK_FALSE(filter.NeedsStepHooks());
    CHECK_EQ(filter.PreferredDepth(0), 0);
    CHECK_EQ(filter.PreferredDepth(1), 1);
    const Rect region(3, 4, 5, 6);
    CHECK_EQ(filter.InputRegion(Rect(), region), region);
    CHECK_EQ(filter.OutputRegion(Rect(), region), region);
    CHECK_EQ(filter.RegionOnOutput(Rect(), region, true), region);
    CHECK_EQ(filter.ParameterCount(), 4);
    CHECK_EQ(filter.Category(), "");
    CHECK_EQ(filter.EnumCount(filter.Definition(0)), 0);
    CHECK_EQ(filter.EnumLabel(filter.Definition(0), 0), "");
    CHECK_EQ(filter.LayerQuery(filter.Definition(3)), 0);
    CHECK(filter.CanRunInParallel());
    filter.Advance(nullptr, 0, 0, 0, 0, 0);
    filter.BeginStep();
    filter.EndStep();
    for (const bool flag : {filter.ReservedFlag1(), filter.ReservedFlag2(), filter.ReservedFlag3()}) CHECK_FALSE(flag);
    CHECK(filter.ReservedFlag4());
    CHECK(filter.ReservedFlag5());
    for (const void* pointer : {filter.ReservedPointer1(), filter.ReservedPointer2(), filter.ReservedPointer3()})
        CHECK_EQ(pointer, nullptr);
    CHECK_EQ(filter.ReservedNumber1() + filter.ReservedNumber2() + filter.ReservedNumber3(), 0);
}

TEST_CASE("what grows on the output is asked for on the input") {
    ShiftForTest shift;
    CHECK_EQ(shift.RegionOnOutput(Rect(), Rect(0, 0, 4, 4), false), Rect(-10, -10, 14, 14));
}

TEST_CASE("a copy takes the settings and nothing of the frame") {
    const Image image = Image::Colour(4, 4, Depth::Eight, AlphaForm::Straight);
    InvertForTest filter;
    filter.m_amount = 0.25;
    filter.MakeValues(false, nullptr, nullptr);
    filter.Attach(&image, 7, 2.5, nullptr);
    filter.m_active = false;
    const auto copy = filter.Clone();
    CHECK(copy->Equals(filter));
    CHECK_FALSE(copy->Differs(filter));
    CHECK_EQ(copy->m_values, nullptr);
    CHECK_EQ(copy->m_image, nullptr);
    CHECK_EQ(copy->m_frame, 0);
    CHECK_EQ(copy->m_time, 0.0);
    CHECK(copy->m_active);
    CHECK_EQ(copy->ParameterCount(), 2);
    const auto fresh = filter.CreateNew();
    CHECK(fresh->Differs(filter));
    CHECK(ShiftForTest().Differs(filter));
}

TEST_CASE("a filter's values are made in table order, with a layer that knows its provider") {
    PlacedForTest filter;
    const TwoLayers layers;
    DataSet* const values = filter.MakeValues(false, nullptr, &layers);
    CHECK_EQ(values, filter.m_values.get());
    REQUIRE_EQ(values->size(), 3);  // a group has no value
    ParameterValue* const layer = values->findValue(&filter.Definition(3));
    REQUIRE(dynamic_cast<LayerValue*>(layer) != nullptr);
    layer->setEnumeration(1);
    std::string name;
    layer->getString(name);
    CHECK_EQ(name, "Back");
    CHECK_EQ(filter.AddValue(*values, filter.Definition(0), false, nullptr, nullptr), nullptr);
}

TEST_CASE("a value reaches its field through its declaration, and one of another class does nothing") {
    InvertForTest filter;
    filter.MakeValues(false, nullptr, nullptr);
    ParameterValue* const row =
        filter.m_values->findValue(InvertForTest::ClassParameters().find(InvertForTest::rowCode));
    CHECK_EQ(filter.m_row, -1);  // not the default of the table
    filter.setParameter(row);
    CHECK_EQ(filter.m_row, 3);
    row->setInteger(-800);
    filter.setParameter(row);
    CHECK_EQ(filter.m_row, -800);
    ParameterValue* const amount =
        filter.m_values->findValue(InvertForTest::ClassParameters().find(InvertForTest::amountCode));
    amount->setDouble(std::numeric_limits<double>::quiet_NaN());
    filter.setParameter(amount);
    CHECK_EQ(filter.m_amount, 0.0);
    PlacedForTest other;
    other.MakeValues(false, nullptr, nullptr);
    filter.setParameter(other.m_values->findValue(&other.Definition(3)));
    filter.setParameter(nullptr);
    CHECK_EQ(filter.m_row, -800);
}

// 20 wide from 100, 40 high from 200: 50 per cent is 100 + 20 * 50 / 100 = 110, 25 per cent 200 + 40 * 25 / 100 = 210.
TEST_CASE("attaching places positions given in per cent within the picture") {
    const Image image = Image::Colour(Rect(100, 200, 119, 239), Depth::Eight, AlphaForm::Straight);
    PlacedForTest filter;
    filter.MakeValues(false, nullptr, nullptr);
    ParameterValue& centre = *filter.m_values->findValue(&filter.Definition(1));
    ParameterValue& corner = *filter.m_values->findValue(&filter.Definition(2));
    centre.setDoubleXY(50, 25);
    corner.setDoubleXY(50, 25);
    filter.m_active = false;
    filter.Attach(&image, 3, 1.5, nullptr);
    CHECK_EQ(PairOf(centre), DoublePair{110, 210});
    CHECK_EQ(PairOf(corner), DoublePair{50, 25});
    CHECK(filter.m_active);
    CHECK_EQ(filter.m_image, &image);
    CHECK_EQ(filter.m_frame, 3);
    CHECK_EQ(filter.m_time, 1.5);

    centre.setDoubleXY(0, 100);
    const Rect rect(0, 0, 9, 9);
    filter.Attach(&image, 4, 0, &rect);
    CHECK_EQ(PairOf(centre), DoublePair{0, 10});
    filter.Detach();
    CHECK_EQ(filter.m_image, nullptr);
    CHECK_EQ(filter.m_frame, 0);
    filter.Attach(nullptr, 5, 0, nullptr);
    CHECK_EQ(PairOf(centre), DoublePair{0, 10});
    CHECK_EQ(filter.m_frame, 5);
}

TEST_CASE("attaching leaves animated positions alone") {
    const Image image = Image::Colour(Rect(100, 200, 119, 239), Depth::Eight, AlphaForm::Straight);
    struct AnimatedForTest final : ParameterValue {
        explicit AnimatedForTest(const ParameterDef* definition) : ParameterValue(definition) {}
        bool isAnimated() const override { return true; }
        void setDoubleXY(double x, double y) override { place = {x, y}; }
        void getDoubleXY(double& x, double& y) const override {
            x = place.x;
            y = place.y;
        }
        DoublePair place{50, 50};
    };
    PlacedForTest filter;
    filter.MakeValues(false, nullptr, nullptr);
    filter.m_values->replaceValue(ValuePointer(new AnimatedForTest(&filter.Definition(1))));
    filter.Attach(&image, 0, 0, nullptr);
    CHECK_EQ(PairOf(*filter.m_values->findValue(&filter.Definition(1))), DoublePair{50, 50});
}

TEST_CASE("the tool factory is one and answers every question with nothing") {
    FilterToolFactory& factory = FilterToolFactory::Instance();
    CHECK_EQ(&factory, &FilterToolFactory::Instance());
    PlacedForTest filter;
    for (const void* pointer :
         {static_cast<const void*>(factory.MakeTool(filter)), static_cast<const void*>(factory.MakePreview(filter)),
          static_cast<const void*>(factory.MakeControl(filter, filter.Definition(0))),
          static_cast<const void*>(factory.MakeCursor(filter)), static_cast<const void*>(factory.FindTool("Blur")),
          static_cast<const void*>(factory.ToolAt(0)), factory.LayerImage(0)})
        CHECK_EQ(pointer, nullptr);
    CHECK_EQ(factory.ToolCount() + factory.ControlCount(filter) + factory.LayerCount(), 0);
    CHECK_EQ(factory.LayerQuery(filter, filter.Definition(3)), 0);
    CHECK(factory.LayerName(0).empty());
    factory.ToolChosen(filter);
    factory.ToolReleased(filter);
    factory.FilterAdded(filter);
    factory.FilterRemoved(filter);
    factory.ValuesChanged(filter);
}
