#include "kel/ink/telestrator_module.h"

#include <algorithm>
#include <string_view>

namespace kel {
namespace {

struct ExpectedParameter {
    std::string_view name;
    ParameterKind kind;
};

// What the settings are read from, the colour last.
enum Place : std::size_t {
    Active,
    BrushTypeOption,
    BrushWidth,
    EraserWidth,
    RecoShapes,
    RecoEllipse,
    RecoCircle,
    RecoCross,
    ShapeDelay,
    Arrow,
    ArrowLength,
    ArrowWidth,
    CircleRadius,
    CrossDia,
    MaxUndos
};
constexpr std::array<ExpectedParameter, 16> expected{{{"Active", ParameterKind::Bool},
                                                      {"BrushType", ParameterKind::Radio},
                                                      {"BrushWidth", ParameterKind::Int},
                                                      {"EraserWidth", ParameterKind::Int},
                                                      {"RecoShapes", ParameterKind::Bool},
                                                      {"RecoEllipse", ParameterKind::Bool},
                                                      {"RecoCircle", ParameterKind::Bool},
                                                      {"RecoCross", ParameterKind::Bool},
                                                      {"ShapeDelay", ParameterKind::Int},
                                                      {"Arrow", ParameterKind::Bool},
                                                      {"ArrowLength", ParameterKind::Int},
                                                      {"ArrowWidth", ParameterKind::Int},
                                                      {"CircleRadius", ParameterKind::Int},
                                                      {"CrossDia", ParameterKind::Int},
                                                      {"MaxUndos", ParameterKind::Int},
                                                      {"BrushColor", ParameterKind::Colour}}};
constexpr ExpectedParameter expectedImage{"BrushImage", ParameterKind::Image};

std::optional<std::size_t> IndexOf(const Registration& registration, const ExpectedParameter& wanted) {
    const auto found = std::ranges::find_if(registration.parameters, [&](const Parameter& parameter) {
        return parameter.name == wanted.name && parameter.kind == wanted.kind;
    });
    if (found == registration.parameters.end()) return std::nullopt;
    return static_cast<std::size_t>(found - registration.parameters.begin());
}

}  // namespace

std::uint32_t TelestratorModule::Packed(const ColourBytes& colour) {
    std::uint32_t packed = 0;
    for (std::size_t i = 0; i < colour.size(); ++i) packed |= std::uint32_t{colour[i]} << (8 * i);
    return packed;
}

std::optional<TelestratorModule> TelestratorModule::Find(const Registration& registration) {
    if (registration.name != "Chalkpane") return std::nullopt;
    TelestratorModule module;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto place = IndexOf(registration, expected[i]);
        if (!place) return std::nullopt;
        module.m_places[i] = *place;
    }
    const auto image = IndexOf(registration, expectedImage);
    const Button* const clear = registration.FindButton("Clear");
    const Button* const undo = registration.FindButton("Undo");
    if (!image || clear == nullptr || undo == nullptr) return std::nullopt;
    module.m_brushType = module.m_places[BrushTypeOption];
    module.m_brushImage = *image;
    module.m_clear = clear->action;
    module.m_undo = undo->action;
    return module;
}

std::int32_t TelestratorModule::Number(const std::vector<ParameterValue>& values, std::size_t place) const {
    return std::get<std::int32_t>(values[m_places[place]]);
}

chalkpane::TelestratorSettings TelestratorModule::Settings(const std::vector<ParameterValue>& values) const {
    const auto number = [&](std::size_t place) { return Number(values, place); };
    chalkpane::TelestratorSettings settings;
    settings.brushType = static_cast<chalkpane::BrushType>(number(BrushTypeOption));
    settings.brushWidth = number(BrushWidth);
    settings.eraserWidth = number(EraserWidth);
    settings.brushColour = Packed(std::get<ColourBytes>(values[m_places[colourPlace]]));
    settings.recogniseShapes = number(RecoShapes) != 0;
    settings.recogniseEllipse = number(RecoEllipse) != 0;
    settings.recogniseCircle = number(RecoCircle) != 0;
    settings.recogniseCross = number(RecoCross) != 0;
    settings.shapeDelay = number(ShapeDelay);
    settings.arrow = number(Arrow) != 0;
    settings.arrowLength = number(ArrowLength);
    settings.arrowWidth = number(ArrowWidth);
    settings.crossDiameter = number(CrossDia);
    settings.maxUndos = number(MaxUndos);
    return settings;
}

bool TelestratorModule::IsActive(const std::vector<ParameterValue>& values) const {
    return Number(values, Active) != 0;
}

bool TelestratorModule::HasBrushPicture(const std::vector<ParameterValue>& values) const {
    return !std::get<std::string>(values[m_brushImage]).empty();
}

}  // namespace kel
