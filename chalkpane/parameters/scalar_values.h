#pragma once

#include <cstdint>

#include "chalkpane/parameters/typed_value.h"

namespace chalkpane {

// The plain values of one number or flag.
//
// Each class is built from a declaration, taking its default, or from a literal, for limits and defaults; the same
// holds for all plain values.

class BooleanValue final : public TypedValue<BooleanValue, bool> {
public:
    explicit BooleanValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit BooleanValue(bool literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, bool& out) { any.getBoolean(out); }

    void setBoolean(bool boolean) override { set(boolean); }
    void getBoolean(bool& out) const override;
};

class IntegerValue final : public TypedValue<IntegerValue, std::int32_t> {
public:
    explicit IntegerValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit IntegerValue(std::int32_t literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, std::int32_t& out) { any.getInteger(out); }

    void setInteger(std::int32_t number) override { set(number); }
    void getInteger(std::int32_t& out) const override;
    // Inheriting, it asks the parent for a double, which an integer parent does not answer.
    void getStoredDouble(double& out) const override;
};

class EnumerationValue final : public TypedValue<EnumerationValue, std::uint8_t> {
public:
    explicit EnumerationValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit EnumerationValue(std::uint8_t literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, std::uint8_t& out) { any.getEnumeration(out); }

    void setEnumeration(std::uint8_t index) override { set(index); }
    void getEnumeration(std::uint8_t& out) const override;
};

class FloatValue final : public TypedValue<FloatValue, float> {
public:
    explicit FloatValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit FloatValue(float literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, float& out) { any.getFloat(out); }

    void setFloat(float number) override { set(number); }
    void setDouble(double number) override;  // narrows
    void getFloat(float& out) const override;
    void getDouble(double& out) const override;
    void getStoredDouble(double& out) const override { out = value; }
};

class DoubleValue final : public TypedValue<DoubleValue, double> {
public:
    explicit DoubleValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit DoubleValue(double literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, double& out) { any.getDouble(out); }

    void setFloat(float number) override { set(number); }  // widens; there is no getFloat to go with it
    void setDouble(double number) override { set(number); }
    void getDouble(double& out) const override;
    // KEEP: the own number even while inheriting, unlike IntegerValue.
    void getStoredDouble(double& out) const override { out = value; }
};

using UndoBooleanValue = UndoTypedValue<BooleanValue>;
using UndoIntegerValue = UndoTypedValue<IntegerValue>;
using UndoEnumerationValue = UndoTypedValue<EnumerationValue>;
using UndoFloatValue = UndoTypedValue<FloatValue>;
using UndoDoubleValue = UndoTypedValue<DoubleValue>;

}  // namespace chalkpane
