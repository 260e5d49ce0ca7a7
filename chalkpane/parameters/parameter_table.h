#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <variant>

#include "chalkpane/parameters/graph_value.h"
#include "chalkpane/parameters/parameterised_object.h"
#include "chalkpane/parameters/string_value.h"

namespace chalkpane {

// What a row of a table declares where the field's type does not tell: `{ParameterType::position}`, or one of these.
struct ParameterKind {
    ParameterType type;
    bool slider = false;  // ParameterDef::flagC
};
inline constexpr ParameterKind percent{ParameterType::real, true};
inline constexpr ParameterKind unitFloat{ParameterType::float32, true};
inline constexpr ParameterKind floatKind{ParameterType::float32};  // for a field that is a double
inline constexpr ParameterKind angle0To360{ParameterType::angle0To360};
inline constexpr ParameterKind angle360{ParameterType::angle360};

// The code of a row: a number, or an enumerator that names it.
struct ParameterCode {
    constexpr ParameterCode(std::uint8_t number) : value(number) {}
    template <typename Named>
    requires std::is_enum_v<Named>
    constexpr ParameterCode(Named name) : value(static_cast<std::uint8_t>(name)) {}
    std::uint8_t value;
};

// The range that a control offers; {} where there is none.
struct ParameterRange {
    constexpr ParameterRange() = default;
    constexpr ParameterRange(double low, double high) : minimum(low), maximum(high), given(true) {}
    double minimum = 0.0;
    double maximum = 0.0;
    bool given = false;
};

// A default as it is written in a table; {} where there is none.
using ParameterDefault = std::variant<std::monostate, bool, int, double, Colour, DoublePair, const char*>;

// One parameter of a class:
//     {code, label, unique name, default, range, field}          its type follows from the field
//     {code, label, unique name, default, range, field, kind}    or is given
// The field is a pointer to member, or null for a parameter that the class declares and does not store; then the kind
// must be given. By field type: bool boolean, uint8 enumeration, int32 integer, uint32 enumeration, float float, double
// double, Colour colour, string string, FileName file name, DoublePair double pair, graph pointer or list graph.
template <typename Self>
struct ParameterRow {
    using Field =
        std::variant<std::nullptr_t, bool Self::*, std::uint8_t Self::*, std::int32_t Self::*, std::uint32_t Self::*,
                     float Self::*, double Self::*, Colour Self::*, std::string Self::*, FileName Self::*,
                     DoublePair Self::*, GraphValue * Self::*, ShapePointList Self::*>;

    constexpr ParameterRow(ParameterCode rowCode, const char* rowLabel, const char* rowName,
                           ParameterDefault rowDefault, ParameterRange rowRange, Field rowField)
        : ParameterRow(rowCode, rowLabel, rowName, rowDefault, rowRange, rowField, kindOf(rowField)) {}
    constexpr ParameterRow(ParameterCode rowCode, const char* rowLabel, const char* rowName,
                           ParameterDefault rowDefault, ParameterRange rowRange, Field rowField, ParameterKind rowKind)
        : code(rowCode.value),
          label(rowLabel),
          name(rowName),
          defaultValue(rowDefault),
          range(rowRange),
          field(rowField),
          kind(rowKind) {}

