#include "kel/scene/instance.h"

#include <algorithm>
#include <cstring>

namespace kel {
namespace {

// A module that relies on what a fresh block holds would be found out by this.
constexpr int freshByte = 0xA5;

template <typename T>
void Write(std::byte* field, const T& value) {
    std::memcpy(field, &value, sizeof value);
}

}  // namespace

Instance::Instance(const Module& module, ObjectId container)
    : m_module(module),
      m_container(container),
      m_block(std::make_unique<std::byte[]>(static_cast<std::size_t>(module.registration.blockSize))) {
    const Registration& registration = module.registration;
    std::memset(m_block.get(), freshByte, static_cast<std::size_t>(registration.blockSize));
    m_values.resize(registration.parameters.size());
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        SetValue(i, registration.parameters[i].defaultValue);
        m_shown.push_back(!registration.parameters[i].hidden);
    }
}

std::ptrdiff_t Instance::IndexOf(std::string_view parameter) const {
    const auto& parameters = m_module.registration.parameters;
    const auto found = std::ranges::find(parameters, parameter, &Parameter::name);
    return found == parameters.end() ? -1 : found - parameters.begin();
}

void Instance::SetValue(std::size_t index, const ParameterValue& value) {
    m_values[index] = value;
    std::byte* field = m_block.get() + m_module.registration.parameters[index].offset;
    if (const auto* name = std::get_if<std::string>(&m_values[index])) return Write(field, name->c_str());
    if (const auto* number = std::get_if<float>(&value)) return Write(field, *number);
    if (const auto* colour = std::get_if<ColourBytes>(&value)) return Write(field, *colour);
    Write(field, std::get<std::int32_t>(value));
}

}  // namespace kel
