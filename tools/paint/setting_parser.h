#pragma once

#include <filesystem>
#include <span>
#include <vector>

#include "parameters/parameter_list.h"
#include "shared/json_node.h"
#include "tools/paint/brush_description.h"
#include "tools/parameter_text.h"

namespace chalkpane::tools {

// The parameters of one class as members of an object in a file, by their labels or their long names.
struct SettingTable {
    const ParameterList& list;
    Choices choices;
};

// Reads the member `node`, which stands under `name`, into `settings`. `file` is the file it stands in, from whose
// folder other files are named. `keys` is what else may stand there, for the message about a name that there is not.
// Throws shared::Error with the place when no table has the name, when the value does not fit, or when the parameter
// has a setting already.
void ReadSetting(const shared::JsonNode& node, std::string_view name, std::span<const SettingTable> tables,
                 const std::vector<std::string>& keys, const std::filesystem::path& file,
                 std::vector<Setting>& settings);

// `path` as a file beside `file`.
[[nodiscard]] std::filesystem::path Beside(const std::filesystem::path& file, const std::string& path);

// "strokes.json: /brushes/soft": where a message says something is wrong.
[[nodiscard]] std::string PlaceIn(const std::filesystem::path& file, const shared::JsonNode& node);

}  // namespace chalkpane::tools
