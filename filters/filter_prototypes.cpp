#include "filters/filter_prototypes.h"

namespace chalkpane {
namespace {

using MakeFilter = std::unique_ptr<Filter> (*)();

template <typename FilterClass>
[[maybe_unused]] std::unique_ptr<Filter> Make() {
    return std::make_unique<FilterClass>();
}

// The family, one line a class: `Make<InvertCC>,`.
const std::vector<MakeFilter>& Family() {
    static const std::vector<MakeFilter> family{};
    return family;
}

}  // namespace

std::vector<std::unique_ptr<Filter>> MakeFilterPrototypes() {
    std::vector<std::unique_ptr<Filter>> prototypes;
    prototypes.reserve(Family().size());
    for (const MakeFilter make : Family()) prototypes.push_back(make());
    return prototypes;
}

}  // namespace chalkpane
