#include "chalkpane/filters/filter_tool_factory.h"

namespace chalkpane {

FilterToolFactory& FilterToolFactory::Instance() {
    static FilterToolFactory instance;
    return instance;
}

void* FilterToolFactory::MakeTool(const Filter& /*filter*/) { return nullptr; }
void* FilterToolFactory::MakeControl(const Filter& /*filter*/, const ParameterDef& /*definition*/) { return nullptr; }
void* FilterToolFactory::MakePreview(const Filter& /*filter*/) { return nullptr; }
void* FilterToolFactory::MakeCursor(const Filter& /*filter*/) { return nullptr; }
void* FilterToolFactory::FindTool(std::string_view /*name*/) { return nullptr; }
void* FilterToolFactory::ToolAt(std::int32_t /*index*/) { return nullptr; }
std::int32_t FilterToolFactory::ToolCount() const { return 0; }
std::int32_t FilterToolFactory::ControlCount(const Filter& /*filter*/) const { return 0; }
std::int32_t FilterToolFactory::LayerQuery(const Filter& /*filter*/, const ParameterDef& /*definition*/) const {
    return 0;
}
std::int32_t FilterToolFactory::LayerCount() const { return 0; }
std::string_view FilterToolFactory::LayerName(std::int32_t /*index*/) const { return {}; }
const void* FilterToolFactory::LayerImage(std::int32_t /*index*/) const { return nullptr; }
void FilterToolFactory::ToolChosen(const Filter& /*filter*/) {}
void FilterToolFactory::ToolReleased(const Filter& /*filter*/) {}
void FilterToolFactory::FilterAdded(const Filter& /*filter*/) {}
void FilterToolFactory::FilterRemoved(const Filter& /*filter*/) {}
void FilterToolFactory::ValuesChanged(const Filter& /*filter*/) {}

}  // namespace chalkpane
