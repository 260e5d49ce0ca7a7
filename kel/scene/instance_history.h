#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "kel/module_loading/parameter.h"
#include "kel/scene/pointer_queue.h"

namespace kel {

// What the operator did to an instance since it was put on its container, so that a fresh one can be brought to where
// it is, or to where it would be had something been done otherwise.

struct SettingInput {
    std::size_t parameter = 0;  // index in the order of registration
    ParameterValue value;
};
struct ActionInput {
    std::int32_t action = 0;
};
struct KeyInput {};

// One field's share of it. Fields in which nothing was done have none.
struct InstanceInput {
    std::int64_t field = 0;  // of the host
    std::optional<PointerStep> pointer;
    bool isOver = false;            // a press is over the container
    bool isStep = false;            // it was no field, but a step between two
    std::size_t stroke = 0;         // that a press begins, numbered from 1 as they were drawn; 0: none
    std::int32_t windowWidth = 0;   // pixels, while the pointer was there
    std::int32_t windowHeight = 0;  // pixels
    std::vector<std::variant<SettingInput, ActionInput, KeyInput>> operatorInputs;
};

struct InstanceHistory {
    std::int64_t firstField = 0;              // that it lived through
    std::vector<ParameterValue> firstValues;  // in the order of registration
    std::vector<InstanceInput> inputs;        // by field
    std::size_t strokes = 0;                  // begun so far
    bool isPressed = false;                   // the last of them goes on

    // The field's input, which is the last one or comes after it.
    InstanceInput& At(std::int64_t field) {
        if (inputs.empty() || inputs.back().field != field) inputs.emplace_back().field = field;
        return inputs.back();
    }
};

}  // namespace kel
