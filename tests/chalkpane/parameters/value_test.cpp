#include <doctest/doctest.h>

#include <cmath>
#include <limits>

#include "chalkpane/parameters/animation/colour_spline.h"
#include "chalkpane/parameters/compound_values.h"
#include "chalkpane/parameters/font_value.h"
#include "chalkpane/parameters/graph_value.h"
#include "chalkpane/parameters/scalar_values.h"
#include "chalkpane/parameters/string_value.h"
#include "tests/chalkpane/parameters/recording_undo_stack.h"

namespace {

using namespace chalkpane;

class NoFont final : public Font {
public:
    void getDescription(bool&, bool&, std::string&) const override {}
};
constexpr const ParameterDef* undeclared = nullptr;

NoFont fontA;
NoFont fontB;

ShapePointList Curve(double y) {
    ShapePointList list;
    list.clear();
    list.insert(0.0, y);
    return list;
}

ColourSpline Spline(float position) {
    ColourSpline spline;
    spline.addKnot(Colour::fromIndex(1), position);
    return spline;
}

// One line per value class: its class, the type of its declaration, two samples and how they are set.
#define VALUE_CASE(Class, type, setter, first, second)                          \
    struct Class##Case {                                                        \
        using Value = Class;                                                    \
        using Record = Undo##Class;                                             \
        static constexpr ParameterType definitionType = type;                   \
        static auto First() { return Value::Stored(first); }                    \
        static auto Second() { return Value::Stored(second); }                  \
        static void Set(Value& value, const Value::Stored& content) { setter; } \
    }
using enum ParameterType;
VALUE_CASE(BooleanValue, boolean, value.setBoolean(content), true, false);
VALUE_CASE(IntegerValue, integer, value.setInteger(content), 7, -3);
VALUE_CASE(EnumerationValue, enumeration, value.setEnumeration(content), 255, 4);
VALUE_CASE(FloatValue, float32, value.setFloat(content), 0.1f, -8.0f);
VALUE_CASE(DoubleValue, real, value.setDouble(content), 0.1, -8.0);
VALUE_CASE(IntegerXYValue, integerPair, value.setIntegerXY(content.x, content.y), (IntegerPair{1, 2}),
           (IntegerPair{1, 3}));
VALUE_CASE(DoubleXYValue, doublePair, value.setDoubleXY(content.x, content.y), (DoublePair{1, 2}), (DoublePair{3, 2}));
VALUE_CASE(ColourValue, colour, value.setColour(content), (Colour{1, 2, 3}), (Colour{1, 2, 4}));
VALUE_CASE(RectValue, rectangle, value.setRect(content), Rect(1, 2, 3, 4), Rect(1, 2, 3, 5));
VALUE_CASE(FontValue, font, value.setFont(content), &fontA, &fontB);
VALUE_CASE(StringValue, string, value.setString(content), "chalk", "pane");
VALUE_CASE(FileNameValue, fileName, value.setFileName(content), "a/b.png", "c.png");
VALUE_CASE(GraphValue, graph, value.setGraph(content), Curve(0.25), Curve(0.5));
VALUE_CASE(ColourSplineValue, colourSpline, value.setColourSpline(content), Spline(0.25f), Spline(0.5f));
#undef VALUE_CASE

#define ALL_VALUES                                                                                                 \
    BooleanValueCase, IntegerValueCase, EnumerationValueCase, FloatValueCase, DoubleValueCase, IntegerXYValueCase, \
        DoubleXYValueCase, ColourValueCase, RectValueCase, FontValueCase, StringValueCase, FileNameValueCase,      \
        GraphValueCase, ColourSplineValueCase

template <typename Value>
typename Value::Stored Answer(const Value& value) {
    typename Value::Stored answer{};
    Value::ask(value, answer);
    return answer;
}

TEST_CASE_TEMPLATE("A value without declaration and parent answers itself and counts every set", Case, ALL_VALUES) {
    typename Case::Value value(undeclared);
    CHECK_FALSE(value.isSetLocally());
    CHECK(Answer(value) == typename Case::Value::Stored{});
    Case::Set(value, Case::First());
    CHECK(Answer(value) == Case::First());
    CHECK(value.isSetLocally());
    Case::Set(value, typename Case::Value::Stored{});
    CHECK(value.isSetLocally());
}

