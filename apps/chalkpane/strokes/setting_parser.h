#pragma once

#include <filesystem>
#include <span>
#include <vector>

#include "apps/chalkpane/strokes/brush_description.h"
#include "apps/chalkpane/values/parameter_text.h"
#include "chalkpane/parameters/parameter_list.h"
#include "cli/json_node.h"

namespace chalkpane::app {

// The parameters of one class as members of an object in a file, by their labels or their long names.
struct SettingTable {
    const ParameterList& list;
    Choices choices;
};

// Reads the member `node`, which stands under `name`, into `settings`. `file` is the file it stands in, from whose
// folder other files are named. `keys` is what else may stand there, for the message about a name that there is not.
// Throws cli::Error with the place when no table has the name, when the value does not fit, or when the parameter
// has a setting already.
void ReadSetting(const cli::JsonNode& node, std::string_view name, std::span<const SettingTable> tables,
                 const std::vector<std::string>& keys, const std::filesystem::path& file,
                 std::vector<Setting>& settings);

// `path` as a file beside `file`.
[[nodiscard]] std::filesystem::path Beside(const std::filesystem::path& file, const std::string& path);

// "strokes.json: /brushes/soft": where a message says something is wrong.
[[nodiscard]] std::string PlaceIn(const std::filesystem::path& file, const cli::JsonNode& node);

}  // namespace chalkpane::app
