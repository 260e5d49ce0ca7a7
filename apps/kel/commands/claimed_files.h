#pragma once

#include <filesystem>

#include "kel/outputs/outputs.h"

namespace kel {

// Refuses, before anything is opened, an output that is an input, or two outputs that are one file, by whatever links.
// Throws Error. Empty names are none; numbered pictures are told apart when the outputs are opened.
//
//   recording  the session that the window writes; may be empty
void ClaimFiles(const OutputOptions& outputs, const std::filesystem::path& recording);

// Refuses a recording that would replace a file that is no session. Throws Error.
void RequireSessionPlace(const std::filesystem::path& recording);

}  // namespace kel