TEST_CASE_TEMPLATE("Three unset parents answer with the far end; the same answer set stays inherited", Case,
                   ALL_VALUES) {
    ParameterDef definition("Test", "Test", Case::definitionType, 0);
    typename Case::Value far(&definition);
    typename Case::Value middle(&definition);
    typename Case::Value near(&definition);
    near.setParent(&middle);
    middle.setParent(&far);
    far.store(Case::Second(), false);
    CHECK(Answer(near) == Case::Second());
    Case::Set(near, Case::First());
    CHECK(near.isSetLocally());
    CHECK(Answer(near) == Case::First());
    Case::Set(near, Case::Second());
    CHECK(Answer(near) == Case::Second());
    CHECK_EQ(near.isSetLocally(), std::is_same_v<typename Case::Value, GraphValue>);  // a graph stays set
}

TEST_CASE_TEMPLATE("A declaration that does not inherit counts every set", Case, ALL_VALUES) {
    ParameterDef definition("Test", "Test", Case::definitionType, 0);
    definition.inherits = false;
    definition.defaultValue = makeValue<typename Case::Value>(Case::First());
    typename Case::Value value(&definition);
    CHECK(value.stored() == Case::First());
    CHECK_FALSE(value.isSetLocally());
    Case::Set(value, Case::First());
    CHECK(value.isSetLocally());
}

TEST_CASE_TEMPLATE("reset goes back to the default, or to zero without one, and records", Case, ALL_VALUES) {
    constexpr bool staysSet = std::is_same_v<typename Case::Value, GraphValue>;
    RecordingUndoStack stack;
    ParameterDef definition("Test", "Test", Case::definitionType, 0);
    definition.defaultValue = makeValue<typename Case::Value>(Case::First());
    typename Case::Value value(&definition);
    Case::Set(value, Case::Second());
    value.reset();
    CHECK(Answer(value) == Case::First());
    CHECK(value.stored() == Case::First());
    CHECK_EQ(value.isSetLocally(), staysSet);
    CHECK_EQ(stack.size(), 2);

    typename Case::Value free(undeclared);
    Case::Set(free, Case::Second());
    free.reset();
    CHECK(Answer(free) == typename Case::Value::Stored{});
    CHECK(free.isSetLocally());
    stack.drop();
}

TEST_CASE_TEMPLATE("Set, undo and redo restore the value and whether it was set", Case, ALL_VALUES) {
    RecordingUndoStack stack;
    ParameterDef definition("Test", "Test", Case::definitionType, 0);
    typename Case::Value value(&definition);
    Case::Set(value, Case::First());
    Case::Set(value, Case::Second());
    CHECK_EQ(stack.count<typename Case::Record>(), 2);

    REQUIRE(stack.undo());
    CHECK(value.stored() == Case::First());
    CHECK(value.isSetLocally());
    REQUIRE(stack.undo());
    CHECK(value.stored() == typename Case::Value::Stored{});
    CHECK_FALSE(value.isSetLocally());
    REQUIRE(stack.redo());
    CHECK(value.stored() == Case::First());
    CHECK(value.isSetLocally());
    REQUIRE(stack.redo());
    CHECK(value.stored() == Case::Second());
    CHECK_EQ(stack.size(), 2);  // neither made a record
    stack.drop();
}

TEST_CASE_TEMPLATE("Undo of an inheriting value returns it to inheriting", Case, ALL_VALUES) {
    RecordingUndoStack stack;
    typename Case::Value parent(Case::First());
    typename Case::Value value(undeclared);
    value.setParent(&parent);
    Case::Set(value, Case::Second());
    CHECK(value.isSetLocally());
    stack.undo();
    CHECK_FALSE(value.isSetLocally());
    CHECK(Answer(value) == Case::First());
    CHECK(value.stored() == Case::First());  // the record held the inherited answer
    stack.drop();
}

TEST_CASE_TEMPLATE("Undo twice without redo stays at the old value and forgets the new one", Case, ALL_VALUES) {
    RecordingUndoStack stack;
    typename Case::Value value(undeclared);
    Case::Set(value, Case::First());
    Case::Set(value, Case::Second());
    UndoData& record = stack.last();
    record.undo();
    record.undo();
    CHECK(value.stored() == Case::First());
    record.redo();
    CHECK(value.stored() == Case::First());
    stack.drop();
}

