#include "chalkpane/filters/filter_registry.h"

#include <algorithm>

#include "chalkpane/filters/filter_prototypes.h"

namespace chalkpane {
namespace {

char Lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

}  // namespace

bool LabelPrecedes(std::string_view left, std::string_view right) {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char a, char b) { return Lower(a) < Lower(b); });
}

FilterRegistry& FilterRegistry::Instance() {
    static FilterRegistry instance(MakeFilterPrototypes());
    return instance;
}

FilterRegistry::FilterRegistry(std::vector<std::unique_ptr<Filter>> filterPrototypes)
    : prototypes(std::move(filterPrototypes)) {
    for (const auto& prototype : prototypes) CategoryNamed(prototype->Category()).filters.push_back(prototype.get());
    for (auto& category : categories) {
        std::stable_sort(category.filters.begin(), category.filters.end(),
                         [](const Filter* a, const Filter* b) { return LabelPrecedes(a->Label(), b->Label()); });
        filters.insert(filters.end(), category.filters.begin(), category.filters.end());
    }
}

FilterCategory& FilterRegistry::CategoryNamed(std::string_view name) {
    const std::string_view wanted = name.empty() ? "Other" : name;
    const auto place = std::find_if(categories.begin(), categories.end(),
                                    [wanted](const FilterCategory& category) { return category.name >= wanted; });
    if (place != categories.end() && place->name == wanted) return *place;
    return *categories.insert(place, FilterCategory{std::string(wanted), {}});
}

}  // namespace chalkpane
