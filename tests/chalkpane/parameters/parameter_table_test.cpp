#include "chalkpane/parameters/parameter_table.h"

#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "chalkpane/parameters/data_set.h"
#include "chalkpane/parameters/scalar_values.h"

namespace {

using namespace chalkpane;

// A class as the brushes and filters are: a field of every kind.
class Settings final : public WithParameters<Settings, ParameterisedObject> {
public:
    static constexpr std::uint8_t levelsCode = 1;
    static constexpr std::uint8_t amountCode = 3;
    static constexpr std::uint8_t graphCode = 9;
    static constexpr auto Parameters() {
        using Self = Settings;
        return std::to_array<ParameterRow<Self>>({
            {0, "Name", "Test Name", "Soft", {}, &Self::name},
            {levelsCode, "Levels", "Test Levels", 8, {2, 256}, &Self::levels},
            {2, "Softness", "Test Softness", 0.5, {0, 1}, &Self::softness},
            {amountCode, "Amount", "Test Amount", 1.0, {0, 1}, &Self::amount, percent},
            {4, "Grey", "Test Grey", true, {}, &Self::grey},
            {5, "Mode", "Test Mode", 2, {}, &Self::mode},
            {6, "Paint", "Test Paint", Colour::fromIndex(3), {}, &Self::paint},
            {7, "Scale", "Test Scale", DoublePair{1.0, 1.0}, {}, &Self::scale},
            {8, "File", "Test File", "a/b", {}, &Self::file},
            {graphCode, "Graph", "Test Graph", {}, {}, &Self::graph},
            {10, "Curve", "Test Curve", {}, {}, &Self::curve},
            {11, "Wide Mode", "Test Wide Mode", 1, {}, &Self::wideMode},
            {12, "Turn", "Test Turn", 90, {0, 360}, &Self::turn, angle0To360},
            {13, "Group", "Test Group", false, {}, nullptr, {ParameterType::boolean}},
            {14, "Double", "Test Double", 0.25, {}, &Self::fine},
            {15, "Edges", "Test Edges", {}, {}, nullptr, {ParameterType::groupBegin}},
        });
    }

    std::string name;
    std::int32_t levels = 3;
    float softness = 0.0f;
    double amount = 0.0;
    bool grey = false;
    std::uint8_t mode = 0;
    Colour paint;
    DoublePair scale;
    FileName file;
    GraphValue* graph = nullptr;
    ShapePointList curve;
    std::uint32_t wideMode = 0;
    double turn = 0.0;
    double fine = 0.0;
};

class NumberBase : public ParameterisedObject {
public:
    static constexpr bool storesNaNAsZero = true;
};

class Numbers final : public WithParameters<Numbers, NumberBase> {
public:
    static constexpr std::uint8_t numberCode = 0;
    static constexpr std::uint8_t wideCode = 1;
    static constexpr auto Parameters() {
        return std::to_array<ParameterRow<Numbers>>({
            {numberCode, "Float", "Test NaN Float", 1.0, {}, &Numbers::number},
            {wideCode, "Double", "Test NaN Double", 1.0, {}, &Numbers::wide},
        });
    }
    float number = 1.0f;
    double wide = 1.0;
};

TEST_CASE("The list of a table follows the table and is one for the class") {
    const Settings first;
    const Settings second;
    CHECK_EQ(&first.getParameters(), &second.getParameters());
    const ParameterList& list = first.getParameters();
    REQUIRE_EQ(list.size(), 16);
    for (std::size_t i = 1; i < list.size(); ++i) CHECK_EQ(list[i].id, list[i - 1].id + 1);
    CHECK_EQ(list[3].name, "Test Amount");
    CHECK_EQ(list[3].label, "Amount");
    CHECK(list[3].type == ParameterType::real);
    CHECK_EQ(list[3].flagC, 1);
    CHECK_EQ(list[2].flagC, 0);
    CHECK(list[11].type == ParameterType::enumeration);
    CHECK(list[12].type == ParameterType::angle0To360);
    double low = 0.0;
    double high = 0.0;
    REQUIRE(list[1].getRange(low, high));
    CHECK_EQ(low, 2.0);
    CHECK_EQ(high, 256.0);
}

TEST_CASE("A fresh object holds its initialisers; the values of its list bring the defaults") {
    Settings settings;
    CHECK_EQ(settings.levels, 3);
    DataSet values;
    for (const auto& definition : settings.getParameters()) values.addParameter(definition.get(), false, nullptr);
    CHECK_EQ(values.size(), 15);  // the begin of a group has no value
    for (const ValuePointer& value : values) settings.setParameter(value.get());
    CHECK_EQ(settings.name, "Soft");
    CHECK_EQ(settings.levels, 8);
    CHECK_EQ(settings.softness, 0.5f);
    CHECK_EQ(settings.amount, 1.0);
    CHECK(settings.grey);
    CHECK_EQ(settings.mode, 2);
    CHECK(settings.paint == Colour{16383, 16383, 16383});
    CHECK(settings.scale == DoublePair{1.0, 1.0});
    CHECK_EQ(settings.file.string(), "a\\b");
    CHECK_EQ(settings.graph, values.findValue(settings.getParameters().find(Settings::graphCode)));
    CHECK_EQ(settings.wideMode, 1);
    CHECK_EQ(settings.turn, 90.0);
    CHECK_EQ(settings.fine, 0.25);
}

TEST_CASE("setParameter takes what comes, out of range too") {
    Settings settings;
    IntegerValue levels(settings.getParameters().find(Settings::levelsCode));
    levels.setInteger(100000);
    settings.setParameter(&levels);
    CHECK_EQ(settings.levels, 100000);
}

TEST_CASE("A value of another family, of an unknown code or without a declaration leaves every field alone") {
    Settings settings;
    DoubleValue wrongFamily(settings.getParameters().find(Settings::levelsCode));
    wrongFamily.setDouble(9.0);
    settings.setParameter(&wrongFamily);
    ParameterDef unknown("Test Unknown", "Unknown", ParameterType::integer, 200);
    IntegerValue unknownValue(&unknown);
    unknownValue.setInteger(9);
    settings.setParameter(&unknownValue);
    IntegerValue free(9);
    settings.setParameter(&free);
    settings.setParameter(nullptr);
    CHECK_EQ(settings.levels, 3);
}

TEST_CASE("NaN is stored as 0 where the base asks for it, and as it is elsewhere") {
    Numbers numbers;
    FloatValue number(numbers.getParameters().find(Numbers::numberCode));
    number.setFloat(std::numeric_limits<float>::quiet_NaN());
    numbers.setParameter(&number);
    CHECK_EQ(numbers.number, 0.0f);
    DoubleValue wide(numbers.getParameters().find(Numbers::wideCode));
    wide.setDouble(std::numeric_limits<double>::quiet_NaN());
    numbers.setParameter(&wide);
    CHECK_EQ(numbers.wide, 0.0);

    Settings settings;
    DoubleValue amount(settings.getParameters().find(Settings::amountCode));
    amount.setDouble(std::numeric_limits<double>::quiet_NaN());
    settings.setParameter(&amount);
    CHECK(std::isnan(settings.amount));
}

TEST_CASE("A copy of an object keeps its fields and the list") {
    Settings settings;
    settings.levels = 77;
    const Settings copy(settings);
    CHECK_EQ(copy.levels, 77);
    CHECK_EQ(&copy.getParameters(), &settings.getParameters());
}

}  // namespace
