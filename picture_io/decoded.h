#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "picture_io/picture_file.h"

namespace picture_io {

enum class Depths : std::uint8_t { BytesOnly, Any };

// A picture from the bytes of its file. Throws Error with the reason alone.
[[nodiscard]] PictureFile DecodePictureFile(const std::vector<std::uint8_t>& bytes, Depths depths);

// The same from the file. Throws Error naming it.
[[nodiscard]] PictureFile ReadNamed(const std::filesystem::path& file, Depths depths);

}  // namespace picture_io
