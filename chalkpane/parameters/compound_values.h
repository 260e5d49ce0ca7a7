#pragma once

#include <cstdint>

#include "chalkpane/image/rect.h"
#include "chalkpane/parameters/number_pair.h"
#include "chalkpane/parameters/typed_value.h"

namespace chalkpane {

// The plain values of several numbers. Two are equal when all of their numbers are.

class IntegerXYValue final : public TypedValue<IntegerXYValue, IntegerPair> {
public:
    explicit IntegerXYValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit IntegerXYValue(const IntegerPair& literal) : TypedValue(literal) {}
    IntegerXYValue(std::int32_t x, std::int32_t y) : IntegerXYValue(IntegerPair{x, y}) {}
    static void ask(const ParameterValue& any, IntegerPair& out) { any.getIntegerXY(out.x, out.y); }

    void setIntegerXY(std::int32_t x, std::int32_t y) override { set({x, y}); }
    void getIntegerXY(std::int32_t& outX, std::int32_t& outY) const override;
};

class DoubleXYValue final : public TypedValue<DoubleXYValue, DoublePair> {
public:
    explicit DoubleXYValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit DoubleXYValue(const DoublePair& literal) : TypedValue(literal) {}
    DoubleXYValue(double x, double y) : DoubleXYValue(DoublePair{x, y}) {}
    static void ask(const ParameterValue& any, DoublePair& out) { any.getDoubleXY(out.x, out.y); }

    void setDoubleXY(double x, double y) override { set({x, y}); }
    void getDoubleXY(double& outX, double& outY) const override;
};

class ColourValue final : public TypedValue<ColourValue, Colour> {
public:
    explicit ColourValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit ColourValue(const Colour& literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, Colour& out) { any.getColour(out); }

    void setColour(const Colour& colour) override { set(colour); }
    void getColour(Colour& out) const override;
};

class RectValue final : public TypedValue<RectValue, Rect> {
public:
    explicit RectValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit RectValue(const Rect& literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, Rect& out) { any.getRect(out); }

    void setRect(const Rect& rect) override { set(rect); }
    void getRect(Rect& out) const override;
};

using UndoIntegerXYValue = UndoTypedValue<IntegerXYValue>;
using UndoDoubleXYValue = UndoTypedValue<DoubleXYValue>;
using UndoColourValue = UndoTypedValue<ColourValue>;
using UndoRectValue = UndoTypedValue<RectValue>;

}  // namespace chalkpane
