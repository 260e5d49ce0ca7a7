#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace cli {

// All of a regular file. A pipe, a device or a folder is refused: they may have no end, or never begin. Throws Error
// naming the file and the reason, also for one of more than `largest` bytes.
[[nodiscard]] std::vector<std::uint8_t> ReadFileBytes(const std::filesystem::path& file, std::size_t largest = SIZE_MAX);

// For a file that a library opens by its name: throws Error for what is there and is not regular, a folder too. What is
// not there passes, and the library tells.
void RequireRegularFile(const std::filesystem::path& file);

// Puts `bytes` at `file`, whole or not at all: written under another name beside it and renamed. What stood there stays
// when it fails. Throws Error naming the file and the reason.
void WriteFileWhole(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes);

}  // namespace cli
