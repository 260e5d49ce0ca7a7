#pragma once

#include <filesystem>
#include <vector>

namespace kel {

// Where Chalkpane.qop lies: beside this program, as in a build folder, or where the installation puts it. When it is in
// neither place, the first of them, so that loading it tells what is missing.
[[nodiscard]] std::filesystem::path FindModule();

// The two folders of which that is said: what lies there was installed, and is trusted.
[[nodiscard]] std::vector<std::filesystem::path> ModuleFolders();

// Likewise the pitch that is drawn on when nothing else is named.
[[nodiscard]] std::filesystem::path FindExampleScene();

}  // namespace kel
