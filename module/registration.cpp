#include "module/registration.h"

#include <array>
#include <cstdint>
#include <variant>

#include "module/abi/host_api.h"
#include "module/plugin_instance.h"

namespace chalkpane {
namespace {

constexpr std::int32_t pluginType = 2;

struct Switch {
    std::int32_t defaultValue;
    void Register(const char* name, const char* label) const { qoRegisterParameterBool(name, label, defaultValue); }
};
struct Integer {
    std::int32_t defaultValue, minimum, maximum;
    void Register(const char* name, const char* label) const {
        qoRegisterParameterInt(name, label, defaultValue, minimum, maximum);
    }
};
struct HiddenFloat {
    float defaultValue, minimum, maximum;
    void Register(const char* name, const char* label) const {
        qoRegisterParameterFloat(name, label, defaultValue, minimum, maximum);
        qoHideParameter(name);
    }
};
struct ColourBytes {
    std::uint32_t defaultValue;
    void Register(const char* name, const char* label) const { qoRegisterParameterColor(name, label, defaultValue); }
};
struct ImageName {
    const char* defaultName;
    void Register(const char* name, const char* label) const { qoRegisterParameterImage(name, label, defaultName); }
};
struct Choice {
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

constexpr std::array<const char*, 3> brushTypes{"Color", "Erase", nullptr};

// In the order of the fields of PluginParameters: the host writes the values by this order.
constexpr std::array parameterRows{
    ParameterRow{"Active", "Active", Switch{1}},
    ParameterRow{"TexUnit", "Texture", Integer{1, 0, 2}},
    ParameterRow{"Transparent", "Transparent Base", Switch{1}},
    ParameterRow{"Alpha", "Alpha", HiddenFloat{100, 0, 100}},
    ParameterRow{"BrushType", "Brush Type", Choice{0, brushTypes.data()}},
    ParameterRow{"BrushImage", "Brush Image", ImageName{""}},
    ParameterRow{"BrushWidth", "Brush Width", Integer{5, 1, 30}},
    ParameterRow{"EraserWidth", "Eraser Brush Width", Integer{10, 1, 60}},
    ParameterRow{"BrushColor", "Brush Color", ColourBytes{0xF0000000}},
    ParameterRow{"RecoShapes", "Recognize Shapes", Switch{0}},
    ParameterRow{"RecoEllipse", "Recognize Ellipse", Switch{1}},
    ParameterRow{"RecoCircle", "Recognize Circle", Switch{0}},
    ParameterRow{"RecoCross", "Recognize Cross", Switch{1}},
    ParameterRow{"ShapeDelay", "Shape Delay", Integer{50, 1, 100}},
    ParameterRow{"Arrow", "Draw Arrow", Switch{1}},
    ParameterRow{"ArrowLength", "Arrow Length", Integer{30, 1, 100}},
    ParameterRow{"ArrowWidth", "Arrow Width", Integer{20, 1, 100}},
    ParameterRow{"CircleRadius", "Circle Rad", Integer{0, 0, 1000}},
    ParameterRow{"CrossDia", "Cross Width", Integer{0, 0, 1000}},
    ParameterRow{"MaxUndos", "Max. Undos", Integer{10, 0, 10}},
};

}  // namespace

void RegisterPlugin() {
    qoRegisterPlugin("Chalkpane");
    qoRegisterPluginType(pluginType);
    qoRegisterPluginFolder("Texture");
    for (const ParameterRow& row : parameterRows) {
        std::visit([&](const auto& kind) { kind.Register(row.name, row.label); }, row.kind);
    }
    qoRegisterPushButton("Clear", "Clear", 0);
    qoRegisterPushButton("Undo", "Undo", 1);
    qoRegisterTotalSize(instanceBlockSize);
}

}  // namespace chalkpane
