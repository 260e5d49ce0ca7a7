#include "chalkpane/parameters/data_set.h"

#include <doctest/doctest.h>

#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/font_value.h"
#include "chalkpane/parameters/graph_value.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"

namespace {

using namespace chalkpane;

ParameterDef Definition(ParameterType type = ParameterType::integer) { return {"Test", "Test", type, 0}; }

template <typename Value>
bool MakesPlain(int type) {
    const ParameterDef definition = Definition(static_cast<ParameterType>(type));
    return dynamic_cast<Value*>(DataSet::createValue(&definition, false, nullptr).get()) != nullptr;
}

TEST_CASE("An empty set finds nothing") {
    const ParameterDef definition = Definition();
    CHECK_EQ(DataSet().findValue(&definition), nullptr);
    CHECK_EQ(DataSet().findValue(nullptr), nullptr);
}

TEST_CASE("Values added in reverse order stand sorted and are found") {
    const ParameterDef a = Definition();
    const ParameterDef b = Definition();
    const ParameterDef c = Definition();
    DataSet set;
    for (const ParameterDef* definition : {&c, &b, &a}) set.addParameter(definition, false, nullptr);
    REQUIRE_EQ(set.size(), 3);
    std::int32_t last = -1;
    for (const ValuePointer& value : set) {
        CHECK_GT(value->getParameter()->id, last);
        last = value->getParameter()->id;
    }
    CHECK_EQ(set.findValue(&b)->getParameter(), &b);
}

TEST_CASE("A second value of one parameter goes behind the first") {
    const ParameterDef a = Definition();
    const ParameterDef b = Definition();
    DataSet set;
    set.addParameter(&b, false, nullptr);
    ParameterValue* first = set.addParameter(&a, false, nullptr);
    ParameterValue* second = set.addParameter(&a, false, nullptr);
    CHECK_EQ(set.begin()[0].get(), first);
    CHECK_EQ(set.begin()[1].get(), second);
    CHECK_EQ(set.findValue(&a), first);
}

TEST_CASE("removeValue closes the gap, and answers false where there is nothing") {
    const ParameterDef a = Definition();
    const ParameterDef b = Definition();
    const ParameterDef c = Definition();
    DataSet set;
    set.addParameter(&a, false, nullptr);
    set.addParameter(&c, false, nullptr);
    CHECK_FALSE(set.removeValue(&b));
    CHECK_FALSE(set.removeValue(nullptr));
    CHECK_EQ(set.size(), 2);
    CHECK(set.removeValue(&a));
    CHECK_EQ(set.size(), 1);
    CHECK_EQ(set.findValue(&a), nullptr);
    CHECK(set.findValue(&c) != nullptr);
}

TEST_CASE("replaceValue takes the place and hands back the displaced value alive") {
    const ParameterDef a = Definition();
    DataSet set;
    ParameterValue* old = set.addParameter(&a, false, nullptr);
    old->setInteger(5);
    ValuePointer fresh = makeValue<IntegerValue>(&a);
    ParameterValue* const added = fresh.get();
    const ValuePointer displaced = set.replaceValue(std::move(fresh));
    CHECK_EQ(displaced.get(), old);
    CHECK_EQ(set.findValue(&a), added);
    std::int32_t number = 0;
    displaced->getInteger(number);
    CHECK_EQ(number, 5);
}

TEST_CASE("replaceValue with a new declaration, none, or no value changes nothing") {
    const ParameterDef a = Definition();
    const ParameterDef unknown = Definition();
    DataSet set;
    ParameterValue* const kept = set.addParameter(&a, false, nullptr);
    CHECK(set.replaceValue(makeValue<IntegerValue>(&unknown)) != nullptr);
    CHECK(set.replaceValue(makeValue<IntegerValue>(7)) != nullptr);
    CHECK(set.replaceValue(nullptr) == nullptr);
    CHECK_EQ(set.size(), 1);
    CHECK_EQ(set.findValue(&a), kept);
}

TEST_CASE("A value without a declaration, or none, is not added") {
    DataSet set;
    set.addValue(makeValue<IntegerValue>(7));
    set.addValue(nullptr);
    CHECK_EQ(set.size(), 0);
}

TEST_CASE("The plain column of the factory") {
    CHECK(MakesPlain<IntegerValue>(0));
    CHECK(MakesPlain<DoubleValue>(1));
    CHECK(MakesPlain<BooleanValue>(2));
    CHECK(MakesPlain<ColourValue>(3));
    CHECK(MakesPlain<IntegerXYValue>(4));
    for (const int type : {5, 6, 14, 26}) CHECK(MakesPlain<DoubleXYValue>(type));
    CHECK(MakesPlain<GraphValue>(7));
    CHECK(MakesPlain<EnumerationValue>(8));
    CHECK(MakesPlain<FontValue>(9));
    CHECK(MakesPlain<RectValue>(10));
    CHECK(MakesPlain<StringValue>(11));
    CHECK(MakesPlain<PathValue>(12));
    CHECK(MakesPlain<DoubleValue>(13));
    CHECK(MakesPlain<ColourSplineValue>(15));
    for (const int type : {16, 23, 24, 25}) CHECK(MakesPlain<FloatValue>(type));
    CHECK(MakesPlain<FileNameValue>(17));
    CHECK(MakesPlain<IntegerValue>(28));
}

TEST_CASE("A type without a class adds nothing") {
    for (const int type : {18, 19, 20, 21, 22, 27, 29, 1000}) {
        CAPTURE(type);
        const ParameterDef definition = Definition(static_cast<ParameterType>(type));
        DataSet set;
        CHECK_EQ(set.addParameter(&definition, false, nullptr), nullptr);
        CHECK_EQ(set.size(), 0);
    }
    CHECK(DataSet::createValue(nullptr, false, nullptr) == nullptr);
}

TEST_CASE("Asked for as animated, fonts, rectangles, strings and paths yield nothing; four types stay plain") {
    for (const int type : {9, 10, 11, 12}) {
        const ParameterDef definition = Definition(static_cast<ParameterType>(type));
        CHECK(DataSet::createValue(&definition, true, nullptr) == nullptr);
    }
    for (const int type : {7, 8, 15, 28}) {
        const ParameterDef definition = Definition(static_cast<ParameterType>(type));
        const ValuePointer value = DataSet::createValue(&definition, true, nullptr);
        REQUIRE(value != nullptr);
        CHECK_FALSE(value->isAnimated());
    }
    const ParameterDef plain = Definition(ParameterType::plainInteger);
    CHECK(dynamic_cast<IntegerValue*>(DataSet::createValue(&plain, true, nullptr).get()) != nullptr);
}

TEST_CASE("A set destroys its values in list order") {
    class Logging final : public Attachment {
    public:
        Logging(std::string& text, char mark) : log(text), letter(mark) {}
        ~Logging() override { log += letter; }

    private:
        std::string& log;
        char letter;
    };
    const ParameterDef a = Definition();
    const ParameterDef b = Definition();
    const ParameterDef c = Definition();
    std::string log;
    {
        DataSet set;
        set.addParameter(&c, false, nullptr)->attach(std::make_unique<Logging>(log, 'c'));
        set.addParameter(&a, false, nullptr)->attach(std::make_unique<Logging>(log, 'a'));
        set.addParameter(&b, false, nullptr)->attach(std::make_unique<Logging>(log, 'b'));
    }
    CHECK_EQ(log, "abc");
}

}  // namespace
