#pragma once

#include "kel/module_loading/module.h"

namespace kel::testing {

// A registration with a parameter of every kind: "On" (bool), "Wide" (int, 1 to 9), "Share" (float, 0 to 1), "Ink"
// (color), "Kind" (radio: "Draw", "Rub out"), "Stamp" (image), "Deep" (hidden int), and the button "Wipe".
inline Registration SomeModule() {
    Registration module;
    module.name = "Some";
    module.parameters = {
        {ParameterKind::Bool, "On", "Switched on", std::int32_t{1}, 0, 0, {}, false, 0},
        {ParameterKind::Int, "Wide", "Width", std::int32_t{5}, 1, 9, {}, false, 0},
        {ParameterKind::Float, "Share", "Share", 0.5F, 0, 1, {}, false, 0},
        {ParameterKind::Colour, "Ink", "Ink", ColourBytes{1, 2, 3, 255}, 0, 0, {}, false, 0},
        {ParameterKind::Radio, "Kind", "Kind", std::int32_t{0}, 0, 0, {"Draw", "Rub out"}, false, 0},
        {ParameterKind::Image, "Stamp", "Stamp", std::string(), 0, 0, {}, false, 0},
        {ParameterKind::Int, "Deep", "Deep", std::int32_t{0}, 0, 9, {}, true, 0},
    };
    module.buttons = {{"Wipe", "Wipe all", 3}};
    return module;
}

}  // namespace kel::testing
