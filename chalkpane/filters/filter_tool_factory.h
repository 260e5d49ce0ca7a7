#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "chalkpane/parameters/parameterised_object.h"

namespace chalkpane {

class Filter;

// Where a front end would make its tools for filters known: controls, previews, the layers that a filter may name. This
// system has no front end, so there is one factory that answers every question with nothing: 0, null, an empty text, or
// no effect. A filter asks it for layers.
class FilterToolFactory {
public:
    // Made by the first call; lives as long as the module.
    static FilterToolFactory& Instance();

    virtual void* MakeTool(const Filter& filter);
    virtual void* MakeControl(const Filter& filter, const ParameterDef& definition);
    virtual void* MakePreview(const Filter& filter);
    virtual void* MakeCursor(const Filter& filter);
    virtual void* FindTool(std::string_view name);
    virtual void* ToolAt(std::int32_t index);
    [[nodiscard]] virtual std::int32_t ToolCount() const;
    [[nodiscard]] virtual std::int32_t ControlCount(const Filter& filter) const;
    [[nodiscard]] virtual std::int32_t LayerQuery(const Filter& filter, const ParameterDef& definition) const;
    [[nodiscard]] virtual std::int32_t LayerCount() const;
    [[nodiscard]] virtual std::string_view LayerName(std::int32_t index) const;
    [[nodiscard]] virtual const void* LayerImage(std::int32_t index) const;
    virtual void ToolChosen(const Filter& filter);
    virtual void ToolReleased(const Filter& filter);
    virtual void FilterAdded(const Filter& filter);
    virtual void FilterRemoved(const Filter& filter);
    virtual void ValuesChanged(const Filter& filter);

    FilterToolFactory(const FilterToolFactory&) = delete;
    FilterToolFactory& operator=(const FilterToolFactory&) = delete;

protected:
    FilterToolFactory() = default;
    ~FilterToolFactory() = default;
};

}  // namespace chalkpane
