#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "kel/module_loading/module.h"
#include "telestrator/telestrator_settings.h"

namespace kel {

// How a module that is a telestrator is told from any other, and read: by what it registered.
class TelestratorModule {
public:
    // Empty: it registered something else than a telestrator does.
    static std::optional<TelestratorModule> Find(const Registration& registration);

    // A colour as the settings have it.
    [[nodiscard]] static std::uint32_t Packed(const ColourBytes& colour);

    // All values are in the order of registration.
    [[nodiscard]] chalkpane::TelestratorSettings Settings(const std::vector<ParameterValue>& values) const;
    [[nodiscard]] bool IsActive(const std::vector<ParameterValue>& values) const;
    // A brush that is a picture, which journals do not know.
    [[nodiscard]] bool HasBrushPicture(const std::vector<ParameterValue>& values) const;

    [[nodiscard]] bool IsBrushType(std::size_t parameter) const { return parameter == m_brushType; }
    [[nodiscard]] std::size_t BrushColour() const { return m_places[colourPlace]; }
    [[nodiscard]] std::int32_t ClearAction() const { return m_clear; }
    [[nodiscard]] std::int32_t UndoAction() const { return m_undo; }

private:
    static constexpr std::size_t numbers = 15;  // whole numbers, switches and options that are settings
    static constexpr std::size_t colourPlace = numbers;

    [[nodiscard]] std::int32_t Number(const std::vector<ParameterValue>& values, std::size_t place) const;

    std::array<std::size_t, numbers + 1> m_places{};  // parameters, in the order of the table in the source
    std::size_t m_brushType = 0;
    std::size_t m_brushImage = 0;
    std::int32_t m_clear = 0;
    std::int32_t m_undo = 0;
};

}  // namespace kel