    std::uint8_t code;
    const char* label;
    const char* name;
    ParameterDefault defaultValue;
    ParameterRange range;
    Field field;
    ParameterKind kind;

private:
    static constexpr ParameterKind kindOf(const Field& field) {
        using enum ParameterType;
        constexpr ParameterType types[] = {groupBegin, boolean, enumeration, integer,    enumeration, float32, real,
                                           colour,     string,  fileName,    doublePair, graph,       graph};
        static_assert(std::size(types) == std::variant_size_v<Field>);
        return {types[field.index()]};
    }
};

// A row without its field: what a declaration needs.
struct ParameterDeclaration {
    std::uint8_t code;
    const char* label;
    const char* name;
    ParameterDefault defaultValue;
    ParameterRange range;
    ParameterKind kind;
};
void declareParameter(ParameterList& list, const ParameterDeclaration& declaration);

// The name of a plain or an animated file name value; of any other the field stays.
void readFileName(const ParameterValue& value, FileName& field);

// Reads `value` by the getter that fits `type` into `field`; where the value is of another family the field stays.
// An enumeration or an integer fits every field of a whole number, a float type a field that is a double, and a double
// type one that is a float.
template <typename Stored>
void readIntoField(ParameterValue& value, [[maybe_unused]] ParameterType type, Stored& field) {
    if constexpr (std::is_same_v<Stored, bool>) {
        value.getBoolean(field);
    } else if constexpr (std::is_integral_v<Stored>) {
        if (type == ParameterType::enumeration) {
            auto index = static_cast<std::uint8_t>(field);
            value.getEnumeration(index);
            field = index;
        } else if (type == ParameterType::boolean) {
            bool flag = field != 0;
            value.getBoolean(flag);
            field = flag;
        } else {
            auto number = static_cast<std::int32_t>(field);
            value.getInteger(number);
            field = static_cast<Stored>(number);
        }
    } else if constexpr (std::is_same_v<Stored, float>) {
        if (type == ParameterType::real || type == ParameterType::logarithmic) {
            double number = field;
            value.getDouble(number);
            field = static_cast<float>(number);
        } else {
            value.getFloat(field);
        }
    } else if constexpr (std::is_same_v<Stored, double>) {
        value.getDouble(field);
    } else if constexpr (std::is_same_v<Stored, Colour>) {
        value.getColour(field);
    } else if constexpr (std::is_same_v<Stored, std::string>) {
        value.getString(field);
    } else if constexpr (std::is_same_v<Stored, FileName>) {
        readFileName(value, field);
    } else if constexpr (std::is_same_v<Stored, DoublePair>) {
        value.getDoubleXY(field.x, field.y);
    } else if constexpr (std::is_same_v<Stored, GraphValue*>) {
        if (auto* graph = dynamic_cast<GraphValue*>(&value)) field = graph;
    } else {
        static_assert(std::is_same_v<Stored, ShapePointList>);
        value.getGraph(field);
    }
}

// A class whose parameters are the rows of `Self::Parameters()`, a static constexpr function that answers a std::array
// of ParameterRow<Self>. Supplies the class-wide list, built in table order when the first object is made, and
// `setParameter`. Neither the default nor the range limits anything: a fresh object holds the initialisers of its
// fields, and a setter takes what comes. A class that stores a value otherwise overrides `setParameter` and calls this
// one.
//
// A base with `static constexpr bool storesNaNAsZero = true` has NaN stored as 0 in its float and double fields.
template <typename Self, typename Base>
class WithParameters : public Base {
public:
    template <typename... Arguments>
    explicit WithParameters(Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...) {
        this->parameters = &ClassParameters();
    }
    WithParameters(const WithParameters&) = default;
    WithParameters(WithParameters& other) : WithParameters(static_cast<const WithParameters&>(other)) {}
    WithParameters& operator=(const WithParameters&) = default;

    // The class's own list; never freed.
    static const ParameterList& ClassParameters() {
        static const ParameterList& list = *Declare();
        return list;
    }

    void setParameter(ParameterValue* value) override {
        if (value == nullptr || value->getParameter() == nullptr) return;
        static constexpr auto rows = Self::Parameters();
        static_assert(CodesAreUnique(rows));
        for (const ParameterRow<Self>& row : rows) {
            if (row.code != value->getParameter()->code) continue;
            std::visit([&](auto field) { Store(*value, row.kind.type, field); }, row.field);
            return;
        }
    }

private:
    template <typename Field>
    void Store(ParameterValue& value, ParameterType type, Field field) {
        if constexpr (!std::is_same_v<Field, std::nullptr_t>) {
            auto& stored = static_cast<Self&>(*this).*field;
            readIntoField(value, type, stored);
            using Stored = std::remove_reference_t<decltype(stored)>;
            if constexpr (std::is_floating_point_v<Stored> && requires { Base::storesNaNAsZero; })
                if (std::isnan(stored)) stored = 0;
        }
    }

    static const ParameterList* Declare() {
        auto* list = new ParameterList;
        for (const ParameterRow<Self>& row : Self::Parameters())
            declareParameter(*list, {row.code, row.label, row.name, row.defaultValue, row.range, row.kind});
        return list;
    }

    template <std::size_t size>
    static constexpr bool CodesAreUnique(const std::array<ParameterRow<Self>, size>& rows) {
        std::array<bool, 256> seen{};
        for (const ParameterRow<Self>& row : rows) {
            if (seen[row.code]) return false;
            seen[row.code] = true;
        }
        return true;
    }
};

}  // namespace chalkpane