TEST_CASE_TEMPLATE("Without a stack a set makes no record and changes all the same", Case, ALL_VALUES) {
    typename Case::Value value(undeclared);
    Case::Set(value, Case::First());
    CHECK(value.stored() == Case::First());
    CHECK_FALSE(isRecordDiscardable());
    CHECK_EQ(pluggedUndoStack(), nullptr);
    UndoSink(std::make_unique<typename Case::Record>(value));  // freed here
}

TEST_CASE("Pairs with one equal coordinate count as different") {
    DoubleXYValue parent(1.0, 2.0);
    DoubleXYValue value(undeclared);
    value.setParent(&parent);
    value.setDoubleXY(1.0, 3.0);
    CHECK(value.isSetLocally());
    value.setDoubleXY(0.0, 2.0);
    CHECK(value.isSetLocally());
    value.setDoubleXY(1.0, 2.0);
    CHECK_FALSE(value.isSetLocally());
}

TEST_CASE("NaN differs from NaN, zero equals minus zero") {
    DoubleValue parent(std::numeric_limits<double>::quiet_NaN());
    DoubleValue value(undeclared);
    value.setParent(&parent);
    value.setDouble(std::numeric_limits<double>::quiet_NaN());
    CHECK(value.isSetLocally());
    DoubleValue zero(0.0);
    value.setParent(&zero);
    value.setDouble(-0.0);
    CHECK_FALSE(value.isSetLocally());
}

TEST_CASE("setFloat on a double widens, setDouble on a float narrows") {
    DoubleValue wide(nullptr);
    wide.setFloat(0.1f);
    CHECK_EQ(wide.stored(), static_cast<double>(0.1f));
    FloatValue narrow(nullptr);
    narrow.setDouble(0.1);
    CHECK_EQ(narrow.stored(), 0.1f);
    narrow.setDouble(1e300);
    CHECK(std::isinf(narrow.stored()));
    double read = 0.0;
    narrow.setFloat(0.1f);
    narrow.getDouble(read);
    CHECK_EQ(read, static_cast<double>(0.1f));
}

TEST_CASE("A double answers no float") {
    DoubleValue value(3.0);
    float out = 42.0f;
    value.getFloat(out);
    CHECK_EQ(out, 42.0f);
}

TEST_CASE("Accessors of another family do nothing") {
    IntegerValue value(5);
    value.setDouble(9.0);
    value.setString("9");
    value.setBoolean(true);
    value.setEnumeration(9);
    CHECK_EQ(value.stored(), 5);
    double number = 42.0;
    value.getDouble(number);
    CHECK_EQ(number, 42.0);
    std::string text = "kept";
    value.getString(text);
    CHECK_EQ(text, "kept");
    Colour paint{9, 8, 7};
    value.getColour(paint);
    CHECK(paint == Colour{9, 8, 7});
}

TEST_CASE("An unset integer asks its parent for a double, a set one answers itself") {
    DoubleValue parent(2.5);
    IntegerValue value(7);
    value.setParent(&parent);
    double out = 0.0;
    value.getStoredDouble(out);
    CHECK_EQ(out, 2.5);
    value.setInteger(7);
    value.getStoredDouble(out);
    CHECK_EQ(out, 7.0);
    IntegerValue integerParent(3);
    value.setParent(&integerParent);
    value.clearSet();
    out = 42.0;
    value.getStoredDouble(out);
    CHECK_EQ(out, 42.0);  // an integer does not answer a double
}

TEST_CASE("An unset double or float answers its own stored number, not its parent's") {
    DoubleValue parent(2.5);
    DoubleValue wide(7.0);
    wide.setParent(&parent);
    double out = 0.0;
    wide.getStoredDouble(out);
    CHECK_EQ(out, 7.0);
    FloatValue narrow(6.5f);
    narrow.setParent(&parent);
    narrow.getStoredDouble(out);
    CHECK_EQ(out, 6.5);
}

TEST_CASE("An enumeration of 255 reads back") {
    EnumerationValue value(undeclared);
    value.setEnumeration(255);
    CHECK_EQ(Answer(value), 255);
}

TEST_CASE("A file name's parent of the wrong class counts as absent") {
    RecordingUndoStack stack;
    StringValue text("");
    FileNameValue value(undeclared);
    value.setParent(&text);
    value.setFileName(FileName(""));
    CHECK(value.isSetLocally());
    value.clearSet();
    CHECK(Answer(value).empty());
    value.setString("ignored");
    CHECK(Answer(value).empty());
    stack.drop();
}

