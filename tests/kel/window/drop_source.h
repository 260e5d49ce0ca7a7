#pragma once

#include <filesystem>
#include <string>

#include "tests/kel/window/virtual_display.h"

namespace kel::testing {

// What a file manager does when one of its files is dragged over the window and let go there (XDND, version 5). Returns
// when the window has taken it; throws when it takes no files.
void DropFile(const std::string& display, const WindowPlace& target, const std::filesystem::path& file);

}  // namespace kel::testing
