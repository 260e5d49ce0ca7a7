#include <doctest/doctest.h>

#include <filesystem>
#include <string>

#include "chalkpane/brush/sources/source_types.h"
#include "tests/cli/temporary_folder.h"

using namespace chalkpane;

namespace {

std::string Page(const char* name) {
    return cli::testing::ReadText(std::filesystem::path(CHALKPANE_SOURCE_FOLDER) / "docs" / name);
}

}  // namespace

TEST_CASE("The page of brushes has a row for each source, with its number and its name") {
    const std::string page = Page("brushes.md");
    for (const SourceTypeRow& row : SourceTypes()) {
        const std::string number = std::to_string(static_cast<int>(row.type));
        std::string begin = "| " + number + " | ";
        begin += row.name;
        begin += " | ![A stroke of source " + number;
        CAPTURE(begin);
        CHECK_NE(page.find(begin), std::string::npos);
    }
}

TEST_CASE("The schema and the page of strokes list the sources in the order of their table") {
    std::string quoted;
    std::string plain;
    for (const SourceTypeRow& row : SourceTypes()) {
        if (row.name.empty()) continue;
        quoted += (quoted.empty() ? "\"" : ", \"") + std::string(row.name) + "\"";
        plain += (plain.empty() ? "" : ", ") + std::string(row.name);
    }
    CHECK_NE(Page("strokes.schema.json").find("{\"enum\": [" + quoted + "]}"), std::string::npos);
    CHECK_NE(Page("strokes.md").find("| choice | Color | " + plain + "; 7 is as Replace, 8 as Splodge |"),
             std::string::npos);
}
