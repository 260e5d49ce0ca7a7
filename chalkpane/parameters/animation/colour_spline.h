#pragma once

#include <cstddef>
#include <vector>

#include "chalkpane/parameters/typed_value.h"

namespace chalkpane {

// A colour at a position along a spline, with the place of the half-way mix towards the next knot.
struct ColourSplineKnot {
    Colour colour;
    float position = 0.0f;
    float midpoint = 0.5f;

    friend bool operator==(const ColourSplineKnot&, const ColourSplineKnot&) = default;
};

// Colour knots in the order in which they were added. How the colours between knots come about is its users' business.
class ColourSpline {
public:
    std::size_t knotCount() const { return knots.size(); }
    const Colour& knotColour(std::size_t index) const { return knots[index].colour; }
    float knotPosition(std::size_t index) const { return knots[index].position; }
    float knotMidpoint(std::size_t index) const { return knots[index].midpoint; }

    void addKnot(const Colour& colour, float position) { knots.push_back({colour, position}); }
    void addKnot(const Colour& colour, float position, float midpoint) {
        knots.push_back({colour, position, midpoint});
        hasMidpoints = true;
    }
    void clear() { *this = ColourSpline(); }

    // True when a knot was added with a midpoint of its own.
    bool midpointsGiven() const { return hasMidpoints; }

    // Exactly the same knots. KEEP: whether midpoints were given does not count.
    bool equals(const ColourSpline& other) const { return knots == other.knots; }
    friend bool operator==(const ColourSpline& a, const ColourSpline& b) { return a.equals(b); }

private:
    std::vector<ColourSplineKnot> knots;
    bool hasMidpoints = false;
};

class ColourSplineValue final : public TypedValue<ColourSplineValue, ColourSpline> {
public:
    explicit ColourSplineValue(const ParameterDef* definition) : TypedValue(definition) {}
    explicit ColourSplineValue(const ColourSpline& literal) : TypedValue(literal) {}
    static void ask(const ParameterValue& any, ColourSpline& out) { any.getColourSpline(out); }

    void setColourSpline(const ColourSpline& spline) override { set(spline); }
    void getColourSpline(ColourSpline& out) const override;
};

using UndoColourSplineValue = UndoTypedValue<ColourSplineValue>;

}  // namespace chalkpane
