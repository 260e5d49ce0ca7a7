#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "kel/module_loading/module.h"
#include "kel/scene/scene.h"

namespace kel {

// One plug-in on one container: the block that the module works in, and what the operator has set.
//
// The module may keep the block's address, so an instance is never moved.
class Instance {
public:
    // The parameters have their defaults. Borrows the module.
    Instance(const Module& module, ObjectId container);
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    Instance(Instance&&) = delete;
    Instance& operator=(Instance&&) = delete;
    ~Instance() = default;

    [[nodiscard]] const Module& TheModule() const { return m_module; }
    [[nodiscard]] ObjectId Container() const { return m_container; }
    [[nodiscard]] chalkpane::PluginInstance* Block() const {
        return static_cast<chalkpane::PluginInstance*>(static_cast<void*>(m_block.get()));
    }

    // Index of the parameter in the order of registration, from 0; -1: there is none of that name.
    [[nodiscard]] std::ptrdiff_t IndexOf(std::string_view parameter) const;
    [[nodiscard]] const ParameterValue& Value(std::size_t index) const { return m_values[index]; }
    // Writes the field of the block. The value has been checked.
    void SetValue(std::size_t index, const ParameterValue& value);

    [[nodiscard]] bool IsShown(std::size_t index) const { return m_shown[index]; }
    void Show(std::size_t index, bool shown) { m_shown[index] = shown; }

private:
    const Module& m_module;
    ObjectId m_container;
    std::unique_ptr<std::byte[]> m_block;
    std::vector<ParameterValue> m_values;  // the block points at the names of images in here
    std::vector<bool> m_shown;
};

}  // namespace kel
