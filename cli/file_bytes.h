#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "cli/file_kind.h"

namespace cli {

// All of a regular file. A pipe, a device or a folder is refused: they may have no end, or never begin. Throws Error
// naming the file and the reason, also for one of more than `limit` bytes.
[[nodiscard]] std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& file,
                                                      std::size_t limit = std::numeric_limits<std::size_t>::max());

// For a file that a library opens by its name: throws Error for what is there and is not regular, a folder too. What is
// not there passes, and the library tells.
inline void RequireRegularFile(const std::filesystem::path& file) { RefuseUnlessRegular(file, ""); }

// All that comes in until its end.
[[nodiscard]] std::vector<std::uint8_t> ReadStandardInput(std::size_t limit = std::numeric_limits<std::size_t>::max());
void WriteStandardOutput(std::span<const std::uint8_t> bytes);

// Puts `bytes` at `file`, whole or not at all, as a StagedFile does.
void WriteFileWhole(const std::filesystem::path& file, std::span<const std::uint8_t> bytes);
void WriteFileWhole(const std::filesystem::path& file, std::string_view text);

}  // namespace cli
