#pragma once

#include "chalkpane/parameters/parameter_table.h"

namespace chalkpane {

// Some filters come in two forms: with a last parameter "Use Paint Color" and without it. Their table has it; this is
// the list of the form without, built once. `adapt` may change a declaration on the way.
template <typename FilterClass>
const ParameterList& ListWithoutPaintColour(void (*adapt)(ParameterDeclaration&) = [](ParameterDeclaration&) {}) {
    static const ParameterList& list = *[adapt] {
        auto* made = new ParameterList;  // lives as long as the module, as all lists do
        const auto rows = FilterClass::Parameters();
        for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
            ParameterDeclaration declaration{rows[i].code,         rows[i].label, rows[i].name,
                                             rows[i].defaultValue, rows[i].range, rows[i].kind};
            adapt(declaration);
            declareParameter(*made, declaration);
        }
        return made;
    }();
    return list;
}

}  // namespace chalkpane
