#pragma once

#include <cstdint>
#include <type_traits>

#include "chalkpane/parameters/animation/key.h"
#include "chalkpane/parameters/number_conversion.h"

namespace chalkpane {

// The numbers that a key's value is made of, each of which runs on a curve of its own.
template <typename Content>
constexpr std::int32_t componentsOf() {
    if constexpr (std::is_same_v<Content, Colour>) return 3;
    return std::is_arithmetic_v<Content> ? 1 : 2;
}

inline std::uint16_t& componentOf(Colour& colour, std::int32_t component) {
    return component == 0 ? colour.red : component == 1 ? colour.green : colour.blue;
}
template <typename Number>
Number& componentOf(NumberPair<Number>& pair, std::int32_t component) {
    return component == 0 ? pair.x : pair.y;
}
template <typename Number>
requires std::is_arithmetic_v<Number> Number& componentOf(Number& number, std::int32_t) { return number; }

template <typename Content>
double getComponent(Content value, std::int32_t component) {
    if constexpr (std::is_base_of_v<PathPoint, Content>) {
        return componentOf(value.point, component);
    } else {
        return componentOf(value, component);
    }
}

// Narrows to the component's own type: whole numbers truncate, a component of a colour keeps the low 16 bits, and a
// point takes its handles along.
template <typename Content>
void setComponent(Content& value, std::int32_t component, double number) {
    if constexpr (std::is_base_of_v<PathPoint, Content>) {
        DoublePair point = value.point;
        componentOf(point, component) = number;
        value.moveTo(point);
    } else {
        auto& stored = componentOf(value, component);
        using Stored = std::remove_reference_t<decltype(stored)>;
        if constexpr (std::is_same_v<Stored, bool>) {
            stored = number != 0.0;
        } else if constexpr (std::is_same_v<Stored, float>) {
            stored = toFloat(number);
        } else if constexpr (std::is_integral_v<Stored>) {
            stored = static_cast<Stored>(truncateToInteger(number));
        } else {
            stored = number;
        }
    }
}

}  // namespace chalkpane
