#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "chalkpane/filters/filter.h"

namespace chalkpane {

// One menu of filters. The filters belong to the registry.
struct FilterCategory {
    std::string name;
    std::vector<Filter*> filters;  // by label, without regard to case
};

// One prototype of every filter class, sorted into categories; a caller clones what it needs.
class FilterRegistry {
public:
    // Built by the first call; lives as long as the process.
    static FilterRegistry& Instance();

    // A filter without a category goes to "Other".
    explicit FilterRegistry(std::vector<std::unique_ptr<Filter>> filterPrototypes);

    // In ascending order of name.
    [[nodiscard]] const std::vector<FilterCategory>& Categories() const { return categories; }
    // Category by category.
    [[nodiscard]] const std::vector<Filter*>& Filters() const { return filters; }

private:
    FilterCategory& CategoryNamed(std::string_view name);

    std::vector<std::unique_ptr<Filter>> prototypes;  // in the order in which they were made
    std::vector<FilterCategory> categories;
    std::vector<Filter*> filters;
};

// True when `left` stands before `right` in a menu: character by character, letters without regard to case.
[[nodiscard]] bool LabelPrecedes(std::string_view left, std::string_view right);

}  // namespace chalkpane
