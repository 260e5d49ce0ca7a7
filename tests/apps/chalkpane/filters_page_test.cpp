#include <doctest/doctest.h>

#include <filesystem>
#include <string>

#include "apps/chalkpane/filtering/filter_texts.h"
#include "chalkpane/filters/filter_registry.h"
#include "picture_io/picture.h"
#include "tests/cli/temporary_folder.h"
#include "tests/cli/working_folder.h"

// The page that shows the filters, held to what the filters are.

namespace chalkpane::app {
namespace {

const std::string docs = CHALKPANE_SOURCE_FOLDER "/docs/";

const std::string& Page() {
    static const std::string page = cli::testing::ReadText(docs + "filters.md");
    return page;
}

// The filter's part of the page, from its heading to the next one.
std::string EntryOf(const Filter& filter) {
    const std::string heading = "\n### " + std::string(filter.Label()) + '\n';
    const std::size_t start = Page().find(heading);
    REQUIRE_NE(start, std::string::npos);
    return Page().substr(start, Page().find("\n#", start + heading.size()) - start);
}

// What stands behind `start` up to `end`; empty where it does not occur.
std::string Between(const std::string& text, const std::string& start, const std::string& end) {
    const std::size_t at = text.find(start);
    if (at == std::string::npos) return {};
    const std::size_t from = at + start.size();
    return text.substr(from, text.find(end, from) - from);
}

std::string RowOf(const ParameterDescription& parameter) {
    std::string values = parameter.minimum.empty() ? "" : parameter.minimum + " .. " + parameter.maximum;
    for (const std::string& choice : parameter.choices) values += (values.empty() ? "" : ", ") + choice;
    const std::string key = parameter.key == parameter.label ? "" : parameter.key;
    return "\n| " + parameter.label + " | " + key + " | " + parameter.type + " | " + parameter.defaultText + " | " +
           values + " |\n";
}

}  // namespace

TEST_CASE("The filters' page has every filter in its menu's place, with its parameters as they are") {
    std::size_t last = 0;
    for (const FilterCategory& category : FilterRegistry::Instance().Categories()) {
        CHECK_NE(Page().find("\n## " + category.name + '\n', last), std::string::npos);
        for (const Filter* filter : category.filters) {
            CAPTURE(filter->Label());
            const std::string entry = EntryOf(*filter);
            const std::size_t place = Page().find(entry);
            CHECK_GT(place, last);
            last = place;
            for (const ParameterDescription& parameter : TextsOf(*filter).Describe())
                CHECK_NE(entry.find(RowOf(parameter)), std::string::npos);
        }
    }
}

TEST_CASE("The filters' page shows what each filter does, by a command that runs") {
    std::uintmax_t bytes = 0;
    for (const Filter* filter : FilterRegistry::Instance().Filters()) {
        CAPTURE(filter->Label());
        const std::string entry = EntryOf(*filter);
        const std::string apply = Between(entry, "<!-- apply: ", " -->");
        CHECK_EQ(FilterFromText(apply)->Label(), filter->Label());
        CHECK_NE(entry.find("--apply '" + apply + "'"), std::string::npos);
        const std::string after = docs + Between(entry, "![after](", ")");
        const auto picture = picture_io::ReadPicture(after);
        const auto before = picture_io::ReadPicture(docs + Between(entry, "![before](", ")"));
        CHECK_EQ(picture.width, 240);
        CHECK_EQ(picture.height, 160);
        CHECK_EQ(picture == before, filter->Label() == "Smart Blur");  // which does nothing
        bytes += std::filesystem::file_size(after);
    }
    CHECK_LT(bytes, 3000000);
}

TEST_CASE("The picture that the filters are shown on is the one that make_still draws") {
    const cli::testing::WorkingFolder folder(CHALKPANE_MAKE_STILL);
    CHECK_EQ(folder.Run("still.png").exitCode, 0);
    CHECK_EQ(folder.Open("still.png") == picture_io::ReadPicture(docs + "filters/still.png"), true);
}

}  // namespace chalkpane::app