TEST_CASE("Setting a string or a file name back to the inherited one inherits again") {
    FileNameValue parent(FileName("a/b"));
    FileNameValue value(undeclared);
    value.setParent(&parent);
    value.setFileName(FileName("A/b"));
    CHECK(value.isSetLocally());
    value.setFileName(FileName("a\\b"));
    CHECK_FALSE(value.isSetLocally());
}

class TwoLayers final : public LayerProvider {
public:
    std::uint8_t indexOfName(const std::string& name) const override { return name == "Top" ? 1 : 0; }
    void nameOfIndex(std::string& out, std::uint8_t index) const override { out = index == 1 ? "Top" : "Ground"; }
};

TEST_CASE("A layer is named by its index") {
    const TwoLayers layers;
    LayerValue value(nullptr, &layers);
    value.setEnumeration(1);
    CHECK_EQ(Answer<StringValue>(value), "Top");
    std::uint8_t index = 9;
    value.getEnumeration(index);
    CHECK_EQ(index, 1);
}

class Counted final : public Attachment {
public:
    explicit Counted(int& count) : alive(count) { ++alive; }
    ~Counted() override { --alive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& alive;
};

TEST_CASE("A pending layer answers index 0 until an index is set, which drops it") {
    const TwoLayers layers;
    int alive = 0;
    LayerValue value(nullptr, &layers);
    value.setEnumeration(1);
    value.setPendingLayer(std::make_unique<Counted>(alive));
    std::uint8_t index = 9;
    value.getEnumeration(index);
    CHECK_EQ(index, 0);
    value.setEnumeration(1);
    CHECK_EQ(alive, 0);
    value.getEnumeration(index);
    CHECK_EQ(index, 1);
}

TEST_CASE("A layer without a provider becomes empty when an index is set, and answers 0") {
    LayerValue value("Top", nullptr);
    std::uint8_t index = 9;
    value.getEnumeration(index);
    CHECK_EQ(index, 0);
    value.setEnumeration(1);
    CHECK_EQ(Answer<StringValue>(value), "");
}

TEST_CASE("A value destroys its attachment with itself") {
    int alive = 0;
    {
        ValuePointer value = makeValue<IntegerValue>(1);
        value->attach(std::make_unique<Counted>(alive));
        CHECK_EQ(alive, 1);
    }
    CHECK_EQ(alive, 0);
}

TEST_CASE("The base of all values does nothing where a class has nothing to say") {
    ParameterDef definition("Long", "Short", ParameterType::integer, 0);
    IntegerValue value(&definition);
    CHECK_EQ(value.getParameter(), &definition);
    CHECK_FALSE(value.isAnimated());
    CHECK_EQ(value.keyCount(), 0);
    CHECK_EQ(value.keyAt(0), nullptr);
    CHECK_EQ(value.resortKey(5), 5);
    CHECK_EQ(value.removeCoincidentKeys(5), 0);
    CHECK_FALSE(value.isChanged());
    value.markChanged();
    CHECK(value.isChanged());
    CHECK_FALSE(value.getCurveLocked());
    CHECK_EQ(value.getCurveRange(), 0);
    CHECK_EQ(value.getCurveScale(), 1.0);
    CHECK(value.isEditable());
    CHECK_EQ(value.componentCount(), 1);
    Colour paint{1, 1, 1};
    value.componentColour(paint, 0);
    CHECK(paint == Colour{});
    std::string name;
    value.componentName(name, 0);
    CHECK_EQ(name, "Short");
    CHECK_EQ(value.normalisedValue(0), 0.0);
    CHECK_EQ(value.normalisedKeyValue(0, 0), 0.0);
    CHECK(value.isDiscrete());
    CHECK(value.isEnabled());
    value.setInteger(3);
    CHECK(value.isSetLocally());
    value.clearValue();
    CHECK_FALSE(value.isSetLocally());
    CHECK_EQ(value.stored(), 3);
}

TEST_CASE("The default of the declaration is the parent until an explicit one is given") {
    ParameterDef definition("Long", "Short", ParameterType::integer, 0);
    definition.setDefault(4);
    IntegerValue value(&definition);
    CHECK_EQ(value.getParent(), definition.defaultValue.get());
    IntegerValue other(9);
    value.setParent(&other);
    CHECK_EQ(Answer(value), 9);
    value.setParent(nullptr);
    CHECK_EQ(Answer(value), 4);
}

}  // namespace
