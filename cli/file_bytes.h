#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace cli {

// All of a file. Throws Error naming the file and the reason.
[[nodiscard]] std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& file);

// Puts `bytes` at `file`, whole or not at all: written under another name beside it and renamed. What stood there stays
// when it fails. Throws Error naming the file and the reason.
void WriteFileWhole(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes);

}  // namespace cli
