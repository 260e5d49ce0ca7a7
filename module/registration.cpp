#include "module/registration.h"

#include <array>
#include <cstdint>
#include <type_traits>
#include <variant>

#include "module/abi/host_api.h"

namespace chalkpane {
namespace {

constexpr std::int32_t pluginType = 2;

using P = PluginParameters;

// Each kind of parameter: the member of the block that holds its value, its default and its limits.
struct Switch {
    std::int32_t P::*member;
    std::int32_t defaultValue;
    void Register(const char* name, const char* label) const { qoRegisterParameterBool(name, label, defaultValue); }
};
struct Integer {
    std::int32_t P::*member;
    std::int32_t defaultValue, minimum, maximum;
    void Register(const char* name, const char* label) const {
        qoRegisterParameterInt(name, label, defaultValue, minimum, maximum);
    }
};
struct HiddenFloat {
    float P::*member;
    float defaultValue, minimum, maximum;
    void Register(const char* name, const char* label) const {
        qoRegisterParameterFloat(name, label, defaultValue, minimum, maximum);
        qoHideParameter(name);
    }
};
struct ColourBytes {
    std::uint32_t P::*member;
    std::uint32_t defaultValue;
    void Register(const char* name, const char* label) const { qoRegisterParameterColor(name, label, defaultValue); }
};
struct ImageName {
    const char* P::*member;
    const char* defaultName;
    void Register(const char* name, const char* label) const { qoRegisterParameterImage(name, label, defaultName); }
};
struct Choice {
    std::int32_t P::*member;
    std::int32_t defaultValue;
    const char* const* options;  // ends with null
    void Register(const char* name, const char* label) const {
        qoRegisterParameterRadio(name, label, defaultValue, options);
    }
};

struct ParameterRow {
    const char* name;
    const char* label;
    std::variant<Switch, Integer, HiddenFloat, ColourBytes, ImageName, Choice> kind;
};

constexpr std::array<const char*, 3> brushTypes{"Color", "Erase", nullptr};  // by the values of BrushType

// The host writes the values by the order of registration.
constexpr std::array parameterRows{
    ParameterRow{"Active", "Active", Switch{&P::Active, 1}},
    ParameterRow{"TexUnit", "Texture", Integer{&P::TexUnit, 1, 0, 2}},
    ParameterRow{"Transparent", "Transparent Base", Switch{&P::Transparent, 1}},
    ParameterRow{"Alpha", "Alpha", HiddenFloat{&P::Alpha, 100, 0, 100}},
    ParameterRow{"BrushType", "Brush Type", Choice{&P::BrushType, 0, brushTypes.data()}},
    ParameterRow{"BrushImage", "Brush Image", ImageName{&P::BrushImage, ""}},
    ParameterRow{"BrushWidth", "Brush Width", Integer{&P::BrushWidth, 5, 1, 30}},
    ParameterRow{"EraserWidth", "Eraser Brush Width", Integer{&P::EraserWidth, 10, 1, 60}},
    ParameterRow{"BrushColor", "Brush Color", ColourBytes{&P::BrushColor, 0xF0000000}},
    ParameterRow{"RecoShapes", "Recognize Shapes", Switch{&P::RecoShapes, 0}},
    ParameterRow{"RecoEllipse", "Recognize Ellipse", Switch{&P::RecoEllipse, 1}},
    ParameterRow{"RecoCircle", "Recognize Circle", Switch{&P::RecoCircle, 0}},
    ParameterRow{"RecoCross", "Recognize Cross", Switch{&P::RecoCross, 1}},
    ParameterRow{"ShapeDelay", "Shape Delay", Integer{&P::ShapeDelay, 50, 1, 100}},
    ParameterRow{"Arrow", "Draw Arrow", Switch{&P::Arrow, 1}},
    ParameterRow{"ArrowLength", "Arrow Length", Integer{&P::ArrowLength, 30, 1, 100}},
    ParameterRow{"ArrowWidth", "Arrow Width", Integer{&P::ArrowWidth, 20, 1, 100}},
    ParameterRow{"CircleRadius", "Circle Rad", Integer{&P::CircleRadius, 0, 0, 1000}},
    ParameterRow{"CrossDia", "Cross Width", Integer{&P::CrossDia, 0, 0, 1000}},
    ParameterRow{"MaxUndos", "Max. Undos", Integer{&P::MaxUndos, 10, 0, 10}},
};

// True: the rows follow the members as they lie in the block.
constexpr bool RowsFollowTheBlock() {
    constexpr P numbered{0, 1, 2, 3, 4, "5", 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    const auto isNumber = [](const auto& value, std::size_t number) {
        if constexpr (std::is_pointer_v<std::remove_cvref_t<decltype(value)>>) {
            return number == 5;  // the only text
        } else {
            return static_cast<std::size_t>(value) == number;
        }
    };
    for (std::size_t i = 0; i < parameterRows.size(); ++i) {
        const auto isInPlace = [&](const auto& kind) { return isNumber(numbered.*kind.member, i); };
        if (!std::visit(isInPlace, parameterRows[i].kind)) return false;
    }
    return true;
}
constexpr std::size_t fieldCount = (sizeof(P) - brushImageOffset - sizeof(const char*)) / 4 + 1 + 5;
static_assert(parameterRows.size() == fieldCount);
static_assert(RowsFollowTheBlock());
static_assert(std::get<Choice>(parameterRows[brushTypeNumber - 1].kind).member == &P::BrushType);

}  // namespace

void RegisterPlugin() {
    qoRegisterPlugin("Chalkpane");
    qoRegisterPluginType(pluginType);
    qoRegisterPluginFolder("Texture");
    for (const ParameterRow& row : parameterRows) {
        std::visit([&](const auto& kind) { kind.Register(row.name, row.label); }, row.kind);
    }
    qoRegisterPushButton("Clear", "Clear", static_cast<std::int32_t>(PluginAction::Clear));
    qoRegisterPushButton("Undo", "Undo", static_cast<std::int32_t>(PluginAction::Undo));
    qoRegisterTotalSize(instanceBlockSize);
}

std::int32_t ShowParameters(const PluginParameters& values) {
    const bool colour = SettingsOf(values).brushType == BrushType::Colour;
    qoSendGuiParameterShow("BrushImage", colour ? 1 : 0);
    qoSendGuiParameterShow("BrushWidth", colour ? 1 : 0);
    qoSendGuiParameterShow("EraserWidth", colour ? 0 : 1);
    return qoSendGuiParameterShow("Transparent", values.TexUnit == 0 ? 1 : 0);
}

}  // namespace chalkpane
