#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

#include "chalkpane/filters/filter.h"
#include "chalkpane/parameters/parameter_table.h"

namespace chalkpane {

struct FilterIdentity {
    std::string_view name;      // file name of the class
    std::string_view label;     // what the menu shows
    std::string_view category;  // the menu it stands in
};

// What every concrete filter says the same way. A class gives
//     static constexpr FilterIdentity identity{...};
//     static constexpr auto Parameters();                    the rows of its settings
//     static constexpr auto Choices(std::uint8_t code);      only with enumerations: a span of labels
// and its `Apply` or row functions; this supplies the rest of the family's interface from them.
template <typename Self, typename Base>
class FilterClass : public WithParameters<Self, Base> {
public:
    using WithParameters<Self, Base>::WithParameters;

    [[nodiscard]] std::unique_ptr<Filter> Clone() const override { return std::make_unique<Self>(AsSelf()); }
    [[nodiscard]] std::unique_ptr<Filter> CreateNew() const override { return std::make_unique<Self>(); }

    [[nodiscard]] bool Equals(const Filter& other) const override {
        const auto* const same = dynamic_cast<const Self*>(&other);
        if (same == nullptr) return false;
        static constexpr auto rows = Self::Parameters();
        return std::all_of(rows.begin(), rows.end(), [this, same](const ParameterRow<Self>& row) {
            return std::visit([this, same](auto field) { return FieldsAgree(AsSelf(), *same, field); }, row.field);
        });
    }

    [[nodiscard]] std::string_view Name() const override { return Self::identity.name; }
    [[nodiscard]] std::string_view Label() const override { return Self::identity.label; }
    [[nodiscard]] std::string_view Category() const override { return Self::identity.category; }

    [[nodiscard]] std::int32_t EnumCount(const ParameterDef& definition) const override {
        return static_cast<std::int32_t>(ChoicesOf(definition).size());
    }
    [[nodiscard]] std::string_view EnumLabel(const ParameterDef& definition, std::int32_t index) const override {
        const auto choices = ChoicesOf(definition);
        const bool known = index >= 0 && static_cast<std::size_t>(index) < choices.size();
        return known ? choices[static_cast<std::size_t>(index)] : std::string_view();
    }

private:
    [[nodiscard]] const Self& AsSelf() const { return static_cast<const Self&>(*this); }

    template <typename Field>
    static bool FieldsAgree(const Self& a, const Self& b, Field field) {
        if constexpr (std::is_same_v<Field, std::nullptr_t>) {
            return true;
        } else if constexpr (std::is_same_v<Field, ShapePointList Self::*>) {
            return (a.*field).equals(b.*field);
        } else {
            return a.*field == b.*field;
        }
    }

    static std::span<const std::string_view> ChoicesOf([[maybe_unused]] const ParameterDef& definition) {
        if constexpr (requires { Self::Choices(definition.code); })
            return Self::Choices(definition.code);
        else
            return {};
    }
};

}  // namespace chalkpane
