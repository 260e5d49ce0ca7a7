#pragma once

#include <string_view>

namespace kel {

// Files that the program carries with it.
[[nodiscard]] std::string_view DefaultKeysText();  // docs/keys.json
[[nodiscard]] std::string_view PanelLayoutText();  // kel/workspace/panel_layout.json

}  // namespace kel
