#include "chalkpane/filters/filter_registry.h"

#include <doctest/doctest.h>

#include "tests/chalkpane/filters/test_filters.h"

using namespace chalkpane;
using namespace chalkpane::test;

namespace {

constexpr FilterIdentity identities[] = {
    {"a", "beta", "Grain"}, {"b", "Alpha", "Grain"},     {"c", "Lonely", ""},
    {"d", "Blur", "Blurs"}, {"e", "alpha Two", "Grain"}, {"f", "ALPHA", "Grain"},
};

template <int number>
class NamedForTest final : public FilterClass<NamedForTest<number>, PointFilter> {
public:
    static constexpr FilterIdentity identity = identities[number];
    static constexpr auto Parameters() { return noParameters<NamedForTest>; }
};

std::vector<std::unique_ptr<Filter>> SixFilters() {
    std::vector<std::unique_ptr<Filter>> filters;
    filters.push_back(std::make_unique<NamedForTest<0>>());
    filters.push_back(std::make_unique<NamedForTest<1>>());
    filters.push_back(std::make_unique<NamedForTest<2>>());
    filters.push_back(std::make_unique<NamedForTest<3>>());
    filters.push_back(std::make_unique<NamedForTest<4>>());
    filters.push_back(std::make_unique<NamedForTest<5>>());
    return filters;
}

std::string Names(const std::vector<Filter*>& filters) {
    std::string names;
    for (const Filter* filter : filters) names += filter->Name();
    return names;
}

}  // namespace

TEST_CASE("categories ascend by name, and a filter without one is among the others") {
    const FilterRegistry registry(SixFilters());
    REQUIRE_EQ(registry.Categories().size(), 3);
    CHECK_EQ(registry.Categories()[0].name, "Blurs");
    CHECK_EQ(registry.Categories()[1].name, "Grain");
    CHECK_EQ(registry.Categories()[2].name, "Other");
    CHECK_EQ(Names(registry.Categories()[2].filters), "c");
}

// "Alpha" and "ALPHA" are the same label and keep their order; both are the beginning of "alpha Two".
TEST_CASE("filters stand by label without regard to case, and the flat list is category by category") {
    const FilterRegistry registry(SixFilters());
    CHECK_EQ(Names(registry.Categories()[1].filters), "bfea");
    CHECK_EQ(Names(registry.Filters()), "dbfeac");
}

TEST_CASE("labels compare letter by letter without regard to case") {
    CHECK(LabelPrecedes("Black & White", "brightness"));
    CHECK(LabelPrecedes("remove", "RGB"));
    CHECK_FALSE(LabelPrecedes("tint", "TINT"));
    CHECK_FALSE(LabelPrecedes("TINT", "tint"));
    CHECK(LabelPrecedes("", "a"));
}

TEST_CASE("the module's registry is one, with every filter in one category") {
    FilterRegistry& registry = FilterRegistry::Instance();
    CHECK_EQ(&registry, &FilterRegistry::Instance());
    std::size_t filters = 0;
    for (const auto& category : registry.Categories()) {
        CHECK_FALSE(category.filters.empty());
        filters += category.filters.size();
    }
    CHECK_EQ(registry.Filters().size(), filters);
}
